// Each command of qinventur-cli and each of its exit codes, as a process on the
// generated demo project: what it writes to standard output and error, and what it
// leaves in the register and the order's database.

#include "CliFixture.h"

#include "FileSystem.h"
#include "OrderName.h"
#include "ProjectAccess.h"
#include "ProjectLock.h"
#include "TextFile.h"

#include <filesystem>
#include <map>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

const std::string kUnchanged = "[qinventur-cli] Der Auftrag bleibt, wie er vor dem Befehl war.\n";

class CliCommandsTest : public CliFixture {
protected:
    std::string status(const std::string& order, const std::string& room)
    {
        return toText(read(orderFile(order))->scalar("SELECT ststatus FROM T_Raum WHERE stRaumNr = ?1", {room}));
    }
    std::int64_t rows(const std::string& order, const std::string& table)
    {
        return count(orderFile(order), "SELECT COUNT(*) FROM " + table);
    }
    std::vector<std::string> roomArgs(const std::string& order)
    {
        std::vector<std::string> args = {"raeume", order, "--setzen"};
        for (const std::string& nr : orderRooms())
            args.push_back(nr);
        return args;
    }
};

// ---------------------------------------------------------------- project

TEST_F(CliCommandsTest, AnEmptyProjectListsNoOrders)
{
    const CliRun r = expectCli(0, {"auftraege"});
    EXPECT_EQ(r.out, "Name\terstellt\tgeändert\tErsteller\n");
    EXPECT_EQ(r.err, "");
    // Start-up seeded the project from the template, as the main window does.
    EXPECT_TRUE(fileExists(demoDir + "/QInventur.mdb"));
    EXPECT_TRUE(fileExists(demoDir + "/QAuftrag.mdb"));
}

TEST_F(CliCommandsTest, AProjectThatIsNotThereEndsWithExitCodeThree)
{
    const CliRun r = expectCli(3, {"--projekt", root.file("fehlt"), "auftraege"});
    EXPECT_EQ(r.err, "[Problem] Projekt nicht gefunden!\n");
    EXPECT_EQ(r.out, "");
}

TEST_F(CliCommandsTest, TheProjectCanBeGivenOnTheCommandLine)
{
    const std::string other = root.file("Zweitprojekt");
    demo::writeDemoProject(demo::smallSizes(), other, "");
    expectCli(0, {"--projekt", other, "anlegen", "Nord"});
    EXPECT_TRUE(fileExists(other + "/Inventur/Nord.mdb"));
    EXPECT_FALSE(fileExists(orderFile("Nord")));
    // Relative to the working folder, after the command as well.
    const auto cwd = fs::current_path();
    fs::current_path(root.path());
    const CliRun r = cli({"auftraege", "--projekt=Zweitprojekt"});
    fs::current_path(cwd);
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out.substr(r.out.find('\n') + 1, 5), "Nord\t");
    EXPECT_EQ(expectCli(0, {"auftraege"}).out, "Name\terstellt\tgeändert\tErsteller\n");
}

// ---------------------------------------------------------------- anlegen, auftraege, loeschen

TEST_F(CliCommandsTest, CreatedOrdersAreListedWithTheirCreator)
{
    CliRun r = expectCli(0, {"anlegen", "Nord", "--mitarbeiter", "Meier"});
    EXPECT_EQ(r.out, "Auftrag 'Nord' angelegt: " + displayPath(demoDir + "/Inventur/Nord.mdb") + "\n");
    EXPECT_EQ(r.err, "");
    expectCli(0, {"anlegen", "Lager..Süd"});
    EXPECT_EQ(registeredOrders(), (std::vector<std::string>{"Nord", "Lager..Süd"}));
    EXPECT_EQ(toText(read(orderFile("Lager..Süd"))->scalar("SELECT stAuftrag FROM T_Auftrag")), "Lager..Süd");
    EXPECT_EQ(toText(read(demoDir + "/QInventur.mdb")->scalar("SELECT stPfad FROM T_Auftrag WHERE lID = 1")),
              "\\Inventur\\Nord.mdb");

    r = expectCli(0, {"auftraege"});
    const std::vector<std::string> lines = [&] {
        std::vector<std::string> v;
        std::size_t at = 0;
        while (at < r.out.size()) {
            const std::size_t end = r.out.find('\n', at);
            v.push_back(r.out.substr(at, end - at));
            at = end + 1;
        }
        return v;
    }();
    ASSERT_EQ(lines.size(), 3u) << r.out;
    EXPECT_EQ(lines[1].substr(0, 5), "Nord\t");
    EXPECT_EQ(lines[1].substr(lines[1].size() - 6), "\tMeier");
    EXPECT_EQ(lines[1].size(), 5 + 19 + 1 + 19 + 6u) << lines[1]; // two dates dd.mm.yyyy hh:mm:ss
    EXPECT_EQ(lines[2].substr(0, 12), "Lager..Süd\t");
}

