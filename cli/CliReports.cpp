#include "CliSession.h"

#include "FileSystem.h"
#include "Report.h"
#include "ReportMenus.h"

#include <cctype>
#include <filesystem>
#include <ostream>
#include <stdexcept>

// The reports and error lists of the work window's menus, written to files: the
// menu entry runs its preparation as in the window, and the report it would show
// is written in the format asked for.

namespace qi::cli {

namespace {

/// A report of the command line: its name and the menu entry behind it.
struct NamedReport {
    std::string_view name;
    bool fehlerliste; ///< an entry of "&Fehlerlisten (Auftragsbereich)", else of "&Berichte"
    int index;
};

constexpr NamedReport kReports[] = {
    {"artikel", false, reportmenu::Artikel},
    {"raumerfassung", false, reportmenu::Raumerfassung},
    {"inventur", false, reportmenu::Inventur},
    {"inventurauswertung", false, reportmenu::Inventurauswertung},
    {"differenz", false, reportmenu::Differenz},
    {"neu", true, fehlermenu::Neu},
    {"verschoben", true, fehlermenu::Verschoben},
    {"fehlend", true, fehlermenu::Fehlend},
};

const NamedReport* reportNamed(const std::string& name)
{
    for (const NamedReport& r : kReports)
        if (r.name == name)
            return &r;
    return nullptr;
}

} // namespace

std::string reportNames()
{
    std::string names;
    for (const NamedReport& r : kReports)
        names += (names.empty() ? "" : ", ") + std::string(r.name);
    return names;
}

bool knownReport(const std::string& name) { return reportNamed(name) != nullptr; }

std::string reportFormatOf(const Invocation& inv)
{
    std::string format = inv.option("--format");
    if (format.empty() && inv.command == "export")
        format = "pdf";
    if (format.empty()) {
        const std::string name = fileNamePart(inv.option("--ausgabe"));
        const std::size_t dot = name.rfind('.');
        format = dot == std::string::npos ? std::string() : name.substr(dot + 1);
        for (char& c : format)
            c = char(std::tolower(static_cast<unsigned char>(c)));
    }
    return format == "pdf" || format == "xlsx" || format == "csv" ? format : std::string();
}

int Session::writeReports(const std::vector<std::pair<std::string, std::string>>& reports, const std::string& format)
{
    CAuftragRec* rec = nullptr;
    if (const int code = openOrder(Intent::Work, rec); code != kSuccess)
        return code;
    frmWork work(*db_, settings_, ui_);
    work.f_QGebDb = startup_.gebDb.get();
    const ReportFormat f = *reportFormatNamed(format);
    for (const auto& [name, path] : reports) {
        const NamedReport& report = *reportNamed(name);
        bool written = false;
        ui_.setReportWriter([&, path = path](const std::string& reportFile, const std::string& dataFile,
                                             const std::string& title) {
            // A long report shows on a terminal how many of its pages are written.
            ui_.beginProgress("Bericht '" + std::string(report.name) + "'");
            const std::string error =
                writeReportFile(reportFile, dataFile, title, rec->stBezeichung, settings_.gstProjektPfad, f, path,
                                [this](int page, int pages) { ui_.reportStep("Seite", page, pages); });
            ui_.endProgress();
            if (!error.empty())
                throw std::runtime_error(error);
            written = true;
        });
        const int errors = ui_.errorCount();
        if (report.fehlerliste)
            work.mnuFehlerFkt_Click(report.index);
        else
            work.mnuReportFkt_Click(report.index);
        ui_.setReportWriter({});
        if (!written || ui_.errorCount() > errors)
            return kFailure;
        out_ << "Bericht '" << name << "' geschrieben: " << displayPath(path) << '\n';
    }
    return kSuccess;
}

int Session::bericht()
{
    const std::string output = absolutePath(inv_.option("--ausgabe"));
    return writeReports({{inv_.args.at(1), output}}, reportFormatOf(inv_));
}

int Session::exportAll()
{
    const std::string folder = absolutePath(inv_.option("--ausgabe"));
    std::error_code ec;
    std::filesystem::create_directories(std::filesystem::u8path(folder), ec);
    if (!folderExists(folder)) {
        say("Der Ordner '" + displayPath(folder) + "' kann nicht angelegt werden.");
        return kFailure;
    }
    const std::string format = reportFormatOf(inv_);
    std::vector<std::pair<std::string, std::string>> reports;
    for (const NamedReport& r : kReports)
        reports.emplace_back(std::string(r.name), folder + "/" + std::string(r.name) + "." + format);
    return writeReports(reports, format);
}

} // namespace qi::cli
