// The report definition reader on any file, read as the program reads a report file.
// A file it refuses gives a message that names the report file and is well-formed
// UTF-8. A definition it takes is run against a small report database that holds the
// data sources of the shipped report files (a few rows with umlauts, empty and Null
// values): either the rows are read, or a message names the file; every cell, group
// header and footer, sum and summary line of a report that reads is well-formed UTF-8.
// Statements of the definition run with a bound on their work.

#include "FuzzSupport.h"

#include "Database.h"
#include "FileSystem.h"
#include "ReportError.h"
#include "ReportFiles.h"
#include "ReportModel.h"
#include "TextFile.h"

#include <sqlite3.h>

#include <memory>

using namespace qi;

namespace {

/// Virtual machine steps a report's statement may take before it is stopped.
constexpr int kStepBudget = 200000;

const char* const kSources = R"(
CREATE TABLE Q_DiffListe (lID INTEGER, lRaumId INTEGER, stSollInvNR TEXT, stIstInvNR TEXT, stBeschreibung TEXT,
  stZiel TEXT, stQuelle TEXT, stQuarn TEXT, stArtNr TEXT, "t_Differenzliste.Datum" TEXT,
  "t_Differenzliste.Uhrzeit" TEXT, iReihenfolge INTEGER, stTyp TEXT, stObjBemerkung TEXT, Name TEXT, stKST TEXT,
  "t_Raum.lID" INTEGER, lIdRB INTEGER, stRaumNr TEXT, stStatus TEXT, lDatId INTEGER, "t_Raum.Datum" TEXT,
  "t_Raum.Uhrzeit" TEXT, iAnzahl INTEGER, stAuftrag TEXT, iVariante INTEGER);
INSERT INTO Q_DiffListe VALUES (1, 1, '100013', '100013', 'Aktenschrank, Weiß', '', '', '', 'A005', '14.03.2025',
  '08:01:14', 1, '1 OK', '', 'Köhler, Günther', '4100', 1, 11, '1001', 'E', 1, '14.03.2025', '08:00:00', 3, 'Demo', 0);
INSERT INTO Q_DiffListe VALUES (2, 1, '', '100007', 'Regal; "Ahorn"', '', '', '2001', 'A007', '2025-03-14 00:00:00',
  NULL, 2, '2b Zuviel im Auftrag', NULL, NULL, NULL, 1, 11, '1001', 'E', 1, NULL, NULL, 3, 'Demo', 0);
INSERT INTO Q_DiffListe VALUES (3, 2, '100002', '', 'Bürodrehstuhl
Anthrazit', '1003', '', '', 'A002', '', '', 3, '3a Fehlt im Raum', 'Gebrauchsspuren', 'Groß, Björn', '4200', 2, 12,
  '1002', 'L', 0, '', '', 0, 'Demo', NULL);
CREATE TABLE Q_AnzProRaum (stRaumNr TEXT, stAuftrag TEXT, "Anzahl von stName" INTEGER, stStatus TEXT);
INSERT INTO Q_AnzProRaum VALUES ('1001', 'Demo', 3, 'E'), ('1002', 'Demo', 0, 'L'), ('Ä1', NULL, NULL, 'N');
CREATE TABLE t_Differenzliste (lID INTEGER, lRaumID INTEGER, stSollInvNR TEXT, stIstInvNR TEXT, stBeschreibung TEXT,
  stZiel TEXT, stQuelle TEXT, stQuarn TEXT, stArtNr TEXT, Datum TEXT, Uhrzeit TEXT, iReihenfolge INTEGER, stTyp TEXT);
INSERT INTO t_Differenzliste SELECT lID, lRaumId, stSollInvNR, stIstInvNR, stBeschreibung, stZiel, stQuelle, stQuarn,
  stArtNr, "t_Differenzliste.Datum", "t_Differenzliste.Uhrzeit", iReihenfolge, stTyp FROM Q_DiffListe;
CREATE TABLE t_Raum (lID INTEGER, lIdRB INTEGER, stRaumNr TEXT, stStatus TEXT, lDatId INTEGER, Datum TEXT,
  Uhrzeit TEXT, iAnzahl INTEGER, stAuftrag TEXT);
INSERT INTO t_Raum VALUES (1, 11, '1001', 'E', 1, '14.03.2025', '08:00:00', 3, 'Demo'),
  (2, 12, '1002', 'L', 0, NULL, NULL, 0, 'Demo');
CREATE TABLE t_Invliste (lID INTEGER, stRaumNr TEXT, iRFolge INTEGER, stInvNr TEXT, stArtNr TEXT, stBeschreibung TEXT,
  Datum TEXT, Uhrzeit TEXT);
INSERT INTO t_Invliste VALUES (1, '1001', 1, '100013', 'A005', 'Aktenschrank', '14.03.2025', '08:01:14'),
  (2, '1001', 2, 'Obj. ohne Nr.', '', NULL, '14.03.2025', '08:02:00'), (3, '1002', 1, '100002', 'A002', 'Stuhl', '', '');
CREATE TABLE t_Artikelliste (lID INTEGER, stArtikel TEXT, iAnzSoll INTEGER, iAnzIst INTEGER, stBeschreibung TEXT,
  stAuftrag TEXT);
INSERT INTO t_Artikelliste VALUES (1, 'A001', 5, 4, 'Schreibtisch', 'Demo'), (2, 'Ä002', 0, NULL, NULL, 'Demo'),
  (3, 'A003', -2, 2.5, 'Öl', 'Demo');
)";