TEST_F(CliCommandsTest, ATakenNameEndsWithExitCodeFiveAndChangesNothing)
{
    expectCli(0, {"anlegen", "Nord"});
    const auto before = treeDigest(demoDir);
    const CliRun r = expectCli(5, {"anlegen", "Nord", "--mitarbeiter", "Schulz"});
    EXPECT_EQ(r.err, "[Problem] Es existiert bereits ein Auftrag mit diesem Namen!\n");
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(treeDigest(demoDir), before);
    // Letter case makes another name.
    expectCli(0, {"anlegen", "NORD"});
}

class RefusedCliNames : public CliCommandsTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(RefusedCliNames, EndWithExitCodeSixBeforeAnythingIsWritten)
{
    const std::string& name = GetParam();
    const auto before = treeDigest(root.path());
    const CliRun r = expectCli(6, {"anlegen", name});
    EXPECT_EQ(r.err, "[QInventur] frmMain.MakeDatabase\n" + orderNameProblem(name) + "\n");
    // Only start-up's seeding of the new project has happened.
    auto after = treeDigest(root.path());
    for (const char* seeded : {"QInventur/Demo/QInventur.mdb", "QInventur/Demo/QAuftrag.mdb"})
        after.erase(seeded);
    for (auto it = after.begin(); it != after.end();)
        it = it->first.rfind("QInventur/Demo/Report", 0) == 0 && !before.count(it->first) ? after.erase(it) : ++it;
    EXPECT_EQ(after, before);
    EXPECT_FALSE(fs::exists(demoDir + "/Inventur"));
}

INSTANTIATE_TEST_SUITE_P(Names, RefusedCliNames,
                         ::testing::Values("..", "../evil", "C:evil", "a\\b", "NUL", "com1.Lager", "Lager.", "Lager ",
                                           "zeile\nneu", std::string(244, 'x')));

TEST_F(CliCommandsTest, DeletingRemovesRowAndFileAndAnUnknownOrderIsExitCodeFour)
{
    expectCli(0, {"anlegen", "Nord"});
    expectCli(0, {"anlegen", "Süd"});
    CliRun r = expectCli(0, {"loeschen", "Nord"});
    EXPECT_EQ(r.out, "Auftrag 'Nord' gelöscht.\n");
    EXPECT_FALSE(fileExists(orderFile("Nord")));
    EXPECT_TRUE(fileExists(orderFile("Süd")));
    EXPECT_TRUE(folderExists(demoDir + "/Inventur"));
    EXPECT_EQ(registeredOrders(), std::vector<std::string>{"Süd"});

    const auto before = treeDigest(demoDir);
    for (const char* command : {"loeschen", "raeume", "auswerten", "archiv", "neu-einlesen"}) {
        r = expectCli(4, {command, "Nord"});
        EXPECT_EQ(r.err, "[qinventur-cli] Einen Auftrag 'Nord' gibt es im Projekt nicht.\n") << command;
    }
    r = expectCli(4, {"hinzufuegen", "süd", scanFile("Scan_EG_Teil1.dat")});
    EXPECT_EQ(r.err, "[qinventur-cli] Einen Auftrag 'süd' gibt es im Projekt nicht.\n");
    EXPECT_EQ(treeDigest(demoDir), before);
}

TEST_F(CliCommandsTest, AnOrderWhoseDatabaseIsGoneFailsWithExitCodeOne)
{
    expectCli(0, {"anlegen", "Nord"});
    fs::remove(orderFile("Nord"));
    const CliRun r = expectCli(1, {"raeume", "Nord"});
    EXPECT_EQ(r.err.rfind("[QInventur] frmMain.lvAuftraege_DblClick\nDie Datenbank " +
                              displayPath(orderFile("Nord")) + " konnte nicht geöffnet werden!",
                          0),
              0u)
        << r.err;
    expectCli(1, {"archiv", "Nord"});
}

