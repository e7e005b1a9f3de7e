// The whole road of an order through qinventur-cli, from an empty project as a script
// would walk it: create the order, set its rooms, add the scanner files (a refused
// file, a conflict without a policy, then both policies), evaluate, write the
// archive, remove a file, delete the order. The databases are checked after each step.

#include "CliFixture.h"

#include "FileSystem.h"
#include "TextFile.h"

#include <filesystem>

namespace qi::test {
namespace {

class CliRoadTest : public CliFixture {
protected:
    std::string db() const { return orderFile("Erdgeschoss"); }
    std::int64_t rows(const std::string& table) const { return count(db(), "SELECT COUNT(*) FROM " + table); }
    std::string roomOfScan(const std::string& invNr) const
    {
        return toText(read(db())->scalar("SELECT stRaum FROM T_DatInventur WHERE stInvNr = ?1", {invNr}));
    }
};

TEST_F(CliRoadTest, FromAnEmptyProjectToADeletedOrder)
{
    // ------------------------------------------------------------ an empty project
    ASSERT_FALSE(fileExists(demoDir + "/QInventur.mdb"));
    EXPECT_EQ(expectCli(0, {"auftraege"}).out, "Name\terstellt\tgeändert\tErsteller\n");

    // ------------------------------------------------------------ the order and its rooms
    expectCli(0, {"anlegen", "Erdgeschoss", "--mitarbeiter", "Meier"});
    EXPECT_EQ(registeredOrders(), std::vector<std::string>{"Erdgeschoss"});
    EXPECT_EQ(toText(read(db())->scalar("SELECT stAuftrag FROM T_Auftrag")), "Erdgeschoss");
    EXPECT_EQ(toText(read(demoDir + "/QInventur.mdb")->scalar("SELECT stErsteller FROM T_Auftrag")), "Meier");

    const std::vector<std::string> rooms = orderRooms();
    writeFile(root.file("raeume.txt"), [&] {
        std::string text = "# Räume des Erdgeschosses\n";
        for (const std::string& nr : rooms)
            text += nr + "\n";
        return text;
    }());
    expectCli(0, {"raeume", "Erdgeschoss", "--setzen", "--datei", root.file("raeume.txt")});
    EXPECT_EQ(rows("T_Raum"), std::int64_t(rooms.size()));
    EXPECT_EQ(count(db(), "SELECT COUNT(*) FROM T_Raum WHERE ststatus = 'N' AND stAuftrag = 'Erdgeschoss'"),
              std::int64_t(rooms.size()));

    // ------------------------------------------------------------ scanner files
    // A file of two days is refused, and so is a good file given with it.
    expectCli(10, {"hinzufuegen", "Erdgeschoss", scanFile("Scan_EG_Teil1.dat"), scanFile("Scan_Zwei_Tage.dat"),
                   "--konflikt", "behalten"});
    EXPECT_EQ(rows("T_Dateien"), 0);
    EXPECT_EQ(rows("T_DatInventur"), 0);
    // The conflict inside the first file needs a decision.
    const std::string empty = contentDigest(db());
    const CliRun stopped = expectCli(13, {"hinzufuegen", "Erdgeschoss", scanFile("Scan_EG_Teil1.dat")});
    EXPECT_EQ(contentDigest(db()), empty);
    const std::string head = "[Fehler] Bitte zwischen beiden Räumen entscheiden !\nInventarnummer ";
    const std::size_t at = stopped.err.find(head);
    ASSERT_NE(at, std::string::npos) << stopped.err;
    const std::size_t nr = at + head.size();
    const std::string withinFile = stopped.err.substr(nr, stopped.err.find(',', nr) - nr);

    // Kept: the object stays in the room of its first scan.
    CliRun r = expectCli(0, {"hinzufuegen", "Erdgeschoss", scanFile("Scan_EG_Teil1.dat"), "--konflikt", "behalten"});
    EXPECT_EQ(r.out, "Datei 'Scan_EG_Teil1.dat' hinzugefügt.\n");
    const std::size_t first = stopped.err.find("Erstes Auftreten: Raum ") + 23;
    EXPECT_EQ(roomOfScan(withinFile), stopped.err.substr(first, stopped.err.find(',', first) - first));
    // Taken over: the object scanned again in the second file moves to its room, date and file.
    r = expectCli(0, {"hinzufuegen", "Erdgeschoss", scanFile("Scan_EG_Teil2.dat"), "--konflikt", "verwerfen"});
    const std::size_t across = r.err.find("[Fehler] Inventarnummer ");
    ASSERT_NE(across, std::string::npos) << r.err;
    const std::string acrossNr = r.err.substr(across + 24, r.err.find(',', across) - across - 24);
    const std::size_t second = r.err.find("Zweites Auftreten: Raum ", across) + 24;
    EXPECT_EQ(roomOfScan(acrossNr), r.err.substr(second, r.err.find(',', second) - second));
    EXPECT_EQ(toText(read(db())->scalar("SELECT Datum FROM T_DatInventur WHERE stInvNr = ?1", {acrossNr})),
              "17.03.2025");
    EXPECT_EQ(rows("T_Dateien"), 2);
    EXPECT_EQ(count(db(), "SELECT COUNT(*) FROM T_Raum WHERE ststatus = 'E'"), std::int64_t(rooms.size()));
    expectCli(9, {"hinzufuegen", "Erdgeschoss", scanFile("Scan_Raum_ausserhalb.dat")});
    EXPECT_EQ(rows("T_Dateien"), 2);

    // ------------------------------------------------------------ evaluation
    r = expectCli(0, {"auswerten", "Erdgeschoss"});
    EXPECT_GT(rows("T_Differenzliste"), 0);
    EXPECT_EQ(count(db(), "SELECT COUNT(DISTINCT stTyp) FROM T_Differenzliste WHERE stTyp <> ''"), 6);
    EXPECT_NE(r.out.find("3a Fehlt im Raum (verschoben in anderen Raum des Auftrags)\t"), std::string::npos) << r.out;

    // ------------------------------------------------------------ every report and error list
    const std::string berichte = root.file("Berichte");
    r = expectCli(0, {"export", "Erdgeschoss", "--ausgabe", berichte, "--format", "csv"});
    for (const char* name :
         {"artikel", "raumerfassung", "inventur", "inventurauswertung", "differenz", "neu", "verschoben", "fehlend"}) {
        const std::string file = berichte + "/" + name + ".csv";
        EXPECT_NE(r.out.find("Bericht '" + std::string(name) + "' geschrieben: " + displayPath(file) + "\n"),
                  std::string::npos)
            << r.out;
        std::string text;
        ASSERT_TRUE(readTextFile(file, text)) << name;
        EXPECT_GT(std::count(text.begin(), text.end(), '\n'), 1) << name; // a heading and rows
    }
    // The error lists last cut the difference list to the missing objects; evaluating again makes it whole.
    expectCli(0, {"auswerten", "Erdgeschoss"});
    EXPECT_EQ(count(db(), "SELECT COUNT(DISTINCT stTyp) FROM T_Differenzliste WHERE stTyp <> ''"), 6);

    // ------------------------------------------------------------ archive
    r = expectCli(0, {"archiv", "Erdgeschoss"});
    std::string archive;
    ASSERT_TRUE(readTextFile(demoDir + "/Inventur/Erdgeschoss.dat", archive));
    EXPECT_EQ(std::int64_t(std::count(archive.begin(), archive.end(), '\n')), rows("T_DatInventur"));

    // ------------------------------------------------------------ remove a file
    expectCli(0, {"entfernen", "Erdgeschoss", "Scan_EG_Teil2.dat", "--konflikt", "behalten"});
    EXPECT_EQ(rows("T_Dateien"), 1);
    EXPECT_EQ(count(db(), "SELECT COUNT(*) FROM T_DatInventur WHERE Datum = '17.03.2025'"), 0);
    EXPECT_EQ(count(db(), "SELECT COUNT(*) FROM T_Raum WHERE ststatus = 'E'"), std::int64_t(rooms.size() / 2));
    // The rebuild emptied what the evaluation had made.
    EXPECT_EQ(rows("T_Differenzliste"), 0);
    r = expectCli(0, {"raeume", "Erdgeschoss"});
    EXPECT_NE(r.out.find("\tE\t14.03.2025\t"), std::string::npos) << r.out;
    EXPECT_EQ(r.out.find("Scan_EG_Teil2.dat"), std::string::npos) << r.out;

    // ------------------------------------------------------------ delete the order
    expectCli(0, {"loeschen", "Erdgeschoss"});
    EXPECT_TRUE(registeredOrders().empty());
    EXPECT_FALSE(fileExists(db()));
    EXPECT_TRUE(folderExists(demoDir + "/Inventur"));
    // The archive beside it is the user's and stays.
    EXPECT_TRUE(fileExists(demoDir + "/Inventur/Erdgeschoss.dat"));
    EXPECT_EQ(expectCli(0, {"auftraege"}).out, "Name\terstellt\tgeändert\tErsteller\n");
}

} // namespace
} // namespace qi::test
