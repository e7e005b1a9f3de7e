// Reading scanner data files into the order: checks, room numbers, duplicates,
// the conflict between two rooms, host completion, encoding and failures.

#include "WorkFixture.h"

#include "FileSystem.h"
#include "QtUserInteraction.h"
#include "frmFehler.h"

#include <QApplication>
#include <QMessageBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include <algorithm>
#include <map>
#include <random>

namespace qi::test {
namespace {

using ImportTest = WorkTest;

void expectMessage(const RecordedMessage& m, const std::string& text, MsgIcon icon, const std::string& title,
                   MsgButtons buttons = MsgButtons::Ok)
{
    EXPECT_EQ(m.text, text);
    EXPECT_EQ(m.icon, icon);
    EXPECT_EQ(m.title, title);
    EXPECT_EQ(m.buttons, buttons);
}

TEST_F(ImportTest, OnlyShortLinesImportNothingAndSucceed)
{
    const std::string f = datFile("kurz.dat", {"M7,4711,01.02.2015,10:00,1,INV-9,X", "", "a,b,c", ",,,,,,"});
    EXPECT_TRUE(import(f));
    EXPECT_TRUE(scans().empty());
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(ImportTest, RoomNumbersLoseLeadingZerosBeforeTrimming)
{
    const std::string f = datFile("r.dat", {scanLine("00012", "A"), scanLine("000", "B"), scanLine(" 012", "C"),
                                            scanLine("0 7 ", "D")});
    ASSERT_TRUE(import(f));
    const auto s = scans();
    ASSERT_EQ(s.size(), 4u);
    EXPECT_EQ(s[0].stRaum, "12");
    EXPECT_EQ(s[1].stRaum, "");
    EXPECT_EQ(s[2].stRaum, "012");
    EXPECT_EQ(s[3].stRaum, "7");
}

TEST_F(ImportTest, FieldsAreStoredAsSpecified)
{
    const std::string f = datFile("f.dat", {"M 1, 4711 , 01.02.2015 , 10:00 ,5,  INV-9  ,  X-7  , E ,extra,more"});
    ASSERT_TRUE(import(f));
    const auto s = scans();
    ASSERT_EQ(s.size(), 1u);
    EXPECT_EQ(s[0].stMitarbNr, "M 1");
    EXPECT_EQ(s[0].stAuftragsNr, " 4711 ");
    EXPECT_EQ(s[0].Datum, " 01.02.2015 ");
    EXPECT_EQ(s[0].Uhrzeit, " 10:00 ");
    EXPECT_EQ(s[0].stRaum, "5");
    EXPECT_EQ(s[0].stInvNr, "INV-9");
    EXPECT_EQ(s[0].stArtNr, "X-7");
    EXPECT_EQ(s[0].stTaet, " E ");
    EXPECT_EQ(s[0].lDatID, w.f_lDatId);
}

TEST_F(ImportTest, SameNumberTwiceInOneRoomKeepsOneRowAndWarns)
{
    const std::string f = datFile("d.dat", {scanLine("1", "INV-7", "01.02.2015", "A-1", "10:00"),
                                            scanLine("1", "INV-7", "01.02.2015", "A-2", "11:00")});
    ASSERT_TRUE(import(f));
    const auto s = scans();
    ASSERT_EQ(s.size(), 1u);
    EXPECT_EQ(s[0].stArtNr, "A-1");
    EXPECT_EQ(s[0].Uhrzeit, "10:00");
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(ui.messages[0], "Warnung: Im Raum 1 ist die Objektnummer 'INV-7' mehrfach eingescannt worden.",
                  MsgIcon::Exclamation, "Quarn-Inventur");
    EXPECT_TRUE(ui.conflicts.empty());
}

TEST_F(ImportTest, SameNumberInTwoRoomsDiscardingFirstTakesSecondRoomDateAndFile)
{
    const std::string f = datFile("zwei.dat", {scanLine("1", "INV-7", "01.02.2015", "A-1", "10:00"),
                                               scanLine("2", "INV-7", "03.02.2015", "A-2", "11:00")});
    ui.conflictAnswers.push_back(true);
    ASSERT_TRUE(import(f));
    ASSERT_EQ(ui.conflicts.size(), 1u);
    const ConflictInfo& c = ui.conflicts[0];
    EXPECT_EQ(c.stInvNr, "INV-7");
    EXPECT_EQ(c.stArtNr, "A-2");
    EXPECT_EQ(c.stArtName, "");
    EXPECT_EQ(c.stRaumAlt, "1");
    EXPECT_EQ(c.stDateiAlt, "zwei.dat");
    EXPECT_EQ(c.stDatumAlt, "01.02.2015");
    EXPECT_EQ(c.stRaumNeu, "2");
    EXPECT_EQ(c.stDateiNeu, "zwei.dat");
    EXPECT_EQ(c.stDatumNeu, "03.02.2015");
    const auto s = scans();
    ASSERT_EQ(s.size(), 1u);
    EXPECT_EQ(s[0].stRaum, "2");
    EXPECT_EQ(s[0].Datum, "03.02.2015");
    EXPECT_EQ(s[0].lDatID, w.f_lDatId);
    // The rest stays that of the first scan.
    EXPECT_EQ(s[0].stArtNr, "A-1");
    EXPECT_EQ(s[0].Uhrzeit, "10:00");
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_GE(ui.eventsProcessed, 1);
}

TEST_F(ImportTest, SameNumberInTwoRoomsKeepingFirstWritesNothing)
{
    const std::string f = datFile("zwei.dat", {scanLine("1", "INV-7", "01.02.2015"), scanLine("2", "INV-7", "03.02.2015")});
    ui.conflictAnswers.push_back(false);
    ASSERT_TRUE(import(f));
    ASSERT_EQ(ui.conflicts.size(), 1u);
    const auto s = scans();
    ASSERT_EQ(s.size(), 1u);
    EXPECT_EQ(s[0].stRaum, "1");
    EXPECT_EQ(s[0].Datum, "01.02.2015");
}

/// Imports the file through a work window whose user answers in the real conflict
/// dialog: clicks the options named in `clicks` ("V" opVerwerfen, "B" opBehalten), then OK.
/// Answers the dialog of every conflict the same way; returns the inventory numbers shown.
std::vector<QString> importWithTheRealDialog(CAuftragDb& db, const Settings& settings, const std::string& path,
                                             std::int32_t datId, const std::string& clicks)
{
    test::qtApplication();
    QtUserInteraction qtUi;
    installFrmFehler(qtUi);
    frmWork qtWork(db, settings, qtUi);
    qtWork.f_stfilename = path;
    qtWork.f_lDatId = datId;
    std::vector<QString> shown;
    QTimer answer;
    answer.setInterval(20);
    QObject::connect(&answer, &QTimer::timeout, [&] {
        for (QWidget* w : QApplication::topLevelWidgets()) {
            if (auto* f = qobject_cast<frmFehler*>(w); f && f->isVisible()) {
                shown.push_back(f->lbInvNr->text());
                for (const char c : clicks)
                    (c == 'V' ? f->opVerwerfen : f->opBehalten)->click();
                f->pbOk->click();
            } else if (auto* m = qobject_cast<QMessageBox*>(w); m && m->isVisible()) {
                shown.push_back(QStringLiteral("Meldung: ") + m->text());
                m->done(0);
            }
        }
    });
    answer.start();
    EXPECT_TRUE(qtWork.GetDataFromDat());
    answer.stop();
    return shown;
}

TEST_F(ImportTest, VerwerfenInTheDialogMovesTheStoredRowToTheSecondRoom)
{
    const std::string f = datFile("zwei.dat", {scanLine("1", "INV-7", "01.02.2015", "A-1", "10:00"),
                                               scanLine("2", "INV-7", "03.02.2015", "A-2", "11:00")});
    CDateienRec d;
    d.stName = "zwei.dat";
    d.stPfad = f;
    ASSERT_TRUE(db.AddNewDateienRec(&d));
    const auto shown = importWithTheRealDialog(db, settings, f, d.lID, "V");
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0], QStringLiteral("INV-7"));
    const auto s = scans();
    ASSERT_EQ(s.size(), 1u);
    EXPECT_EQ(s[0].stRaum, "2");
    EXPECT_EQ(s[0].Datum, "03.02.2015");
    EXPECT_EQ(s[0].lDatID, d.lID);
    EXPECT_EQ(s[0].stArtNr, "A-1");
    EXPECT_EQ(s[0].Uhrzeit, "10:00");
}

TEST_F(ImportTest, VerwerfenThenBehaltenInTheDialogKeepsTheFirstScan)
{
    const std::string f = datFile("zwei.dat", {scanLine("1", "INV-7", "01.02.2015"), scanLine("2", "INV-7", "03.02.2015")});
    CDateienRec d;
    d.stName = "zwei.dat";
    d.stPfad = f;
    ASSERT_TRUE(db.AddNewDateienRec(&d));
    const auto shown = importWithTheRealDialog(db, settings, f, d.lID, "VB");
    ASSERT_EQ(shown.size(), 1u);
    const auto s = scans();
    ASSERT_EQ(s.size(), 1u);
    EXPECT_EQ(s[0].stRaum, "1");
    EXPECT_EQ(s[0].Datum, "01.02.2015");
}

TEST_F(ImportTest, NumberFromAnEarlierFileShowsThatFileAsFirstOccurrence)
{
    const std::string f1 = datFile("erste.dat", {scanLine("1", "INV-7", "01.02.2015")});
    ASSERT_TRUE(import(f1));
    const std::int32_t firstId = w.f_lDatId;
    const std::string f2 = datFile("zweite.dat", {scanLine("2", "INV-7", "02.02.2015")});
    ui.conflictAnswers.push_back(true);
    ASSERT_TRUE(import(f2));
    ASSERT_EQ(ui.conflicts.size(), 1u);
    EXPECT_EQ(ui.conflicts[0].stDateiAlt, "erste.dat");
    EXPECT_EQ(ui.conflicts[0].stDateiNeu, "zweite.dat");
    const auto s = scans();
    ASSERT_EQ(s.size(), 1u);
    EXPECT_NE(s[0].lDatID, firstId);
    EXPECT_EQ(s[0].lDatID, w.f_lDatId);
}

TEST_F(ImportTest, HostCompletesArticleNumberAndNameShownInTheDialog)
{
    const std::string f = datFile("h.dat", {scanLine("1", " INV-1 ", "01.02.2015", "FALSCH"),
                                            scanLine("2", "INV-1", "01.02.2015", "FALSCH"),
                                            scanLine("1", "UNBEKANNT", "01.02.2015", " SCAN-9 ")});
    ASSERT_TRUE(import(f));
    ASSERT_EQ(ui.conflicts.size(), 1u);
    EXPECT_EQ(ui.conflicts[0].stArtNr, "ART-STUHL");
    EXPECT_EQ(ui.conflicts[0].stArtName, "Bürostuhl");
    const auto s = scans();
    ASSERT_EQ(s.size(), 2u);
    EXPECT_EQ(s[0].stInvNr, "INV-1");
    EXPECT_EQ(s[0].stArtNr, "ART-STUHL");
    EXPECT_EQ(s[1].stArtNr, "SCAN-9");
}

TEST_F(ImportTest, LineWithoutInventoryNumberIsStoredAsObjOhneNr)
{
    const std::string f = datFile("leer.dat", {scanLine("1", "  "), scanLine("1", "")});
    ASSERT_TRUE(import(f));
    const auto s = scans();
    ASSERT_EQ(s.size(), 1u);
    EXPECT_EQ(s[0].stInvNr, "Obj. ohne Nr.");
    ASSERT_EQ(ui.messages.size(), 3u);
    const std::string text = "In der Datei '" + f + "' steht ein Datensatz ohne Objektnummer.";
    expectMessage(ui.messages[0], text, MsgIcon::None, "Quarn-Inventur");
    expectMessage(ui.messages[1], text, MsgIcon::None, "Quarn-Inventur");
    // From the second such line on they are duplicates of one another.
    expectMessage(ui.messages[2], "Warnung: Im Raum 1 ist die Objektnummer 'Obj. ohne Nr.' mehrfach eingescannt worden.",
                  MsgIcon::Exclamation, "Quarn-Inventur");
}

TEST_F(ImportTest, LineEndsCrLfLfCrAndLastLineWithoutEnd)
{
    const std::string f = dir.file("enden.dat");
    writeFile(f, scanLine("1", "A") + "\r\n" + scanLine("1", "B") + "\n" + scanLine("1", "C") + "\r" +
                     scanLine("1", "D"));
    ASSERT_TRUE(import(f));
    const auto s = scans();
    ASSERT_EQ(s.size(), 4u);
    EXPECT_EQ(s[3].stInvNr, "D");
    EXPECT_EQ(s[3].stTaet, "E");
}

TEST_F(ImportTest, Windows1252CharactersArriveAsTheRightCharacters)
{
    const std::string f = dir.file("ansi.dat");
    // "Büro", "äöüß" and "€" in Windows-1252.
    writeFile(f, "M\xe4,4711,01.02.2015,10:00,B\xfcro,INV-\xe4\xf6\xfc\xdf,\x80 5,T\xd6\r\n");
    ASSERT_TRUE(import(f));
    const auto s = scans();
    ASSERT_EQ(s.size(), 1u);
    EXPECT_EQ(s[0].stMitarbNr, "Mä");
    EXPECT_EQ(s[0].stRaum, "Büro");
    EXPECT_EQ(s[0].stInvNr, "INV-äöüß");
    EXPECT_EQ(s[0].stArtNr, "€ 5");
    EXPECT_EQ(s[0].stTaet, "TÖ");
}

TEST_F(ImportTest, UnassignedBytesDoNotStopTheImport)
{
    const std::string f = dir.file("frei.dat");
    writeFile(f, "M,4711,01.02.2015,10:00,1,INV,\x81\x8d,E\r\n");
    ASSERT_TRUE(import(f));
    const auto s = scans();
    ASSERT_EQ(s.size(), 1u);
    EXPECT_EQ(s[0].stArtNr, "\xc2\x81\xc2\x8d");
}

TEST_F(ImportTest, NulBytesStopTheImportAndAreNeverStored)
{
    const std::string f = dir.file("nul.dat");
    writeFile(f, scanLine("1", "A") + "\r\n" + std::string("M,4711,01.02.2015,10:00,1,INV") + '\0' + "X,X-1,E\r\n");
    EXPECT_FALSE(import(f));
    const auto s = scans();
    ASSERT_EQ(s.size(), 1u);
    EXPECT_EQ(s[0].stInvNr, "A");
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(ui.messages[0],
                  "frmWork.GetDataFromDat\r\nDie Datei '" + displayPath(f) +
                      "' ist keine Textdatei der Scanner (sie enthält Nullzeichen).",
                  MsgIcon::Critical, "QInventur");
}

TEST_F(ImportTest, ErrorStopsTheImportAndKeepsTheRowsStoredBefore)
{
    // A line of more than 32767 fields overflows the field count.
    const std::string f = datFile("fehler.dat", {scanLine("1", "A"), scanLine("1", "B"), std::string(40000, ','),
                                                 scanLine("1", "C")});
    EXPECT_FALSE(import(f));
    const auto s = scans();
    ASSERT_EQ(s.size(), 2u);
    EXPECT_EQ(s[1].stInvNr, "B");
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(ui.messages[0], "frmWork.GetDataFromDat\r\nÜberlauf", MsgIcon::Critical, "QInventur");
    // The file was closed: it can be replaced at once.
    EXPECT_TRUE(removeFile(f));
}

TEST_F(ImportTest, ALineTheDatabaseCannotStoreStopsTheImport)
{
    // The engine refuses a line for another reason than a duplicate (as a full disk would):
    // the import stops with the database's text; lines stored before stay, none after.
    db.database()->execute("CREATE TRIGGER refuse_line BEFORE INSERT ON T_DatInventur WHEN NEW.stInvNr = 'B' "
                           "BEGIN SELECT RAISE(ABORT, 'Datenträger voll'); END");
    const std::string f = datFile("voll.dat", {scanLine("1", "A"), scanLine("1", "B"), scanLine("1", "C")});
    EXPECT_FALSE(import(f));
    const auto s = scans();
    ASSERT_EQ(s.size(), 1u);
    EXPECT_EQ(s[0].stInvNr, "A");
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("frmWork.GetDataFromDat\r\nDer Datensatz konnte nicht gespeichert werden!\r\n", 0), 0u)
        << ui.messages[0].text;
    EXPECT_NE(ui.messages[0].text.find("Datenträger voll"), std::string::npos);
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
}

