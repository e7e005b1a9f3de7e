// The data file list of an order: adding with its checks, removing, opening in
// the editor and rebuilding all scan data from the files.

#include "WorkFixture.h"

#include "FileSystem.h"

#include <filesystem>

namespace qi::test {
namespace {

class FileListTest : public WorkTest {
protected:
    void SetUp() override
    {
        WorkTest::SetUp();
        addRoom("1");
        addRoom("2");
        addRoom("3");
    }
    void expectMessage(std::size_t i, const std::string& text, MsgIcon icon, const std::string& title,
                       MsgButtons buttons = MsgButtons::Ok)
    {
        ASSERT_LT(i, ui.messages.size());
        EXPECT_EQ(ui.messages[i].text, text);
        EXPECT_EQ(ui.messages[i].icon, icon);
        EXPECT_EQ(ui.messages[i].title, title);
        EXPECT_EQ(ui.messages[i].buttons, buttons);
    }
    CRaumRec room(const std::string& nr)
    {
        for (const CRaumRec& r : rooms())
            if (r.stRaumNr == nr)
                return r;
        return {};
    }
};

TEST_F(FileListTest, AddingWithoutRoomsIsRefused)
{
    ASSERT_TRUE(db.DelAllRaumRec());
    addFile(datFile("a.dat", {scanLine("1", "A")}));
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0, "Zuerst müssen Räume ausgewählt werden!", MsgIcon::Exclamation, "Problem");
    EXPECT_TRUE(ui.fileRequests.empty());
    EXPECT_TRUE(files().empty());
}

TEST_F(FileListTest, DialogOffersScannerFilterAndStartsInTheProjectThenInThePreviousFolder)
{
    w.pbAdd_Click(); // cancelled
    ASSERT_EQ(ui.fileRequests.size(), 1u);
    EXPECT_EQ(ui.fileRequests[0].filter, "Alle Dateien (*.*)|*.*|Scannerdaten (*.dat)|*.dat");
    EXPECT_EQ(ui.fileRequests[0].filterIndex, 2);
    EXPECT_EQ(ui.fileRequests[0].startFolder, settings.gstProjektPfad);
    std::filesystem::create_directory(dir.file("scans"));
    addFile(datFile("scans/a.dat", {scanLine("1", "A")}));
    w.pbAdd_Click();
    ASSERT_EQ(ui.fileRequests.size(), 3u);
    EXPECT_EQ(ui.fileRequests[2].startFolder, dir.path() + "/scans/");
}

TEST_F(FileListTest, CancellingTheDialogEndsQuietly)
{
    ui.fileChoices.push_back(std::nullopt);
    w.pbAdd_Click();
    ui.fileChoices.push_back(std::string());
    w.pbAdd_Click();
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_TRUE(ui.busyChanges.empty());
    EXPECT_TRUE(files().empty());
}

TEST_F(FileListTest, AddingRecordsTheFileImportsItAndSetsTheRooms)
{
    const std::string f = datFile("scan 1.dat", {scanLine("1", "A", "05.03.2015"), scanLine("1", "B", "05.03.2015"),
                                                 scanLine("02", "C", "05.03.2015")});
    addFile(f);
    EXPECT_TRUE(ui.messages.empty());
    const auto fl = files();
    ASSERT_EQ(fl.size(), 1u);
    EXPECT_EQ(fl[0].stName, "scan 1.dat");
    EXPECT_EQ(fl[0].stPfad, f);
    EXPECT_EQ(fl[0].Datum, "05.03.2015");
    const auto s = scans();
    ASSERT_EQ(s.size(), 3u);
    EXPECT_EQ(s[0].lDatID, fl[0].lID);
    EXPECT_EQ(s[1].iReihenfolge, 2);
    EXPECT_EQ(room("1").ststatus, "E");
    EXPECT_EQ(room("1").iAnzahl, 2);
    EXPECT_EQ(room("2").ststatus, "E");
    EXPECT_EQ(room("3").ststatus, "N");
    // The lists as the window shows them.
    ASSERT_EQ(w.lvDateien.size(), 1u);
    EXPECT_EQ(w.lvDateien[0].key, "$" + std::to_string(fl[0].lID));
    EXPECT_EQ(w.lvDateien[0].text, "scan 1.dat");
    EXPECT_EQ(w.lvDateien[0].subItems, (std::vector<std::string>{"05.03.2015", f}));
    EXPECT_TRUE(w.pbRemoveEnabled);
    ASSERT_EQ(w.lvRooms.size(), 3u);
    EXPECT_EQ(w.lvRooms[0].key, "R " + std::to_string(room("1").lID));
    EXPECT_EQ(w.lvRooms[0].text, "1");
    EXPECT_EQ(w.lvRooms[0].subItems, (std::vector<std::string>{"E", "05.03.2015", "2", "scan 1.dat"}));
    EXPECT_EQ(w.lvRooms[2].subItems, (std::vector<std::string>{"N", "", "0", ""}));
    EXPECT_EQ(ui.busyChanges, (std::vector<bool>{true, false}));
    EXPECT_EQ(w.f_lDatId, fl[0].lID);
}

TEST_F(FileListTest, DateOfTheFileIsField3OfTheFirstLineEvenIfShort)
{
    addFile(datFile("d.dat", {"Kopf,x,07.07.2015", scanLine("1", "A", "01.02.2015")}));
    ASSERT_EQ(files().size(), 1u);
    EXPECT_EQ(files()[0].Datum, "07.07.2015");
}

TEST_F(FileListTest, EmptyDataFileEndsWithTheProcedureMessageAndIsNotAdded)
{
    const std::string f = dir.file("leer.dat");
    writeFile(f, "");
    addFile(f);
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0, "frmWork.pbAdd_Click\r\nDie Datei '" + displayPath(f) + "' ist leer.", MsgIcon::Critical,
                  "QInventur");
    EXPECT_FALSE(ui.busy);
    EXPECT_TRUE(files().empty());
    // A first line without records still gives the file its date and passes the checks.
    writeFile(f, "\r\n");
    ui.messages.clear();
    addFile(f);
    EXPECT_TRUE(ui.messages.empty());
    ASSERT_EQ(files().size(), 1u);
    EXPECT_EQ(files()[0].Datum, "");
}