TEST_F(CliCommandsTest, ARegisterRowPointingOutsideTheProjectIsNeitherOpenedNorDeleted)
{
    expectCli(0, {"anlegen", "Nord"});
    makeOrderDatabase(root.file("fremd.mdb"));
    Database::open(demoDir + "/QInventur.mdb")->execute("UPDATE T_Auftrag SET stPfad = ?1", {"\\..\\..\\fremd.mdb"});
    const auto before = treeDigest(root.path());
    const std::string why = "Die Datenbank '" + displayPath(demoDir + "/../../fremd.mdb") +
                            "' liegt nicht im Ordner Inventur des Projekts. Sie wird weder geöffnet noch gelöscht.\n";
    CliRun r = expectCli(1, {"raeume", "Nord"});
    EXPECT_EQ(r.err, "[QInventur] frmMain.lvAuftraege_DblClick\n" + why);
    r = expectCli(1, {"loeschen", "Nord"});
    EXPECT_EQ(r.err, "[QInventur] frmMain.mnuDateiFkt_Click\n" + why);
    EXPECT_EQ(treeDigest(root.path()), before);
}

// ---------------------------------------------------------------- raeume

TEST_F(CliCommandsTest, RoomsAreSetListedAndMarked)
{
    expectCli(0, {"anlegen", "Nord"});
    EXPECT_EQ(expectCli(0, {"raeume", "Nord"}).out, "Raum\tStatus\tDatum\tAnzahl\tDatei\n");

    const std::vector<std::string> rooms = orderRooms();
    ASSERT_GE(rooms.size(), 6u);
    CliRun r = expectCli(0, {"raeume", "Nord", "--setzen", rooms[2], rooms[0] + ":L", rooms[1] + ":l"});
    EXPECT_EQ(r.out, "3 Räume im Auftrag 'Nord' gespeichert.\n");
    EXPECT_EQ(r.err, "");
    // In the order of the building structure, as the window lists them.
    r = expectCli(0, {"raeume", "Nord"});
    EXPECT_EQ(r.out, "Raum\tStatus\tDatum\tAnzahl\tDatei\n" + rooms[0] + "\tL\t\t0\t\n" + rooms[1] + "\tL\t\t0\t\n" +
                         rooms[2] + "\tN\t\t0\t\n");
    EXPECT_EQ(toText(read(orderFile("Nord"))->scalar("SELECT DISTINCT stAuftrag FROM T_Raum")), "Nord");

    // A room of the order keeps its mark unless :N takes it back; rooms left out go.
    writeFile(root.file("raeume.txt"), "# Erdgeschoss\r\n" + rooms[0] + "\r\n\r\n  " + rooms[1] + ":N  \r\n" +
                                           rooms[3] + "\r\n");
    r = expectCli(0, {"raeume", "Nord", "--setzen", "--datei", root.file("raeume.txt"), rooms[4] + ":L"});
    EXPECT_EQ(r.out, "4 Räume im Auftrag 'Nord' gespeichert.\n");
    EXPECT_EQ(status("Nord", rooms[0]), "L");
    EXPECT_EQ(status("Nord", rooms[1]), "N");
    EXPECT_EQ(status("Nord", rooms[3]), "N");
    EXPECT_EQ(status("Nord", rooms[4]), "L");
    EXPECT_EQ(rows("Nord", "T_Raum"), 4);

    r = expectCli(0, {"raeume", "Nord", "--setzen", "--alle"});
    EXPECT_EQ(r.out, std::to_string(inst.rooms.size()) + " Räume im Auftrag 'Nord' gespeichert.\n");
    EXPECT_EQ(rows("Nord", "T_Raum"), std::int64_t(inst.rooms.size()));
    EXPECT_EQ(status("Nord", rooms[4]), "L");
}

