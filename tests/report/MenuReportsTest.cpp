// The reports as the work window's menus show them: the room list reflects the rooms
// as they stand, the evaluation summary and the difference list print one fresh
// list, the module chooses the object table of both stored queries at the next
// "&Berichte" entry, and a report file that is missing, unreadable or wrong gives
// the standard error message with the file and the line.

#include "DemoOrder.h"

#include "Database.h"
#include "FileSystem.h"
#include "ReportMenus.h"

namespace qi::test {
namespace {

std::int64_t countIn(const std::string& file, const std::string& sql)
{
    return toLong(Database::open(file, true)->scalar(sql));
}

class MenuReports : public ::testing::Test {
protected:
    DemoOrder order;
    RenderingUserInteraction& ui = *order.ui;
    std::string reportFolder() const { return order.project + "/Report/"; }
};

TEST_F(MenuReports, RoomListRunsNoEvaluationAndShowsTheRoomsAsTheyStand)
{
    order.db->database()->execute("UPDATE T_Raum SET ststatus = 'L' WHERE stRaumNr = '1002'");
    order.db->database()->execute("INSERT INTO T_Differenzliste (stIstInvNR) VALUES ('MARKE')");
    const RenderedReport* r = order.runReportMenu(reportmenu::Raumerfassung);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->title, "Raumliste");
    EXPECT_NE(r->text.find("  1002 | markiert, ohne Scandaten |"), std::string::npos) << r->text;
    EXPECT_NE(r->text.find("  1001 | erfasst |"), std::string::npos);
    EXPECT_EQ(countIn(order.dbFile, "SELECT count(*) FROM T_Differenzliste WHERE stIstInvNR = 'MARKE'"), 1);
}

TEST_F(MenuReports, EvaluationSummaryAndDifferenceListPrintTheSameFreshList)
{
    order.db->database()->execute("INSERT INTO T_Differenzliste (stIstInvNR) VALUES ('MARKE')");
    const RenderedReport summary = *order.runReportMenu(reportmenu::Inventurauswertung);
    const RenderedReport list = *order.runReportMenu(reportmenu::Differenz);
    EXPECT_EQ(summary.title, "Differenzliste");
    EXPECT_EQ(list.title, "Differenzliste");
    EXPECT_EQ(fileNamePart(summary.file), "invausw.rpt");
    EXPECT_EQ(fileNamePart(list.file), "invdiff.rpt");
    EXPECT_EQ(countIn(order.dbFile, "SELECT count(*) FROM T_Differenzliste WHERE stIstInvNR = 'MARKE'"), 0);
    // The summary counts every object that the list shows.
    EXPECT_NE(summary.text.find("== Objekte im Auftrag | Objekte: " + std::to_string(list.rows) + "\n"),
              std::string::npos)
        << summary.text;
    EXPECT_NE(list.text.find("Objekte in der Differenzliste: " + std::to_string(list.rows) + "\n"), std::string::npos);
}

TEST_F(MenuReports, SwitchingTheModuleChangesBothStoredQueriesAtTheNextReportEntry)
{
    ui.messages.clear();
    const std::string inventar = order.runReportMenu(reportmenu::Differenz)->text;
    EXPECT_NE(inventar.find("| Bemerkung]"), std::string::npos);
    order.switchModule(1);
    // The room list counts TECHNIK's objects of each room now.
    const RenderedReport rooms = *order.runReportMenu(reportmenu::Raumerfassung);
    const Recordset expected = order.db->database()->query("SELECT stRaumNr, lIdRB FROM T_Raum ORDER BY stRaumNr");
    for (const auto& row : expected.rows()) {
        const std::int64_t technik =
            countIn(order.project + "/QOvTechnik.mdb", "SELECT count(*) FROM T_TObjekt WHERE byGebstruTyp = 4 AND "
                                                       "lGebstruId = " + std::to_string(toLong(row[1])));
        if (technik == 0)
            continue;
        EXPECT_NE(rooms.text.find("  " + toText(row[0]) + " | erfasst | "), std::string::npos);
        EXPECT_NE(rooms.text.find(" | " + std::to_string(technik) + "\n"), std::string::npos) << toText(row[0]);
    }
    // The difference list reads TECHNIK's objects, which offer no remark.
    const RenderedReport list = *order.runReportMenu(reportmenu::Differenz);
    EXPECT_EQ(list.text.find("Bemerkung"), std::string::npos);
    EXPECT_NE(list.text.find("[Inventar-Nr. Soll | Inventar-Nr. Ist | Bezeichnung"), std::string::npos);
    EXPECT_NE(list.text.find("3b Fehlt im Auftrag"), std::string::npos);
    EXPECT_TRUE(ui.messages.empty()) << ui.messages.front().text;
}

TEST_F(MenuReports, AnUnknownColumnGivesTheStandardMessageWithFileAndLine)
{
    const std::string file = reportFolder() + "invraum.rpt";
    writeFile(file, "[Bericht]\nTitel = Raumliste\nQuelle = Q_AnzProRaum\n\n[Spalte]\nFeld = stRaumNr\n\n[Spalte]\n"
                    "Feld = stEtage\n");
    ui.messages.clear();
    EXPECT_EQ(order.runReportMenu(reportmenu::Raumerfassung), nullptr);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmWork.mnuReportFkt_Click\r\nFehler in der Berichtsdatei '" + displayPath(file) +
                                       "', Zeile 9: Unbekanntes Feld \"stEtage\". Die Datenquelle hat die Felder "
                                       "stRaumNr, stAuftrag, Anzahl von stName, stStatus.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
    EXPECT_FALSE(ui.busy);
}

TEST_F(MenuReports, BadSyntaxInAnErrorListGivesTheStandardMessageWithFileAndLine)
{
    // The menu names "Report\InvNeu.rpt"; the file on disk is "invneu.rpt".
    const std::string file = reportFolder() + "invneu.rpt";
    writeFile(file, "[Bericht]\nTitel = Neu\nQuelle Q_DiffListe\n");
    ui.messages.clear();
    EXPECT_EQ(order.runErrorMenu(fehlermenu::Neu), nullptr);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmWork.mnuFehlerFkt_Click\r\nFehler in der Berichtsdatei '" + displayPath(file) +
                                       "', Zeile 3: Erwartet wird \"Schlüssel = Wert\" oder eine Abschnittsüberschrift "
                                       "in eckigen Klammern.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
}

TEST_F(MenuReports, TheArticleTallysReportErrorCarriesItsOwnLabel)
{
    const std::string file = reportFolder() + "invart.rpt";
    writeFile(file, "[Bericht]\nTitel = Artikel\nQuelle = t_Artikelliste\n[Spalte]\nFeld = stArtikel\nBreite = 1\n");
    ui.messages.clear();
    EXPECT_EQ(order.runReportMenu(reportmenu::Artikel), nullptr);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmWork.MakeArtikelAufstellung\r\nFehler in der Berichtsdatei '" +
                                       displayPath(file) +
                                       "', Zeile 6: Die Breite muss eine Zahl von 3 bis 1000 (Millimeter) oder \"*\" "
                                       "sein.");
    EXPECT_FALSE(ui.busy);
}

