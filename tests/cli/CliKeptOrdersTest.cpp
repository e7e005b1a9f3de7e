// qinventur-cli keeps every order database it replaces or deletes, lists the kept files
// and takes one back as a new order; a command that only reads an order whose last change
// was cut off reads it as it was before that change.

#include "CliFixture.h"
#include "CutOffChange.h"

#include "FileSystem.h"
#include "KeptOrders.h"
#include "ProjectAccess.h"
#include "ProjectLock.h"
#include "RolledBackCopy.h"

#include <algorithm>
#include <filesystem>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

class CliKeptOrdersTest : public CliFixture {
protected:
    std::int64_t scans(const std::string& file) { return count(file, "SELECT COUNT(*) FROM T_DatInventur"); }
    std::string keptFolder() const { return demoDir + "/Inventur/Gesichert"; }
    /// The kept files' names.
    std::vector<std::string> keptFiles() const { return sortedNames(keptFolder()); }
    /// "[qinventur-cli] Die bisherige Datenbank des Auftrags 'order' wurde gesichert: <kept folder>/<file>\n"
    std::string keptLine(const std::string& file) const
    {
        return "[qinventur-cli] " + keptmsg::kept(keptFolder() + "/" + file) + "\n";
    }
    /// The register is lost: moved out of the project, as a sync tool or a slip of the hand does.
    void loseRegister() { fs::rename(demoDir + "/QInventur.mdb", root.file("QInventur weg.mdb")); }
};

TEST_F(CliKeptOrdersTest, ALostRegisterCostsNoOrderAndTheKeptOrderComesBack)
{
    prepareOrder("EG");
    const std::int64_t scanned = scans(orderFile("EG"));
    ASSERT_GT(scanned, 0);
    const std::string rooms = expectCli(0, {"raeume", "EG"}).out;

    loseRegister();
    CliRun r = expectCli(0, {"auftraege"}); // start-up seeds a new register
    EXPECT_EQ(r.out, "Name\terstellt\tgeändert\tErsteller\n");
    r = expectCli(0, {"anlegen", "EG"});
    std::vector<std::string> kept = keptFiles();
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_EQ(r.err, keptLine(kept[0]));
    EXPECT_EQ(r.out, "Auftrag 'EG' angelegt: " + displayPath(orderFile("EG")) + "\n");
    EXPECT_EQ(scans(orderFile("EG")), 0);
    EXPECT_EQ(scans(keptFolder() + "/" + kept[0]), scanned);

    r = expectCli(0, {"gesichert"});
    EXPECT_TRUE(r.err.empty()) << r.err;
    std::string order;
    JetDate when;
    ASSERT_TRUE(parseKeptFileName(kept[0], order, when));
    EXPECT_EQ(order, "EG");
    EXPECT_EQ(r.out, "Datei\tAuftrag\tDatum\tScans\tDateien\n" + kept[0] + "\tEG\t" + when.toDisplayText() + "\t" +
                         std::to_string(scanned) + "\t2\n");

    r = expectCli(0, {"wiederherstellen", kept[0], "EG alt"});
    EXPECT_TRUE(r.err.empty()) << r.err;
    EXPECT_EQ(r.out, "Auftrag 'EG alt' aus '" + kept[0] + "' wiederhergestellt: " + displayPath(orderFile("EG alt")) + "\n");
    EXPECT_EQ(registeredOrders(), (std::vector<std::string>{"EG", "EG alt"}));
    EXPECT_EQ(toText(read(demoDir + "/QInventur.mdb")
                         ->scalar("SELECT stPfad FROM T_Auftrag WHERE stBezeichung = ?1", {std::string("EG alt")})),
              "\\Inventur\\EG alt.mdb");
    EXPECT_EQ(scans(orderFile("EG alt")), scanned);
    EXPECT_EQ(toText(read(orderFile("EG alt"))->scalar("SELECT stAuftrag FROM T_Auftrag")), "EG alt");
    // The order is whole again: its rooms read as before.
    EXPECT_EQ(expectCli(0, {"raeume", "EG alt"}).out, rooms);
}

TEST_F(CliKeptOrdersTest, AnOrderInAnotherLetterCaseKeepsTheFileThatNoRowNames)
{
    prepareOrder("EG");
    const std::int64_t scanned = scans(orderFile("EG"));
    loseRegister();
    const CliRun r = expectCli(0, {"anlegen", "eg"});
    const std::vector<std::string> kept = keptFiles();
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_EQ(r.err, keptLine(kept[0]));
    EXPECT_FALSE(fileExists(orderFile("EG")));
    EXPECT_EQ(scans(orderFile("eg")), 0);
    EXPECT_EQ(scans(keptFolder() + "/" + kept[0]), scanned);
    expectCli(0, {"wiederherstellen", kept[0], "EG"});
    EXPECT_EQ(scans(orderFile("EG")), scanned);
}

TEST_F(CliKeptOrdersTest, DeletingAnOrderKeepsItsCopyAndSaysWhere)
{
    prepareOrder("EG");
    const std::int64_t scanned = scans(orderFile("EG"));
    const CliRun r = expectCli(0, {"loeschen", "EG"});
    EXPECT_EQ(r.out, "Auftrag 'EG' gelöscht.\n");
    const std::vector<std::string> kept = keptFiles();
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_EQ(r.err, keptLine(kept[0]));
    EXPECT_FALSE(fileExists(orderFile("EG")));
    EXPECT_EQ(scans(keptFolder() + "/" + kept[0]), scanned);
    EXPECT_TRUE(registeredOrders().empty());
}