TEST_F(CliCommandsTest, SettingRoomsAfterScansKeepsTheirStatusAndEmptiesTheDifferenceList)
{
    prepareOrder("Nord");
    expectCli(0, {"auswerten", "Nord"});
    ASSERT_GT(rows("Nord", "T_Differenzliste"), 0);
    const std::vector<std::string> rooms = orderRooms();
    // The first room is left out: its scans stay, but it is no room of the order any more.
    std::vector<std::string> args = {"raeume", "Nord", "--setzen"};
    args.insert(args.end(), rooms.begin() + 1, rooms.end());
    expectCli(0, args);
    EXPECT_EQ(rows("Nord", "T_Differenzliste"), 0);
    EXPECT_EQ(rows("Nord", "T_Raum"), std::int64_t(rooms.size() - 1));
    for (std::size_t i = 1; i < rooms.size(); ++i)
        EXPECT_EQ(status("Nord", rooms[i]), "E") << rooms[i];
}

TEST_F(CliCommandsTest, ARoomNumberNamesTheRoomItEqualsUnderTheTextComparison)
{
    expectCli(0, {"anlegen", "Nord"});
    const std::vector<std::string> rooms = orderRooms();
    ASSERT_GE(rooms.size(), 3u);
    // Trailing blanks don't count, as in every comparison of room numbers; each room once.
    const CliRun r = expectCli(0, {"raeume", "Nord", "--setzen", rooms[1] + "  :L", rooms[0], rooms[1]});
    EXPECT_EQ(r.out, "2 Räume im Auftrag 'Nord' gespeichert.\n");
    EXPECT_EQ(status("Nord", rooms[0]), "N");
    EXPECT_EQ(status("Nord", rooms[1]), "L");
    EXPECT_EQ(rows("Nord", "T_Raum"), 2);
}

TEST_F(CliCommandsTest, AnUnknownRoomIsExitCodeEightAndChangesNothing)
{
    expectCli(0, {"anlegen", "Nord"});
    expectCli(0, {"raeume", "Nord", "--setzen", orderRooms()[0]});
    const std::string before = contentDigest(orderFile("Nord"));
    const CliRun r = expectCli(8, {"raeume", "Nord", "--setzen", orderRooms()[1], "X-999"});
    EXPECT_EQ(r.err, "[qinventur-cli] Einen Raum 'X-999' gibt es in der Gebäudestruktur nicht.\n");
    EXPECT_EQ(contentDigest(orderFile("Nord")), before);
    const CliRun missing = expectCli(14, {"raeume", "Nord", "--setzen", "--datei", root.file("fehlt.txt")});
    EXPECT_EQ(missing.err,
              "[qinventur-cli] Die Datei '" + displayPath(root.file("fehlt.txt")) + "' kann nicht gelesen werden.\n");
}

// ---------------------------------------------------------------- hinzufuegen

TEST_F(CliCommandsTest, AddingToAnOrderWithoutRoomsIsExitCodeSeven)
{
    expectCli(0, {"anlegen", "Nord"});
    const std::string before = contentDigest(orderFile("Nord"));
    const CliRun r = expectCli(7, {"hinzufuegen", "Nord", scanFile("Scan_EG_Teil1.dat")});
    EXPECT_EQ(r.err, "[Problem] Zuerst müssen Räume ausgewählt werden!\n");
    EXPECT_EQ(contentDigest(orderFile("Nord")), before);
}

