// Every value that comes from outside reaches the databases as a bound value, never
// as a piece of a statement: quotes, semicolons and SQL words in the values of a
// scanner file, in Quarn's room numbers, in the names and persons typed for an order,
// in the names of data files and in the profile files come back as they went in, and
// no statement does anything but its own work. One test per family of statements,
// driven through qinventur-cli on the demo project.

#include "CliFixture.h"

#include "FileSystem.h"
#include "LinkedDatabase.h"
#include "TextFile.h"

#include <filesystem>
#include <fstream>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

const std::string kDropRaum = "1'; DROP TABLE T_Raum; --";
const std::string kDeleteScans = "X\"); DELETE FROM T_DatInventur; --";
const std::string kOrTrue = "' OR '1'='1";

class CliBoundValuesTest : public CliFixture {
protected:
    /// The order database's tables, each with its number of rows.
    std::map<std::string, std::int64_t> tables(const std::string& file)
    {
        std::map<std::string, std::int64_t> out;
        auto db = read(file);
        const Recordset names =
            db->query("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite_%'");
        for (const auto& row : names.rows())
            out[toText(row[0])] = toLong(db->scalar("SELECT COUNT(*) FROM \"" + toText(row[0]) + "\""));
        return out;
    }
    void expectAllTables(const std::string& file)
    {
        const auto t = tables(file);
        for (const char* name : {"T_Artikelliste", "T_Auftrag", "T_Dateien", "T_DatInventur", "T_Differenzliste",
                                 "T_Invliste", "T_Raum"})
            EXPECT_TRUE(t.count(name)) << name << " is gone from " << file;
    }
    /// Writes a scanner file (Windows-1252, CR LF).
    void writeScan(const std::string& path, const std::vector<std::string>& lines)
    {
        std::ofstream out(path, std::ios::binary);
        for (const std::string& l : lines)
            out << toWindows1252(l) << "\r\n";
    }
    /// Gives a room of the demo's ground floor another number in Quarn's databases.
    void renumberRoom(const std::string& from, const std::string& to)
    {
        auto geb = Database::open(demoDir + "/QGebaeude.mdb");
        geb->execute("UPDATE T_Raumkern SET stRaumNr = ?2 WHERE stRaumNr = ?1", {from, to});
        geb->execute("UPDATE T_Gebstru SET stNr = ?2 WHERE stNr = ?1 AND byTyp = 4", {from, to});
        Database::open(demoDir + "/QOvInventar.mdb")->execute("UPDATE T_IObjekt SET stOrt = ?2 WHERE stOrt = ?1", {from, to});
    }
    const demo::Room& room(std::size_t i)
    {
        for (const demo::Node& n : inst.nodes)
            if (n.typ == 3)
                return *inst.roomsOfFloor(n.id).at(i);
        throw std::runtime_error("no floor");
    }
};

TEST_F(CliBoundValuesTest, OrderNamesAndPersonsInTheRegisterAndTheOrder)
{
    const std::string name = "Lager O'Brien; DELETE FROM T_Auftrag; --";
    const std::string person = "Meier\"; DROP TABLE T_Auftrag; " + kOrTrue;
    expectCli(0, {"anlegen", "Nord"});
    expectCli(0, {"anlegen", name, "--mitarbeiter", person});
    EXPECT_EQ(registeredOrders(), (std::vector<std::string>{"Nord", name}));
    EXPECT_EQ(toText(read(demoDir + "/QInventur.mdb")->scalar("SELECT stErsteller FROM T_Auftrag WHERE lID = 2")),
              person);
    EXPECT_EQ(toText(read(orderFile(name))->scalar("SELECT stAuftrag FROM T_Auftrag")), name);
    // The stamp of opening, the order's name in its rooms, and the deletion find exactly this row.
    expectCli(0, {"raeume", name, "--setzen", room(0).nr});
    EXPECT_EQ(toText(read(orderFile(name))->scalar("SELECT stAuftrag FROM T_Raum")), name);
    expectCli(4, {"loeschen", kOrTrue});
    expectCli(0, {"loeschen", name});
    EXPECT_EQ(registeredOrders(), std::vector<std::string>{"Nord"});
    expectAllTables(orderFile("Nord"));
}