TEST_F(FileListTest, FileWithForeignRoomsIsRefused)
{
    addFile(datFile("f.dat", {scanLine("1", "A"), scanLine("9", "B")}));
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0, "In der Datei sind Räume enthalten, die nicht zum Auftrag gehören. Bearbeiten Sie bitte die Textdatei.",
                  MsgIcon::None, "Quarn-Inventur");
    EXPECT_EQ(ui.busyChanges, (std::vector<bool>{true, false}));
    EXPECT_TRUE(files().empty());
    EXPECT_TRUE(scans().empty());
}

TEST_F(FileListTest, FileOfSeveralDaysIsRefused)
{
    addFile(datFile("t.dat", {scanLine("1", "A", "01.02.2015"), scanLine("2", "B", "02.02.2015")}));
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0, "In der Datei sind Daten an verschiedenen Tagen aufgenommen worden. Bearbeiten Sie bitte die Textdatei.",
                  MsgIcon::None, "Quarn-Inventur");
    EXPECT_TRUE(files().empty());
}

TEST_F(FileListTest, SecondFileWithRoomsAlreadyReadIsRefusedBeforeAnyRowIsWritten)
{
    addFile(datFile("a.dat", {scanLine("1", "A")}));
    addFile(datFile("b.dat", {scanLine("2", "B"), scanLine("1", "C")}));
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0, "In der Datei sind Daten von Räumen, die bereits eingelesen wurden.", MsgIcon::None,
                  "Quarn-Inventur");
    EXPECT_EQ(files().size(), 1u);
    EXPECT_EQ(scans().size(), 1u);
    EXPECT_FALSE(ui.busy);
}