TEST_F(CliCommandsTest, RefusedFilesEndWithTheirExitCodeAndLeaveNoTrace)
{
    expectCli(0, {"anlegen", "Nord"});
    expectCli(0, roomArgs("Nord"));
    expectCli(0, {"hinzufuegen", "Nord", scanFile("Scan_EG_Teil1.dat"), "--konflikt", "behalten"});
    const std::string before = contentDigest(orderFile("Nord"));
    const auto refused = [&](const std::string& file, const std::string& reason) {
        return "[qinventur-cli] Die Datei '" + displayPath(scanFile(file)) + "' ist abgewiesen: " + reason + ".\n";
    };
    const auto expectUnchanged = [&] {
        EXPECT_EQ(contentDigest(orderFile("Nord")), before);
        EXPECT_FALSE(fileExists(orderFile("Nord") + "-journal"));
    };

    CliRun r = expectCli(9, {"hinzufuegen", "Nord", scanFile("Scan_Raum_ausserhalb.dat")});
    EXPECT_EQ(r.err, "[Quarn-Inventur] In der Datei sind Räume enthalten, die nicht zum Auftrag gehören. Bearbeiten "
                     "Sie bitte die Textdatei.\n" +
                         refused("Scan_Raum_ausserhalb.dat", "Datei enthält Räume, die nicht zum Auftrag gehören") +
                         kUnchanged);
    expectUnchanged();

    r = expectCli(10, {"hinzufuegen", "Nord", scanFile("Scan_Zwei_Tage.dat")});
    EXPECT_EQ(r.err, "[Quarn-Inventur] In der Datei sind Daten an verschiedenen Tagen aufgenommen worden. Bearbeiten "
                     "Sie bitte die Textdatei.\n" +
                         refused("Scan_Zwei_Tage.dat", "Datei enthält Daten verschiedener Tage") + kUnchanged);
    expectUnchanged();

    r = expectCli(11, {"hinzufuegen", "Nord", scanFile("Scan_EG_Teil1.dat")});
    EXPECT_EQ(r.err, "[Quarn-Inventur] In der Datei sind Daten von Räumen, die bereits eingelesen wurden.\n" +
                         refused("Scan_EG_Teil1.dat", "Räume der Datei sind bereits eingelesen") + kUnchanged);
    expectUnchanged();

    // Another file under the name of one added before.
    fs::create_directories(root.file("anders"));
    fs::copy_file(scanFile("Scan_EG_Teil2.dat"), root.file("anders/Scan_EG_Teil1.dat"));
    r = expectCli(12, {"hinzufuegen", "Nord", root.file("anders/Scan_EG_Teil1.dat"), "--konflikt", "behalten"});
    EXPECT_EQ(r.err, "[Quarn-Inventur] Datei dieses Namens wurde bereits hinzugefügt.\n[qinventur-cli] Die Datei '" +
                         displayPath(root.file("anders/Scan_EG_Teil1.dat")) +
                         "' ist abgewiesen: Datei dieses Namens ist bereits hinzugefügt.\n" + kUnchanged);
    expectUnchanged();

    r = expectCli(14, {"hinzufuegen", "Nord", root.file("fehlt.dat")});
    EXPECT_EQ(r.err, "[qinventur-cli] Die Datei '" + displayPath(root.file("fehlt.dat")) + "' gibt es nicht.\n");
    expectUnchanged();

    // A refused file undoes the good one before it, which is not told as added.
    r = expectCli(10, {"hinzufuegen", "Nord", scanFile("Scan_EG_Teil2.dat"), scanFile("Scan_Zwei_Tage.dat"),
                       "--konflikt", "verwerfen"});
    EXPECT_EQ(r.out, "");
    expectUnchanged();
    EXPECT_EQ(rows("Nord", "T_Dateien"), 1);
}

TEST_F(CliCommandsTest, AConflictWithoutAPolicyStopsWithExitCodeThirteenAndTheOrderAsBefore)
{
    expectCli(0, {"anlegen", "Nord"});
    expectCli(0, roomArgs("Nord"));
    const std::string before = contentDigest(orderFile("Nord"));
    const CliRun r = expectCli(13, {"hinzufuegen", "Nord", scanFile("Scan_EG_Teil1.dat")});
    EXPECT_EQ(contentDigest(orderFile("Nord")), before);
    EXPECT_EQ(r.out, "");
    // The messages shown before the conflict, then the conflict and what to do.
    EXPECT_NE(r.err.find("[Quarn-Inventur] Warnung: Im Raum "), std::string::npos) << r.err;
    const std::size_t conflict = r.err.find("[Fehler] Bitte zwischen beiden Räumen entscheiden !\nInventarnummer ");
    ASSERT_NE(conflict, std::string::npos) << r.err;
    EXPECT_NE(r.err.find("\nErstes Auftreten: Raum ", conflict), std::string::npos);
    EXPECT_NE(r.err.find(", Datei Scan_EG_Teil1.dat, Datum 14.03.2025\nZweites Auftreten: Raum ", conflict),
              std::string::npos);
    const std::string last = "[qinventur-cli] Ohne --konflikt behalten oder --konflikt verwerfen kann der Befehl "
                             "nicht entscheiden. Der Auftrag bleibt, wie er vor dem Befehl war.\n";
    ASSERT_GE(r.err.size(), last.size());
    EXPECT_EQ(r.err.substr(r.err.size() - last.size()), last);
}