int stopAfterBudget(void* steps)
{
    return ++*static_cast<int*>(steps) > kStepBudget / 1000;
}

Database& reportDatabase()
{
    static const std::unique_ptr<Database> db = [] {
        auto made = Database::create(fuzz::scratchFile("QInventurRpt.mdb"));
        made->executeScript(kSources);
        made->executeScript("PRAGMA query_only = ON");
        return made;
    }();
    return *db;
}

void requireMessage(const std::string& message, const std::string& file)
{
    fuzz::require(isUtf8(message), "a message is well-formed UTF-8");
    fuzz::require(message.find(displayPath(file)) != std::string::npos, "a message names the report file");
}

void readAll(const ReportModel& m)
{
    const ReportDefinition& def = m.definition();
    auto check = [](const std::string& text) { fuzz::require(isUtf8(text), "a report text is well-formed UTF-8"); };
    for (std::size_t r = 0; r < m.rowCount(); ++r)
        for (std::size_t c = 0; c < def.columns.size(); ++c)
            check(m.cellText(r, c));
    for (std::size_t level = 0; level < m.groupLevels(); ++level) {
        std::size_t rows = 0;
        for (const RowRange& g : m.groups(level)) {
            rows += g.count;
            for (const TextTemplate& t : def.groups[level].header)
                check(m.evaluate(t, g, 1, 1));
            for (const TextTemplate& t : def.groups[level].footer)
                check(m.evaluate(t, g, 1, 1));
        }
        fuzz::require(rows == m.rowCount(), "the groups of a level hold every row once");
    }
    for (const TextTemplate& t : def.summary)
        check(m.evaluate(t, m.all(), 1, 1));
    for (std::size_t c = 0; c < def.columns.size(); ++c)
        if (def.columns[c].sum)
            check(m.columnSum(c, m.all()));
    for (const auto& lines : m.breakdowns())
        for (const BreakdownLine& line : lines)
            check(line.value + line.amount);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string file = fuzz::scratchFile("bericht.rpt");
    fuzz::writeBytes(file, fuzz::bytesOf(data, size));
    Database& db = reportDatabase();
    try {
        ReportDefinition def = parseReportDefinition(readReportFile(file), file);
        fuzz::require(!def.columns.empty(), "a definition read has a column");
        int steps = 0;
        sqlite3_progress_handler(db.handle(), 1000, &stopAfterBudget, &steps);
        ReportTable table = readReportRows(def, db);
        sqlite3_progress_handler(db.handle(), 0, nullptr, nullptr);
        const ReportModel model(std::move(def), std::move(table), ReportContext{"Demo", "C:\\Quarn", "heute", "b.rpt"});
        readAll(model);
    } catch (const ReportError& e) {
        sqlite3_progress_handler(db.handle(), 0, nullptr, nullptr);
        requireMessage(e.what(), file);
    }
    return 0;
}