TEST_F(MenuReports, AMissingReportFileIsNamedAndATemplateCopyPrintsInstead)
{
    ASSERT_TRUE(removeFile(reportFolder() + "invdiff.rpt"));
    ui.messages.clear();
    EXPECT_EQ(order.runReportMenu(reportmenu::Differenz), nullptr);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmWork.mnuReportFkt_Click\r\nDie Berichtsdatei '" +
                                       displayPath(order.settings.gstProjektPfad + "Report\\invdiff.rpt") +
                                       "' wurde nicht gefunden.");
    // With the program's template folder beside the report database, every project can print.
    createFolder(order.program + "/Leeres Projekt");
    createFolder(order.program + "/Leeres Projekt/Report");
    ASSERT_TRUE(copyFile(std::string(QI_SOURCE_DIR) + "/resources/reports/invdiff.rpt",
                         order.program + "/Leeres Projekt/Report/invdiff.rpt"));
    const RenderedReport* r = order.runReportMenu(reportmenu::Differenz);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->file, order.program + "/Leeres Projekt/Report/invdiff.rpt");
    EXPECT_EQ(ui.messages.size(), 1u);
}

TEST_F(MenuReports, AnUnreadableReportFileIsNamed)
{
    const std::string file = reportFolder() + "invversch.rpt";
    writeFile(file, std::string("\x00\x01\x02", 3));
    ui.messages.clear();
    EXPECT_EQ(order.runErrorMenu(fehlermenu::Verschoben), nullptr);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text,
              "frmWork.mnuFehlerFkt_Click\r\nDie Berichtsdatei '" + displayPath(file) + "' ist keine Textdatei.");
}

TEST_F(MenuReports, ReportFilesOfTheProgramAreTheOnesTheTestsRead)
{
    // The template folder of the program carries the same eight files.
    for (const char* name : {"invraum.rpt", "invart.rpt", "invdiff.rpt", "invfehlend.rpt", "invliste.rpt", "invneu.rpt",
                             "invversch.rpt", "invausw.rpt"})
        EXPECT_EQ(readFile(std::string(QI_PROGRAM_DIR) + "/Leeres Projekt/Report/" + name),
                  readFile(std::string(QI_SOURCE_DIR) + "/resources/reports/" + name))
            << name;
}

} // namespace
} // namespace qi::test