TEST_F(CliCommandsTest, ThePolicyDecidesEveryConflictAndSaysSo)
{
    for (const char* policy : {"behalten", "verwerfen"}) {
        SCOPED_TRACE(policy);
        const std::string name = std::string("Auftrag-") + policy;
        expectCli(0, {"anlegen", name});
        expectCli(0, roomArgs(name));
        const CliRun r = expectCli(0, {"hinzufuegen", name, scanFile("Scan_EG_Teil1.dat"), "--konflikt", policy});
        EXPECT_EQ(r.out, "Datei 'Scan_EG_Teil1.dat' hinzugefügt.\n");
        const std::size_t at = r.err.find("[Fehler] Inventarnummer ");
        ASSERT_NE(at, std::string::npos) << r.err;
        const std::string decided = std::string(policy) == "behalten"
                                        ? "Entschieden mit --konflikt behalten: Das erste Auftreten bleibt.\n"
                                        : "Entschieden mit --konflikt verwerfen: Das zweite Auftreten ersetzt das erste.\n";
        EXPECT_NE(r.err.find(decided, at), std::string::npos) << r.err;
        // The object of the conflict stands in the room the policy chose.
        const std::string invNr = r.err.substr(at + 24, r.err.find(',', at) - at - 24);
        const std::size_t first = r.err.find("Erstes Auftreten: Raum ", at) + 23;
        const std::size_t second = r.err.find("Zweites Auftreten: Raum ", at) + 24;
        const std::string roomFirst = r.err.substr(first, r.err.find(',', first) - first);
        const std::string roomSecond = r.err.substr(second, r.err.find(',', second) - second);
        EXPECT_NE(roomFirst, roomSecond);
        EXPECT_EQ(toText(read(orderFile(name))->scalar("SELECT stRaum FROM T_DatInventur WHERE stInvNr = ?1", {invNr})),
                  std::string(policy) == "behalten" ? roomFirst : roomSecond);
        EXPECT_EQ(rows(name, "T_Dateien"), 1);
    }
}

// ---------------------------------------------------------------- entfernen, neu-einlesen

TEST_F(CliCommandsTest, RemovingAFileRebuildsFromTheOthers)
{
    prepareOrder("Nord");
    const std::vector<std::string> rooms = orderRooms();
    const std::string lastRoom = rooms.back();
    ASSERT_EQ(status("Nord", lastRoom), "E");

    const std::string before = contentDigest(orderFile("Nord"));
    CliRun r = expectCli(14, {"entfernen", "Nord", "Scan_Zwei_Tage.dat"});
    EXPECT_EQ(r.err, "[qinventur-cli] Eine Datei 'Scan_Zwei_Tage.dat' gehört nicht zum Auftrag 'Nord'.\n");
    EXPECT_EQ(contentDigest(orderFile("Nord")), before);
    // The rebuild meets the conflict of the first file again.
    r = expectCli(13, {"entfernen", "Nord", "Scan_EG_Teil2.dat"});
    EXPECT_EQ(contentDigest(orderFile("Nord")), before);

    r = expectCli(0, {"entfernen", "Nord", "Scan_EG_Teil2.dat", "--konflikt", "behalten"});
    EXPECT_EQ(r.out, "Datei 'Scan_EG_Teil2.dat' entfernt, Scandaten neu eingelesen.\n");
    EXPECT_EQ(rows("Nord", "T_Dateien"), 1);
    EXPECT_EQ(status("Nord", lastRoom), "N");
    EXPECT_EQ(status("Nord", rooms.front()), "E");
    EXPECT_EQ(count(orderFile("Nord"), "SELECT COUNT(*) FROM T_DatInventur WHERE Datum <> '14.03.2025'"), 0);
}

TEST_F(CliCommandsTest, ARebuildThatCantFindAFileLeavesTheOrderAsBefore)
{
    prepareOrder("Nord");
    const std::string before = contentDigest(orderFile("Nord"));
    fs::rename(scanFile("Scan_EG_Teil2.dat"), root.file("weg.dat"));
    CliRun r = expectCli(14, {"neu-einlesen", "Nord", "--konflikt", "behalten"});
    EXPECT_NE(r.err.find("[Quarn-Inventur] Die Datei " + scanFile("Scan_EG_Teil2.dat") +
                         " ist an dieser Stelle nicht mehr vorhanden. Stellen Sie den alten Zustand wieder her oder "
                         "bauen Sie die Dateiliste neu auf\n" +
                         kUnchanged),
              std::string::npos)
        << r.err;
    EXPECT_EQ(contentDigest(orderFile("Nord")), before);

    fs::rename(root.file("weg.dat"), scanFile("Scan_EG_Teil2.dat"));
    r = expectCli(13, {"neu-einlesen", "Nord"});
    EXPECT_EQ(contentDigest(orderFile("Nord")), before);
    r = expectCli(0, {"neu-einlesen", "Nord", "--konflikt", "verwerfen"});
    EXPECT_EQ(r.out, "Scandaten aus 2 Dateien neu eingelesen.\n");
    for (const std::string& room : orderRooms())
        EXPECT_EQ(status("Nord", room), "E") << room;
}