TEST_F(ImportTest, MissingFileIsReportedByEveryReader)
{
    w.f_stfilename = dir.file("fehlt.dat");
    EXPECT_FALSE(w.GetDataFromDat());
    EXPECT_FALSE(w.RaeumeNichtInAuftrag());
    EXPECT_FALSE(w.VerschiedeneTage());
    EXPECT_FALSE(w.RaeumeVorhanden());
    ASSERT_EQ(ui.messages.size(), 4u);
    expectMessage(ui.messages[0], "frmWork.GetDataFromDat\r\nDatei nicht gefunden", MsgIcon::Critical, "QInventur");
    expectMessage(ui.messages[1], "frmWork.RaeumeNichtInAuftrag\r\nDatei nicht gefunden", MsgIcon::Critical,
                  "QInventur");
    // The date check reports under the label of the room check.
    expectMessage(ui.messages[2], "frmWork.RaeumeVorhanden\r\nDatei nicht gefunden", MsgIcon::Critical, "QInventur");
    expectMessage(ui.messages[3], "frmWork.RaeumeVorhanden\r\nDatei nicht gefunden", MsgIcon::Critical, "QInventur");
}

TEST_F(ImportTest, MissingHostDatabaseStopsTheImportWithItsMessage)
{
    ASSERT_TRUE(removeFile(dir.file("QOvInventar.mdb")));
    const std::string f = datFile("h.dat", {scanLine("1", "A")});
    EXPECT_FALSE(import(f));
    EXPECT_TRUE(scans().empty());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("frmWork.GetDataFromDat\r\nDie Quarn-Datenbank konnte nicht geöffnet werden!", 0),
              0u)
        << ui.messages[0].text;
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(w.f_GebDb, nullptr);
}