TEST_F(CliBoundValuesTest, RoomNumbersOfQuarnInTheRoomStatementsAndScanChecks)
{
    renumberRoom(room(0).nr, kDropRaum);
    expectCli(0, {"anlegen", "Nord"});
    expectCli(0, {"raeume", "Nord", "--setzen", kDropRaum + ":L", room(1).nr});
    EXPECT_EQ(toText(read(orderFile("Nord"))->scalar("SELECT ststatus FROM T_Raum WHERE stRaumNr = ?1", {kDropRaum})),
              "L");

    // Scans of both rooms: the checks, the numbering and the status ask by these room numbers.
    std::vector<std::string> lines;
    int minute = 0;
    for (std::size_t i : {std::size_t(0), std::size_t(1)})
        for (const demo::Object* o : inst.objectsOfRoom(0, room(i).id))
            lines.push_back("MA07,2025-01,14.03.2025,10:" + std::to_string(10 + minute++ % 40) + ":00," +
                            (i == 0 ? kDropRaum : room(1).nr) + "," + o->name + ",,I");
    writeScan(root.file("raeume.dat"), lines);
    expectCli(0, {"hinzufuegen", "Nord", root.file("raeume.dat")});
    auto db = read(orderFile("Nord"));
    EXPECT_EQ(toText(db->scalar("SELECT ststatus FROM T_Raum WHERE stRaumNr = ?1", {kDropRaum})), "E");
    EXPECT_EQ(toLong(db->scalar("SELECT iAnzahl FROM T_Raum WHERE stRaumNr = ?1", {kDropRaum})),
              std::int64_t(inst.objectsOfRoom(0, room(0).id).size()));
    EXPECT_EQ(toLong(db->scalar("SELECT MAX(iReihenfolge) FROM T_DatInventur WHERE stRaum = ?1", {kDropRaum})),
              std::int64_t(inst.objectsOfRoom(0, room(0).id).size()));
    // Read twice: the room check finds the room by its number.
    expectCli(11, {"hinzufuegen", "Nord", root.file("raeume.dat")});
    // The evaluation and the inventory list of the room go by the same numbers.
    const CliRun r = expectCli(0, {"auswerten", "Nord"});
    EXPECT_EQ(r.out, "Kategorie\tAnzahl\n1 OK\t" + std::to_string(lines.size()) + "\n");
    expectAllTables(orderFile("Nord"));
    EXPECT_EQ(count(orderFile("Nord"), "SELECT COUNT(*) FROM T_Raum"), 2);
}

TEST_F(CliBoundValuesTest, ValuesOfAScannerFileInTheScanStatementsTheTallyAndTheArchive)
{
    expectCli(0, {"anlegen", "Nord"});
    expectCli(0, {"raeume", "Nord", "--setzen", room(0).nr, room(1).nr});
    const std::string employee = "MA'07; DROP TABLE T_Dateien; --";
    const std::string orderNr = "\"2025\"; DELETE FROM T_Raum";
    const std::string time = "10:00:00' OR 1=1 --";
    const std::string article = "A'; UPDATE T_Artikelliste SET iAnzIst = 99; --";
    const std::string activity = "I; VACUUM; " + kOrTrue;
    const std::vector<std::string> lines = {
        employee + "," + orderNr + ",14.03.2025," + time + "," + room(0).nr + "," + kDeleteScans + "," + article + "," +
            activity,
        employee + "," + orderNr + ",14.03.2025," + time + "," + room(1).nr + "," + kDeleteScans + "," + article + "," +
            activity,
        employee + "," + orderNr + ",14.03.2025," + time + "," + room(0).nr + "," + kOrTrue + "," + article + "," +
            activity,
    };
    const std::string file = root.file("Scan'; DROP TABLE T_Dateien; --.dat");
    writeScan(file, lines);
    // The number scanned in both rooms is found again by its number and moved by the conflict.
    CliRun r = expectCli(0, {"hinzufuegen", "Nord", file, "--konflikt", "verwerfen"});
    EXPECT_NE(r.err.find("[Fehler] Inventarnummer " + kDeleteScans + ", Artikelnummer " + article), std::string::npos)
        << r.err;
    auto db = read(orderFile("Nord"));
    EXPECT_EQ(toLong(db->scalar("SELECT COUNT(*) FROM T_DatInventur")), 2);
    const Recordset scan = db->query(
        "SELECT stMitarbNr, stAuftragsNr, Uhrzeit, stRaum, stArtNr, stTaet FROM T_DatInventur WHERE stInvNr = ?1",
        {kDeleteScans});
    ASSERT_EQ(scan.size(), 1u);
    EXPECT_EQ(scan.rows()[0], (std::vector<Value>{employee, orderNr, time, room(1).nr, article, activity}));
    EXPECT_EQ(toText(db->scalar("SELECT stName FROM T_Dateien")), fileNamePart(file));
    EXPECT_EQ(toText(db->scalar("SELECT stPfad FROM T_Dateien")), file);

    // The evaluation and the lists look the numbers up in Quarn and in the order.
    expectCli(0, {"auswerten", "Nord"});
    db = read(orderFile("Nord"));
    EXPECT_EQ(toText(db->scalar("SELECT stTyp FROM T_Differenzliste WHERE stIstInvNR = ?1", {kDeleteScans})),
              "2c Nicht in Quarn erfasst");
    EXPECT_EQ(toText(db->scalar("SELECT stTyp FROM T_Differenzliste WHERE stIstInvNR = ?1", {kOrTrue})),
              "2c Nicht in Quarn erfasst");
    EXPECT_EQ(toLong(db->scalar("SELECT COUNT(*) FROM T_Differenzliste WHERE stIstInvNR <> ''")), 2);

    // The archive writes them back as they came.
    expectCli(0, {"archiv", "Nord"});
    std::string archive;
    ASSERT_TRUE(readTextFile(demoDir + "/Inventur/Nord.dat", archive));
    EXPECT_NE(archive.find(employee + "," + orderNr + ",14.03.2025," + time + "," + room(1).nr + "," + kDeleteScans +
                           "," + article + "," + activity + "\r\n"),
              std::string::npos)
        << archive;

    // The rebuild reads the file again, and the file is removed by its name.
    expectCli(0, {"neu-einlesen", "Nord", "--konflikt", "verwerfen"});
    expectCli(0, {"entfernen", "Nord", fileNamePart(file)});
    EXPECT_EQ(count(orderFile("Nord"), "SELECT COUNT(*) FROM T_DatInventur"), 0);
    EXPECT_EQ(count(orderFile("Nord"), "SELECT COUNT(*) FROM T_Raum"), 2);
    expectAllTables(orderFile("Nord"));
}