TEST_F(CliCommandsTest, ARebuildWithRoomsReadTwiceIsExitCodeElevenAndLeavesTheOrderAsBefore)
{
    prepareOrder("Nord");
    // The second file now holds a room of the first.
    std::string text;
    ASSERT_TRUE(readTextFile(scanFile("Scan_EG_Teil1.dat"), text));
    const std::string firstLine = text.substr(text.find("\r\n", text.find("\r\n") + 2) + 2);
    writeFile(scanFile("Scan_EG_Teil2.dat"),
              readFile(scanFile("Scan_EG_Teil2.dat")) + firstLine.substr(0, firstLine.find("\r\n") + 2));
    const std::string before = contentDigest(orderFile("Nord"));
    const CliRun r = expectCli(11, {"neu-einlesen", "Nord", "--konflikt", "behalten"});
    EXPECT_NE(r.err.find("[Quarn-Inventur] In der Datei " + scanFile("Scan_EG_Teil2.dat") +
                         " sind Daten von Räumen, die von einer vorhergehenden Datei bereits eingelesen wurden.\n" +
                         kUnchanged),
              std::string::npos)
        << r.err;
    EXPECT_EQ(contentDigest(orderFile("Nord")), before);
}

// ---------------------------------------------------------------- auswerten, archiv

TEST_F(CliCommandsTest, TheEvaluationCountsEachCategory)
{
    prepareOrder("Nord");
    const CliRun r = expectCli(0, {"auswerten", "Nord"});
    EXPECT_EQ(r.err, "");
    std::string expected = "Kategorie\tAnzahl\n";
    const Recordset counts = read(orderFile("Nord"))->query(
        "SELECT stTyp, COUNT(*) FROM T_Differenzliste WHERE stTyp <> '' GROUP BY stTyp ORDER BY stTyp");
    ASSERT_EQ(counts.size(), 6u); // the demo holds every category
    for (const auto& row : counts.rows())
        expected += toText(row[0]) + "\t" + toText(row[1]) + "\n";
    EXPECT_EQ(r.out, expected);
    EXPECT_NE(r.out.find("\n1 OK\t"), std::string::npos);
    EXPECT_NE(r.out.find("\n2c Nicht in Quarn erfasst\t"), std::string::npos) << r.out;
}

TEST_F(CliCommandsTest, TheArchiveHoldsEveryScanLine)
{
    prepareOrder("Nord");
    const CliRun r = expectCli(0, {"archiv", "Nord"});
    const std::string archive = demoDir + "/Inventur/Nord.dat";
    EXPECT_EQ(r.out, "Scandaten zusammengefasst in " + displayPath(archive) + "\n");
    std::string text;
    ASSERT_TRUE(readTextFile(archive, text));
    std::int64_t lines = 0;
    for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos; at += 2)
        ++lines;
    EXPECT_EQ(lines, rows("Nord", "T_DatInventur"));
    const Recordset first = read(orderFile("Nord"))->query(
        "SELECT stMitarbNr, stAuftragsNr, Datum, Uhrzeit, stRaum, stInvNr, stArtNr, stTaet FROM T_DatInventur "
        "ORDER BY lID LIMIT 1");
    std::string line;
    for (const Value& v : first.rows()[0])
        line += (line.empty() ? "" : ",") + toText(v);
    EXPECT_EQ(text.substr(0, text.find("\r\n")), line);
}

// ---------------------------------------------------------------- a project another program holds