TEST_F(ImportTest, VerschiedeneTageRefusesTwoDates)
{
    w.f_stfilename = datFile("t.dat", {scanLine("1", "A", "01.02.2015"), scanLine("1", "B", "02.02.2015")});
    EXPECT_TRUE(w.VerschiedeneTage());
}

TEST_F(ImportTest, VerschiedeneTageCountsALeadingBlankAsAnotherDay)
{
    w.f_stfilename = datFile("t.dat", {scanLine("1", "A", "01.02.2015"), scanLine("1", "B", " 01.02.2015")});
    EXPECT_TRUE(w.VerschiedeneTage());
}

TEST_F(ImportTest, VerschiedeneTageAcceptsOneDayAndAFileWithoutRecords)
{
    w.f_stfilename = datFile("t.dat", {"kurz", scanLine("1", "A", "01.02.2015"), scanLine("1", "B", "01.02.2015")});
    EXPECT_FALSE(w.VerschiedeneTage());
    w.f_stfilename = datFile("leer.dat", {"a,b", ""});
    EXPECT_FALSE(w.VerschiedeneTage());
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(ImportTest, RaeumeNichtInAuftragFindsAForeignRoom)
{
    addRoom("12");
    addRoom("13");
    w.f_stfilename = datFile("r.dat", {scanLine("0012", "A"), scanLine("13", "B")});
    EXPECT_FALSE(w.RaeumeNichtInAuftrag());
    w.f_stfilename = datFile("r2.dat", {scanLine("12", "A"), scanLine("14", "B")});
    EXPECT_TRUE(w.RaeumeNichtInAuftrag());
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(ImportTest, RaeumeVorhandenFindsARoomWithScans)
{
    ASSERT_TRUE(import(datFile("a.dat", {scanLine("12", "A")})));
    w.f_stfilename = datFile("b.dat", {scanLine("13", "B"), scanLine("14", "C")});
    EXPECT_FALSE(w.RaeumeVorhanden());
    w.f_stfilename = datFile("c.dat", {scanLine("13", "B"), scanLine("012", "C")});
    EXPECT_TRUE(w.RaeumeVorhanden());
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(ImportTest, DatEinlesenNumbersTheLinesOfEachRoom)
{
    CDateienRec d;
    d.stName = "n.dat";
    ASSERT_TRUE(db.AddNewDateienRec(&d));
    w.f_lDatId = d.lID;
    w.f_stfilename = datFile("n.dat", {scanLine("1", "A"), scanLine("2", "B"), scanLine("1", "C")});
    EXPECT_TRUE(w.DatEinlesen());
    const auto s = scans();
    ASSERT_EQ(s.size(), 3u);
    EXPECT_EQ(s[0].iReihenfolge, 1);
    EXPECT_EQ(s[1].iReihenfolge, 1);
    EXPECT_EQ(s[2].iReihenfolge, 2);
}

TEST_F(ImportTest, LinesAreNumberedPerRoomInStorageOrderAfterEarlierFilesRefusedLinesAndConflicts)
{
    const auto read = [&](const std::string& name, const std::vector<std::string>& lines) {
        CDateienRec d;
        d.stName = name;
        ASSERT_TRUE(db.AddNewDateienRec(&d));
        w.f_lDatId = d.lID;
        w.f_stfilename = datFile(name, lines);
        EXPECT_TRUE(w.DatEinlesen());
    };
    read("a.dat", {scanLine("1", "A1"), scanLine("2", "B1"), scanLine("1", "A2"), scanLine("1", "A3")});
    // Room 1 again (as reading all files anew does), A1 once more in its room (refused with a
    // warning), and A2 taken into room 3 by the conflict dialog: it keeps its earlier key.
    ui.conflictAnswers.push_back(true);
    read("b.dat", {scanLine("3", "C1"), scanLine("1", "A4"), scanLine("1", "A1"), scanLine("3", "A2"),
                   scanLine("3", "C2")});

    std::map<std::string, std::vector<CDatInventurRec>> byRoom;
    for (const CDatInventurRec& s : scans())
        byRoom[s.stRaum].push_back(s);
    std::map<std::string, std::vector<std::string>> numbered;
    for (auto& [room, lines] : byRoom) {
        std::sort(lines.begin(), lines.end(), [](const auto& x, const auto& y) { return x.lID < y.lID; });
        for (std::size_t i = 0; i < lines.size(); ++i) {
            EXPECT_EQ(lines[i].iReihenfolge, std::int16_t(i + 1)) << room << " " << lines[i].stInvNr;
            numbered[room].push_back(lines[i].stInvNr);
        }
    }
    EXPECT_EQ(numbered, (std::map<std::string, std::vector<std::string>>{
                            {"1", {"A1", "A3", "A4"}}, {"2", {"B1"}}, {"3", {"A2", "C1", "C2"}}}));
}

TEST_F(ImportTest, ARoomOfMoreLinesThanTheCounterReachesStopsTheNumberingThere)
{
    std::vector<std::string> lines{scanLine("A", "A1"), scanLine("A", "A2")};
    for (const std::string& line : manyLines("B", 32768))
        lines.push_back(line);
    lines.push_back(scanLine("C", "C1"));
    CDateienRec d;
    d.stName = "voll.dat";
    ASSERT_TRUE(db.AddNewDateienRec(&d));
    w.f_lDatId = d.lID;
    w.f_stfilename = datFile("voll.dat", lines);
    EXPECT_TRUE(w.DatEinlesen());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "Überlauf");
    // The room before is numbered, the overflowing room up to the last number that fits, and
    // the room after it stays unnumbered.
    auto number = lineNumbers();
    EXPECT_EQ(number["A1"], 1);
    EXPECT_EQ(number["A2"], 2);
    EXPECT_EQ(number["N1"], 1);
    EXPECT_EQ(number["N32767"], 32767);
    EXPECT_EQ(number["N32768"], 0);
    EXPECT_EQ(number["C1"], 0);
}

TEST_F(ImportTest, LargeFileReportsProgress)
{
    std::vector<std::string> lines;
    for (int i = 0; i < 2500; ++i)
        lines.push_back(scanLine(std::to_string(i % 10), "INV-" + std::to_string(i)));
    ASSERT_TRUE(import(datFile("gross.dat", lines)));
    EXPECT_EQ(scans().size(), 2500u);
    ASSERT_EQ(ui.progressTitles.size(), 1u);
    ASSERT_EQ(ui.progressReports.size(), 2u);
    EXPECT_EQ(ui.progressReports[0].first, "gross.dat");
    EXPECT_EQ(ui.progressReports[0].second, 1000);
    EXPECT_EQ(ui.progressEnded, 1);
    EXPECT_EQ(ui.progressDepth, 0);
}

TEST_F(ImportTest, RandomBytesNeverCrashTheReaders)
{
    std::mt19937 rng(20150201);
    const std::string alphabet = ",,,,,,\r\n\n 0123456789ABCxyz\xe4\x80\x81";
    ui.conflictAnswers.clear();
    for (int n = 0; n < 1000; ++n) {
        const std::string f = dir.file("fuzz" + std::to_string(n % 7) + ".dat");
        std::string bytes;
        const std::size_t len = rng() % 600;
        for (std::size_t i = 0; i < len; ++i)
            bytes += (rng() % 3 == 0) ? char(rng() % 256) : alphabet[rng() % alphabet.size()];
        if (n % 100 == 99)
            bytes += std::string(33000, ','); // a line too wide for the field count
        writeFile(f, bytes);
        w.f_stfilename = f;
        w.RaeumeNichtInAuftrag();
        w.VerschiedeneTage();
        w.RaeumeVorhanden();
        if (n % 5 == 0) {
            ASSERT_TRUE(db.DelAllDatInventur());
        }
        const bool ok = w.GetDataFromDat();
        if (!ok) {
            ASSERT_FALSE(ui.messages.empty());
            EXPECT_EQ(ui.messages.back().icon, MsgIcon::Critical);
        }
        ui.messages.clear();
        ui.conflicts.clear();
    }
    EXPECT_EQ(ui.progressDepth, 0);
    SUCCEED();
}

} // namespace
} // namespace qi::test