TEST_F(FileListTest, ChecksRunInTheirOrderAndOnlyTheFirstRefusalIsShown)
{
    addFile(datFile("a.dat", {scanLine("1", "A")}));
    // Foreign room, two days and a room already read: the room check of the order answers first.
    addFile(datFile("b.dat", {scanLine("1", "B", "01.02.2015"), scanLine("9", "C", "02.02.2015")}));
    // Two days and a room already read: the date check answers before the check of rooms read.
    addFile(datFile("c.dat", {scanLine("1", "D", "01.02.2015"), scanLine("2", "E", "02.02.2015")}));
    ASSERT_EQ(ui.messages.size(), 2u);
    expectMessage(0, "In der Datei sind Räume enthalten, die nicht zum Auftrag gehören. Bearbeiten Sie bitte die Textdatei.",
                  MsgIcon::None, "Quarn-Inventur");
    expectMessage(1, "In der Datei sind Daten an verschiedenen Tagen aufgenommen worden. Bearbeiten Sie bitte die Textdatei.",
                  MsgIcon::None, "Quarn-Inventur");
    EXPECT_EQ(files().size(), 1u);
    EXPECT_EQ(scans().size(), 1u);
}

TEST_F(FileListTest, UnreadableChosenFileEndsWithTheProcedureMessage)
{
    addFile(dir.file("gibt-es-nicht.dat"));
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0, "frmWork.pbAdd_Click\r\nDatei nicht gefunden", MsgIcon::Critical, "QInventur");
    EXPECT_FALSE(ui.busy);
    EXPECT_TRUE(files().empty());
}

TEST_F(FileListTest, SameFileNameFromAnotherFolderIsRefused)
{
    addFile(datFile("a.dat", {scanLine("1", "A")}));
    std::filesystem::create_directory(dir.file("anders"));
    const std::string other = dir.file("anders/a.dat");
    writeFile(other, crlf({scanLine("2", "B")}));
    addFile(other);
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0, "Datei dieses Namens wurde bereits hinzugefügt.", MsgIcon::None, "Quarn-Inventur");
    EXPECT_EQ(files().size(), 1u);
    EXPECT_EQ(scans().size(), 1u);
    EXPECT_FALSE(ui.busy);
}

TEST_F(FileListTest, RemovingAsksFirstAndNoDoesNothing)
{
    addFile(datFile("a.dat", {scanLine("1", "A")}));
    ui.answers.push_back(MsgResult::No);
    w.pbRemove_Click(w.lvDateien[0].key, w.lvDateien[0].text);
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0, "Die Datei 'a.dat' entfernen und Inventurdaten entsprechen verbleibenden Dateien aktualisieren ?",
                  MsgIcon::None, "Quarn-Inventur", MsgButtons::YesNo);
    EXPECT_EQ(files().size(), 1u);
    EXPECT_EQ(scans().size(), 1u);
}

TEST_F(FileListTest, RemovingTheOnlyFileLeavesNoScanDataAndResetRooms)
{
    addFile(datFile("a.dat", {scanLine("1", "A"), scanLine("2", "B")}));
    CDifferenzlisteRec diff;
    diff.stIstInvNR = "A";
    ASSERT_TRUE(db.AddNewDifferenzlisteRec(&diff));
    CInvlisteRec il;
    il.stInvNr = "A";
    ASSERT_TRUE(db.AddNewInvlisteRec(&il));
    CArtikellisteRec art;
    art.stArtikel = "X-1";
    ASSERT_TRUE(db.AddNewArtikellisteRec(&art));
    ASSERT_EQ(room("1").ststatus, "E");

    w.pbRemove_Click(w.lvDateien[0].key, w.lvDateien[0].text);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_TRUE(files().empty());
    EXPECT_TRUE(scans().empty());
    CDifferenzlisteRecColl d;
    ASSERT_TRUE(db.ReadAllDifferenzlisteRec2Coll(d));
    EXPECT_EQ(d.Count(), 0);
    CInvlisteRecColl i;
    ASSERT_TRUE(db.ReadAllInvlisteRec2Coll(i));
    EXPECT_EQ(i.Count(), 0);
    CArtikellisteRecColl a;
    ASSERT_TRUE(db.ReadAllArtikellisteRec2Coll(a));
    EXPECT_EQ(a.Count(), 0);
    for (const CRaumRec& r : rooms()) {
        EXPECT_EQ(r.ststatus, "N");
        EXPECT_EQ(r.Datum, "");
        EXPECT_EQ(r.iAnzahl, 0);
        EXPECT_EQ(r.lDatID, 0);
    }
    EXPECT_TRUE(w.lvDateien.empty());
    EXPECT_FALSE(w.pbRemoveEnabled);
    EXPECT_EQ(w.f_stfilename, "");
}