TEST_F(CliBoundValuesTest, ValuesOfTheProfileFilesInThePathsAndLinks)
{
    // A project folder whose name holds quotes, a semicolon and SQL words, named in "Quarn.ini"
    // relative to the program folder; a module value that is no module.
    const std::string folderName = "Projekt 'Süd'; DROP TABLE T_Auftrag; --";
    const std::string project = programDir + "/" + folderName;
    demo::writeDemoProject(demo::smallSizes(), project, "");
    writeFile(project + "/Projekt.ini",
              "[ODBC]\r\nProjekttyp=ptJet\r\n[Inventur]\r\nModul=INVENTAR'; DROP TABLE T_IObjekt; --\r\n");
    demo::writeQuarnIni(programDir + "/Quarn.ini", folderName);

    expectCli(0, {"anlegen", "Nord"});
    EXPECT_TRUE(fileExists(project + "/Inventur/Nord.mdb"));
    expectCli(0, {"raeume", "Nord", "--setzen", room(0).nr});
    std::vector<std::string> lines;
    for (const demo::Object* o : inst.objectsOfRoom(0, room(0).id))
        lines.push_back("MA07,2025-01,14.03.2025,10:00:00," + room(0).nr + "," + o->name + ",,I");
    writeScan(project + "/teil.dat", lines);
    expectCli(0, {"hinzufuegen", "Nord", project + "/teil.dat"});
    const CliRun r = expectCli(0, {"auswerten", "Nord"});
    EXPECT_EQ(r.out, "Kategorie\tAnzahl\n1 OK\t" + std::to_string(lines.size()) + "\n");

    // The report database links the order and Quarn's tables under the project's path as it stands.
    auto links = LinkedDatabase::open(programDir + "/QInventurRpt.mdb");
    const std::string projectPath = programDir + "\\" + folderName + "\\";
    EXPECT_EQ(links->connect("t_Differenzliste"), ";DATABASE=" + projectPath + "Inventur\\Nord.mdb");
    EXPECT_EQ(links->connect("T_IObjekt"), ";DATABASE=" + projectPath + "QOvInventar.mdb");
    EXPECT_EQ(count(project + "/QOvInventar.mdb", "SELECT COUNT(*) FROM T_IObjekt"),
              std::int64_t(inst.modules[0].objects.size()));
    EXPECT_FALSE(fileExists(demoDir + "/QInventur.mdb")); // the demo project beside it is untouched
    expectAllTables(project + "/Inventur/Nord.mdb");
}

} // namespace
} // namespace qi::test
