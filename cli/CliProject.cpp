#include "CliSession.h"

#include "Database.h"
#include "FileSystem.h"
#include "ProjectOverview.h"
#include "ProjectReports.h"
#include "ProjectResultSchema.h"
#include "ReportModel.h"

#include <array>
#include <ostream>
#include <string_view>
#include <utility>

// The whole stocktake on the command line: the overview of every order, the lists across
// orders and the project's reports, all from one project result computed for the call.
// Nothing of the project is written.

namespace qi::cli {

namespace {

/// The headings of the lists' columns (ProjectResultSchema.h); the sortable stamp stZeit
/// is left out, its date and time stand in Datum and Uhrzeit.
constexpr std::array<std::pair<std::string_view, std::string_view>, 26> kListHeadings{{
    {"stInvNr", "Inventar-Nr."},
    {"stBeschreibung", "Bezeichnung"},
    {"stArtNr", "Artikel"},
    {"stAuftragSoll", "Auftrag Soll"},
    {"stRaumSoll", "Raum Soll"},
    {"stAuftragIst", "Auftrag Ist"},
    {"stRaumIst", "Raum Ist"},
    {"Datum", "Datum"},
    {"Uhrzeit", "Uhrzeit"},
    {"stAuftrag", "Auftrag"},
    {"stRaum", "Raum"},
    {"stDatei", "Datei"},
    {"iAuftraege", "Anzahl Aufträge"},
    {"iRang", "Rang"},
    {"stQuarn", "Raum laut Quarn"},
    {"stAuftraege", "Aufträge"},
    {"iScans", "Scans"},
    {"lIdRB", "Raum-ID"},
    {"stRaumNr", "Raum"},
    {"stBezeichnung", "Bezeichnung"},
    {"iErwartet", "Erwartet"},
    {"stPruefung", "Prüfung"},
    {"stArt", "Art"},
    {"stText", "Text"},
    {"stZeit", ""},
    {"", ""},
}};

std::string_view headingOf(std::string_view column)
{
    for (const auto& [name, heading] : kListHeadings)
        if (sameName(name, column))
            return heading;
    return column;
}

/// A share in percent as the overview shows it ("33,3").
std::string percent(const Value& value)
{
    return formatNumber(std::holds_alternative<double>(value) ? std::get<double>(value) : double(toLong(value)), 1,
                        false);
}

std::string joined(const std::vector<std::string>& names)
{
    std::string out;
    for (const std::string& n : names)
        out += (out.empty() ? "" : ", ") + n;
    return out;
}

} // namespace

std::string projectListNames() { return joined(listNames()); }

std::unique_ptr<Database> Session::projectResult()
{
    OverviewOptions options;
    options.progress = [this](int done, int total, const std::string& step) {
        ui_.reportStep(step, done, total);
        return true;
    };
    ui_.beginProgress("Projektübersicht");
    try {
        auto result = computeProjectResult(settings_, *startup_.gebDb, options);
        ui_.endProgress();
        return result;
    } catch (...) {
        ui_.endProgress();
        throw;
    }
}

int Session::projekt()
{
    const std::string list = inv_.option("--liste");
    const std::unique_ptr<Database> result = projectResult();
    if (!list.empty()) {
        const Recordset rows = result->query("SELECT * FROM " + listTable(list) + " ORDER BY rowid");
        std::vector<std::size_t> shown;
        for (std::size_t c = 0; c < rows.columnNames().size(); ++c)
            if (!headingOf(rows.columnNames()[c]).empty())
                shown.push_back(c);
        for (std::size_t i = 0; i < shown.size(); ++i)
            out_ << (i ? "\t" : "") << headingOf(rows.columnNames()[shown[i]]);
        out_ << '\n';
        for (const auto& row : rows.rows()) {
            for (std::size_t i = 0; i < shown.size(); ++i)
                out_ << (i ? "\t" : "") << toText(row[shown[i]]);
            out_ << '\n';
        }
        return kSuccess;
    }

    out_ << "Auftrag\tStand\tRäume N\tRäume E\tRäume L\tRäume fertig %\tDateien\tScans\tErwartet\tAm Platz\t"
            "Gefunden %\t1\t2a\t2b\t2c\t3a\t3b\tLetzter Scan\n";
    // One line per order in the register's order, then the project's: the counts added up,
    // the shares of the sums.
    const Recordset lines = result->query(
        "SELECT stAuftrag, stStand, iRaeumeN, iRaeumeE, iRaeumeL, dRaeumeFertig, iDateien, iScans, iErwartet, "
        "iAmPlatz, dProzent, i1, i2a, i2b, i2c, i3a, i3b, stLetzterScan FROM P_Auftrag "
        "UNION ALL "
        "SELECT 'Projekt', '', sum(iRaeumeN), sum(iRaeumeE), sum(iRaeumeL), "
        "CASE WHEN sum(iRaeume) > 0 THEN 100.0 * sum(iRaeumeE + iRaeumeL) / sum(iRaeume) ELSE 0 END, "
        "sum(iDateien), sum(iScans), sum(iErwartet), sum(iAmPlatz), "
        "CASE WHEN sum(iErwartet) > 0 THEN 100.0 * sum(iAmPlatz) / sum(iErwartet) ELSE 0 END, "
        "sum(i1), sum(i2a), sum(i2b), sum(i2c), sum(i3a), sum(i3b), max(stLetzterScan) FROM P_Auftrag");
    for (const auto& row : lines.rows()) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            out_ << (i ? "\t" : "");
            if (i == 5 || i == 10)
                out_ << percent(row[i]);
            else if (!isNull(row[i]))
                out_ << toText(row[i]);
            else if (i > 1 && i < 17)
                out_ << '0'; // a project without orders
        }
        out_ << '\n';
    }
    return kSuccess;
}

int Session::projektBericht()
{
    const ProjectReport& report = *findProjectReport(inv_.option("--projekt-weit"));
    const std::string output = absolutePath(inv_.option("--ausgabe"));
    const std::unique_ptr<Database> result = projectResult();
    // A report that can't be read or written is told as any failure of a command.
    writeProjectReport(settings_, *result, report, *reportFormatNamed(reportFormatOf(inv_)), output);
    out_ << "Bericht '" << report.name << "' geschrieben: " << displayPath(output) << '\n';
    return kSuccess;
}

} // namespace qi::cli