TEST_F(CliKeptOrdersTest, WithoutKeptFilesTheListIsItsHeading)
{
    const CliRun r = expectCli(0, {"gesichert"});
    EXPECT_EQ(r.out, "Datei\tAuftrag\tDatum\tScans\tDateien\n");
    EXPECT_TRUE(r.err.empty()) << r.err;
}

TEST_F(CliKeptOrdersTest, TakingBackIsRefusedForATakenNameAMissingFileAndAFileThatIsNoKeptOrder)
{
    expectCli(0, {"anlegen", "EG"});
    expectCli(0, {"loeschen", "EG"});
    expectCli(0, {"anlegen", "OG"});
    const std::string kept = keptFiles().at(0);
    const std::string folder = displayFolder(keptFolder());
    const auto before = treeDigest(demoDir);

    CliRun r = expectCli(5, {"wiederherstellen", kept, "OG"});
    EXPECT_EQ(r.err, "[Problem] Es existiert bereits ein Auftrag mit diesem Namen!\n");
    r = expectCli(14, {"wiederherstellen", "EG 2001-01-01 01-01-01.mdb", "Neu"});
    EXPECT_EQ(r.err, "[qinventur-cli] Eine gesicherte Datenbank 'EG 2001-01-01 01-01-01.mdb' gibt es im Ordner '" +
                         folder + "' nicht.\n");
    r = expectCli(14, {"wiederherstellen", orderFile("OG"), "Neu"});
    EXPECT_EQ(r.err, "[qinventur-cli] '" + displayPath(orderFile("OG")) +
                         "' ist keine gesicherte Auftragsdatenbank: Gesicherte Datenbanken liegen im Ordner '" + folder +
                         "' und heißen nach Auftrag und Zeit der Sicherung.\n");
    r = expectCli(6, {"wiederherstellen", kept, "a/b"});
    EXPECT_EQ(treeDigest(demoDir), before);

    writeFile(keptFolder() + "/Kaputt 2026-01-02 03-04-05.mdb", "keine Datenbank");
    const auto withBroken = treeDigest(demoDir);
    r = expectCli(1, {"wiederherstellen", "Kaputt 2026-01-02 03-04-05.mdb", "Neu"});
    EXPECT_EQ(r.err.rfind("[QInventur] frmMain.MakeDatabase\n", 0), 0u) << r.err;
    EXPECT_EQ(treeDigest(demoDir), withBroken);
    r = expectCli(0, {"gesichert"});
    EXPECT_NE(r.out.find("Kaputt 2026-01-02 03-04-05.mdb\tKaputt\t02.01.2026 03:04:05\t?\t?\n"), std::string::npos)
        << r.out;
}

TEST_F(CliKeptOrdersTest, AReadOnlyProjectTakesNothingBack)
{
    expectCli(0, {"anlegen", "EG"});
    expectCli(0, {"loeschen", "EG"});
    const std::string kept = keptFiles().at(0);
    const ProjectLock other(demoDir);
    ASSERT_TRUE(other.held());
    const auto before = treeDigest(demoDir);
    CliRun r = expectCli(15, {"wiederherstellen", kept, "EG"});
    EXPECT_EQ(r.err.substr(r.err.find('\n') + 1), "[Quarn-Inventur] " + std::string(accessmsg::ProjectReadOnly) + "\n");
    r = expectCli(0, {"gesichert"}); // looking works
    EXPECT_NE(r.out.find(kept + "\tEG\t"), std::string::npos) << r.out;
    EXPECT_EQ(treeDigest(demoDir), before);
}

TEST_F(CliKeptOrdersTest, TheRoomsOfAnOrderWhoseChangeWasCutOffAreReadAsBeforeTheChange)
{
    prepareOrder("EG");
    const std::string rooms = expectCli(0, {"raeume", "EG"}).out;
    cutOffChange(orderFile("EG"));
    const auto before = treeDigest(demoDir);
    const CliRun r = expectCli(0, {"raeume", "EG"});
    EXPECT_EQ(r.out, rooms);
    EXPECT_EQ(r.err, "[qinventur-cli] Der Auftrag 'EG' wurde bei einem Abbruch nicht abgeschlossen; angezeigt wird "
                     "sein Stand vor dem abgebrochenen Befehl.\n");
    // The order's own file and its journal are as the cut-off command left them.
    EXPECT_EQ(treeDigest(demoDir), before);
    EXPECT_TRUE(hasJournal(orderFile("EG")));
    // While another program holds the project, too.
    const ProjectLock other(demoDir);
    const CliRun held = expectCli(0, {"raeume", "EG"});
    EXPECT_EQ(held.out, rooms);
    EXPECT_EQ(treeDigest(demoDir), before);
}

TEST_F(CliKeptOrdersTest, AReportOfACutOffOrderInAReadOnlyProjectIsMadeFromItsStateBeforeTheChange)
{
    prepareOrder("EG");
    const std::string csv = root.file("raumerfassung.csv");
    expectCli(0, {"bericht", "EG", "raumerfassung", "--ausgabe", csv});
    const std::string expected = readFile(csv);
    removeFile(csv);
    cutOffChange(orderFile("EG"));
    const ProjectLock other(demoDir); // the windows working on the project
    const auto before = treeDigest(demoDir);
    const CliRun r = expectCli(0, {"bericht", "EG", "raumerfassung", "--ausgabe", csv});
    EXPECT_NE(r.err.find("[qinventur-cli] Der Auftrag 'EG' wurde bei einem Abbruch nicht abgeschlossen; angezeigt "
                         "wird sein Stand vor dem abgebrochenen Befehl.\n"),
              std::string::npos)
        << r.err;
    EXPECT_EQ(readFile(csv), expected);
    EXPECT_EQ(treeDigest(demoDir), before);
}

} // namespace
} // namespace qi::test