TEST_F(FileListTest, RemovingOneOfTwoFilesRebuildsFromTheOther)
{
    addFile(datFile("a.dat", {scanLine("1", "A")}));
    addFile(datFile("b.dat", {scanLine("2", "B"), scanLine("2", "C")}));
    ASSERT_EQ(w.lvDateien.size(), 2u);
    w.pbRemove_Click(w.lvDateien[0].key, w.lvDateien[0].text);
    const auto s = scans();
    ASSERT_EQ(s.size(), 2u);
    EXPECT_EQ(s[0].stInvNr, "B");
    EXPECT_EQ(s[1].iReihenfolge, 2);
    EXPECT_EQ(room("1").ststatus, "N");
    EXPECT_EQ(room("2").ststatus, "E");
    ASSERT_EQ(w.lvDateien.size(), 1u);
    EXPECT_EQ(w.lvDateien[0].text, "b.dat");
}

TEST_F(FileListTest, RebuildReadsAllFilesAgain)
{
    const std::string a = datFile("a.dat", {scanLine("1", "A")});
    addFile(a);
    addFile(datFile("b.dat", {scanLine("2", "B")}));
    // Edits take effect at the next rebuild.
    writeFile(a, crlf({scanLine("1", "A"), scanLine("1", "A2")}));
    w.pbNeu_Click();
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(scans().size(), 3u);
    EXPECT_EQ(room("1").iAnzahl, 2);
    EXPECT_EQ(ui.progressDepth, 0);
    EXPECT_FALSE(ui.busy);
}

TEST_F(FileListTest, ARebuildWithARoomOfMoreLinesThanTheCounterReachesNumbersTheRoomsBeforeItOnly)
{
    addFile(datFile("a.dat", {scanLine("3", "C1")}));
    std::vector<std::string> lines = manyLines("2", 32768);
    lines.insert(lines.begin(), scanLine("1", "A1"));
    addFile(datFile("b.dat", lines));
    ui.messages.clear();
    w.pbNeu_Click();
    // The numbering overflows, and so does the count of the room's lines.
    ASSERT_EQ(ui.messages.size(), 2u);
    EXPECT_EQ(ui.messages[0].text, "Überlauf");
    EXPECT_EQ(ui.messages[1].text, "Numerischer Feldüberlauf.");
    auto number = lineNumbers();
    EXPECT_EQ(number["A1"], 1);
    EXPECT_EQ(number["N32767"], 32767);
    EXPECT_EQ(number["N32768"], 0);
    // Read anew, the room after the overflowing one stays unnumbered, whichever file it came from.
    EXPECT_EQ(number["C1"], 0);
}

TEST_F(FileListTest, FileMovedAwayBlocksTheRebuild)
{
    const std::string a = datFile("a.dat", {scanLine("1", "A")});
    addFile(a);
    ASSERT_TRUE(std::filesystem::copy_file(a, dir.file("a.bak")));
    ASSERT_TRUE(removeFile(a));
    w.pbNeu_Click();
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0,
                  "Die Datei " + a +
                      " ist an dieser Stelle nicht mehr vorhanden. Stellen Sie den alten Zustand wieder her oder bauen "
                      "Sie die Dateiliste neu auf",
                  MsgIcon::None, "Quarn-Inventur");
    EXPECT_TRUE(scans().empty());
    EXPECT_EQ(room("1").ststatus, "N");
    EXPECT_EQ(files().size(), 1u);
    EXPECT_FALSE(ui.busy);
    EXPECT_EQ(ui.progressDepth, 0);
    // Back in place, the rebuild works again.
    ASSERT_TRUE(std::filesystem::copy_file(dir.file("a.bak"), a));
    ui.messages.clear();
    w.pbNeu_Click();
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(scans().size(), 1u);
}