TEST_F(CliCommandsTest, AProjectAnotherProgramHoldsIsOnlyReadAndEveryChangeIsExitCodeFifteen)
{
    prepareOrder("Nord");
    const ProjectLock other(demoDir); // the windows working on the project
    ASSERT_TRUE(other.held());
    const auto before = treeDigest(demoDir);
    const std::string told = "[Quarn-Inventur] Das Projekt wird bereits von ";
    const std::string refusedProject = "[Quarn-Inventur] " + std::string(accessmsg::ProjectReadOnly) + "\n";
    const std::string refusedOrder = "[Quarn-Inventur] " + std::string(accessmsg::OrderReadOnly) + "\n";

    // Looking works, with the one notice.
    CliRun r = expectCli(0, {"auftraege"});
    EXPECT_EQ(r.err.rfind(told, 0), 0u) << r.err;
    EXPECT_NE(r.out.find("Nord\t"), std::string::npos);
    r = expectCli(0, {"raeume", "Nord"});
    EXPECT_EQ(r.out.substr(0, r.out.find('\n')), "Raum\tStatus\tDatum\tAnzahl\tDatei");

    r = expectCli(15, {"anlegen", "Süd"});
    EXPECT_EQ(r.err.substr(r.err.find('\n') + 1), refusedProject);
    r = expectCli(15, {"loeschen", "Nord"});
    EXPECT_EQ(r.err.substr(r.err.find('\n') + 1), refusedProject);
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"hinzufuegen", "Nord", scanFile("Scan_EG_Teil1.dat")},
          std::vector<std::string>{"entfernen", "Nord", "Scan_EG_Teil1.dat"},
          std::vector<std::string>{"neu-einlesen", "Nord"}, std::vector<std::string>{"auswerten", "Nord"},
          std::vector<std::string>{"archiv", "Nord"}, std::vector<std::string>{"raeume", "Nord", "--setzen", "--alle"}}) {
        r = expectCli(15, command);
        EXPECT_EQ(r.err.substr(r.err.find('\n') + 1), refusedOrder) << command[0];
        EXPECT_EQ(r.out, "") << command[0];
    }
    EXPECT_EQ(treeDigest(demoDir), before);
}

// ---------------------------------------------------------------- progress

TEST_F(CliCommandsTest, AProgressLineOnlyOnATerminal)
{
    prepareOrder("Nord");
    const CliRun redirected = expectCli(0, {"auswerten", "Nord"});
    EXPECT_EQ(redirected.err.find('\r'), std::string::npos);
    EXPECT_EQ(redirected.err.find('\x1b'), std::string::npos);

    int code = -1;
    const std::string terminal = runOnTerminal(program, {"auswerten", "Nord"}, code);
    EXPECT_EQ(code, 0) << terminal;
    EXPECT_NE(terminal.find("\r\x1b[KAuswertung: Sollbestand der Räume 0 von " + std::to_string(orderRooms().size())),
              std::string::npos)
        << terminal;
    EXPECT_NE(terminal.find("\r\x1b[KAuswertung: Bemerkungen der Objekte"), std::string::npos) << terminal;
    // The line is cleared before the list is written.
    EXPECT_NE(terminal.find("\r\x1b[KKategorie\tAnzahl"), std::string::npos) << terminal;

    const std::string adding = runOnTerminal(program, {"neu-einlesen", "Nord", "--konflikt", "behalten"}, code);
    EXPECT_EQ(code, 0) << adding;
    EXPECT_NE(adding.find("\r\x1b[KScannerdaten werden eingelesen"), std::string::npos) << adding;
}

TEST_F(CliCommandsTest, AReportWrittenOnATerminalShowsItsPages)
{
    prepareOrder("Nord");
    const std::string pdf = root.file("differenz.pdf");
    int code = -1;
    const std::string terminal =
        runOnTerminal(program, {"bericht", "Nord", "differenz", "--ausgabe", pdf}, code);
    EXPECT_EQ(code, 0) << terminal;
    EXPECT_NE(terminal.find("\r\x1b[KBericht 'differenz': Seite 1 von "), std::string::npos) << terminal;
    // The line is cleared before the report's line.
    EXPECT_NE(terminal.find("\r\x1b[KBericht 'differenz' geschrieben: "), std::string::npos) << terminal;
    // Without a terminal there is no progress line.
    const CliRun redirected = expectCli(0, {"bericht", "Nord", "differenz", "--ausgabe", pdf});
    EXPECT_EQ(redirected.err.find("Seite"), std::string::npos) << redirected.err;
}

} // namespace
} // namespace qi::test