TEST_F(FileListTest, MissingFileRemovedFromTheListLetsTheRebuildReadTheOthers)
{
    const std::string a = datFile("a.dat", {scanLine("1", "A")});
    addFile(a);
    addFile(datFile("b.dat", {scanLine("2", "B"), scanLine("2", "C")}));
    ASSERT_TRUE(removeFile(a));
    w.pbNeu_Click();
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_TRUE(scans().empty());
    ui.messages.clear();
    w.pbRemove_Click(w.lvDateien[0].key, w.lvDateien[0].text);
    ASSERT_EQ(ui.messages.size(), 1u); // only the question
    expectMessage(0, "Die Datei 'a.dat' entfernen und Inventurdaten entsprechen verbleibenden Dateien aktualisieren ?",
                  MsgIcon::None, "Quarn-Inventur", MsgButtons::YesNo);
    const auto s = scans();
    ASSERT_EQ(s.size(), 2u);
    EXPECT_EQ(s[0].stInvNr, "B");
    EXPECT_EQ(room("1").ststatus, "N");
    EXPECT_EQ(room("2").ststatus, "E");
    EXPECT_EQ(room("2").iAnzahl, 2);
}

TEST_F(FileListTest, RoomConflictDuringRebuildClearsEverything)
{
    addFile(datFile("a.dat", {scanLine("1", "A")}));
    const std::string b = datFile("b.dat", {scanLine("2", "B")});
    addFile(b);
    ASSERT_EQ(scans().size(), 2u);
    writeFile(b, crlf({scanLine("2", "B"), scanLine("1", "C")}));
    w.pbNeu_Click();
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0,
                  "In der Datei " + b +
                      " sind Daten von Räumen, die von einer vorhergehenden Datei bereits eingelesen wurden.",
                  MsgIcon::None, "Quarn-Inventur");
    EXPECT_TRUE(scans().empty());
    for (const CRaumRec& r : rooms())
        EXPECT_EQ(r.ststatus, "N");
    EXPECT_EQ(files().size(), 2u);
    EXPECT_EQ(w.lvDateien.size(), 2u);
    EXPECT_FALSE(ui.busy);
}

TEST_F(FileListTest, DoubleClickOpensThePathUnquotedEvenWithBlanks)
{
    const std::string f = datFile("mit blanks.dat", {scanLine("1", "A")});
    addFile(f);
    w.lvDateien_DblClick(w.lvDateien[0].key);
    ASSERT_EQ(ui.editorPaths.size(), 1u);
    EXPECT_EQ(ui.editorPaths[0], f);
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(FileListTest, DoubleClickOnAMissingFileExplains)
{
    const std::string f = datFile("a.dat", {scanLine("1", "A")});
    addFile(f);
    ASSERT_TRUE(removeFile(f));
    w.lvDateien_DblClick(w.lvDateien[0].key);
    EXPECT_TRUE(ui.editorPaths.empty());
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0,
                  "Die Datei ist an der ursprünglichen Stelle nicht mehr vorhanden. Stellen Sie den alten Zustand "
                  "wieder her oder bauen Sie die Dateiliste neu auf",
                  MsgIcon::None, "Quarn-Inventur");
}

TEST_F(FileListTest, InitFillsTheFileListAndInitDataTheRooms)
{
    int filesShown = 0, roomsShown = 0;
    w.onDateienChanged = [&] { ++filesShown; };
    w.onRoomsChanged = [&] { ++roomsShown; };
    EXPECT_TRUE(w.Init());
    EXPECT_TRUE(w.lvDateien.empty());
    EXPECT_FALSE(w.pbRemoveEnabled);
    EXPECT_TRUE(w.InitData());
    EXPECT_EQ(w.lvRooms.size(), 3u);
    EXPECT_EQ(w.f_collRooms.Count(), 3);
    EXPECT_EQ(filesShown, 1);
    EXPECT_EQ(roomsShown, 1);
}

TEST_F(FileListTest, InitReportsAClosedDatabase)
{
    db.CloseDb();
    EXPECT_FALSE(w.Init());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("frmWork.Init\r\n", 0), 0u);
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
}

TEST_F(FileListTest, ItemKeysGiveTheIdentifierFromTheirSecondCharacter)
{
    EXPECT_EQ(idFromItemKey("$17"), 17);
    EXPECT_EQ(idFromItemKey("R 5"), 5);
    EXPECT_EQ(idFromItemKey("$"), 0);
    EXPECT_EQ(idFromItemKey("$x"), 0);
    EXPECT_EQ(idFromItemKey(""), 0);
}

} // namespace
} // namespace qi::test
