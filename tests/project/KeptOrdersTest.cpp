// No order database is lost: what creating an order would replace and what deleting an
// order would delete is kept in "Inventur\Gesichert" first, listed with its counts, and
// can be taken back as a new order. An order whose last change was cut off is looked at
// through a private copy put back to its state before that change.

#include "KeptOrders.h"
#include "Orders.h"
#include "RolledBackCopy.h"

#include "CutOffChange.h"
#include "FileSystem.h"
#include "OrderRegisterFixture.h"
#include "TestSupport.h"

#include <algorithm>
#include <filesystem>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

/// Leaves `file` with its last change cut off, which only a program that may write the file
/// puts back.
void leaveCutOffChange(const std::string& file)
{
    cutOffChange(file);
    if (::testing::Test::HasFatalFailure())
        return;
    EXPECT_THROW(Database::open(file, true), DbError);
}

class KeptOrdersTest : public OrderRegisterFixture {
protected:
    OrderResult create(const std::string& name, std::vector<std::string>* kept = nullptr)
    {
        CAuftragRec rec;
        rec.stBezeichung = name;
        rec.stErsteller = "Meier";
        return CreateOrder(reg, settings, ui, rec, kept);
    }
    const CAuftragRec* row(const std::string& name)
    {
        rows_ = rows();
        for (const CAuftragRec& r : rows_)
            if (r.stBezeichung == name)
                return &r;
        return nullptr;
    }
    std::string keptFolder() const { return project + "Inventur/Gesichert"; }
    /// The order `name` with `scans` scans in `files` data files.
    void orderWithScans(const std::string& name, int scans, int files)
    {
        ASSERT_EQ(create(name), OrderResult::Done);
        auto db = Database::open(orderFile(name));
        Database::Transaction tx(*db);
        for (int i = 0; i < files; ++i)
            db->execute("INSERT INTO T_Dateien (stName) VALUES (?1)", {"Scan" + std::to_string(i) + ".dat"});
        for (int i = 0; i < scans; ++i)
            db->execute("INSERT INTO T_DatInventur (stInvNr, stRaum) VALUES (?1, '1.01')", {"I" + std::to_string(i)});
        tx.commit();
    }
    /// The order's register row is lost (as with a register that was moved away and seeded anew).
    void loseRow(const std::string& name)
    {
        const CAuftragRec* r = row(name);
        ASSERT_NE(r, nullptr);
        ASSERT_TRUE(reg.DelAuftragRec(r->lID));
    }
    std::int64_t scansOf(const std::string& file)
    {
        return toLong(Database::open(file, true)->scalar("SELECT COUNT(*) FROM T_DatInventur"));
    }
    std::vector<std::string> keptFiles() const { return sortedNames(keptFolder()); }

    std::vector<CAuftragRec> rows_;
};

// ---------------------------------------------------------------- names of kept files

TEST(KeptFileName, SaysTheOrderAndWhenItWasKept)
{
    const JetDate when = JetDate::fromParts(2026, 11, 25, 17, 31, 5);
    EXPECT_EQ(keptFileName("EG", when), "EG 2026-11-25 17-31-05.mdb");
    EXPECT_EQ(keptFileName("EG", when, 2), "EG 2026-11-25 17-31-05 (2).mdb");
    EXPECT_EQ(keptFileName("Lager Süd (alt)", when), "Lager Süd (alt) 2026-11-25 17-31-05.mdb");
    for (const std::string& name : {std::string("EG 2026-11-25 17-31-05.mdb"), std::string("EG 2026-11-25 17-31-05 (12).mdb"),
                                    std::string("Lager Süd (alt) 2026-11-25 17-31-05.mdb")}) {
        std::string order;
        JetDate at;
        ASSERT_TRUE(parseKeptFileName(name, order, at)) << name;
        EXPECT_EQ(at, when) << name;
        EXPECT_EQ(order, name.substr(0, name.find(" 2026"))) << name;
    }
}

TEST(KeptFileName, OtherNamesAreNoKeptFiles)
{
    std::string order;
    JetDate at;
    for (const char* name : {"EG.mdb", "EG 2026-11-25 17-31-05.dat", "EG 2026-13-25 17-31-05.mdb",
                             "EG 2026-11-25 17:31:05.mdb", "EG 2026-11-25 17-31-05 (x).mdb", " 2026-11-25 17-31-05.mdb",
                             "2026-11-25 17-31-05.mdb", "EG 2026-11-25 17-31-05.mdb-journal"})
        EXPECT_FALSE(parseKeptFileName(name, order, at)) << name;
}

TEST(KeptFileName, ALongOrderNameIsCutToWholeCharactersSoThatTheJournalStillHasAName)
{
    const JetDate when = JetDate::fromParts(2026, 11, 25, 17, 31, 5);
    std::string umlauts;
    for (int i = 0; i < 121; ++i)
        umlauts += "ü";
    const std::string kept = keptFileName(umlauts, when, 99);
    EXPECT_LE(kept.size() + std::string("-journal").size(), 255u);
    std::string order;
    JetDate at;
    ASSERT_TRUE(parseKeptFileName(kept, order, at));
    EXPECT_EQ(order.size() % 2, 0u) << "a character was split";
    EXPECT_EQ(umlauts.rfind(order, 0), 0u);
}

TEST(KeptMessages, SayWhereTheCopyIsAndWhatIsShown)
{
    EXPECT_EQ(keptmsg::kept("/p/Inventur/Gesichert/EG 2026-11-25 17-31-05.mdb"),
              "Die bisherige Datenbank des Auftrags 'EG' wurde gesichert: " +
                  displayPath("/p/Inventur/Gesichert/EG 2026-11-25 17-31-05.mdb"));
    EXPECT_EQ(keptmsg::readBeforeCutOff("EG"), "Der Auftrag 'EG' wurde bei einem Abbruch nicht abgeschlossen; "
                                               "angezeigt wird sein Stand vor dem abgebrochenen Befehl.");
    EXPECT_EQ(ordermsg::notKept("/p/Inventur/EG.mdb"),
              "Die bisherige Datenbank '" + displayPath("/p/Inventur/EG.mdb") +
                  "' kann nicht gesichert werden. Sie bleibt, wie sie ist; der Auftrag wird nicht angelegt.");
}

// ---------------------------------------------------------------- creating and deleting keep the old file

TEST_F(KeptOrdersTest, AnOrderCreatedOverTheFileOfALostRowKeepsThatFileWithItsScans)
{
    orderWithScans("EG", 470, 2);
    loseRow("EG");
    std::vector<std::string> kept;
    ASSERT_EQ(create("EG", &kept), OrderResult::Done);
    EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text; // the windows show nothing new
    EXPECT_EQ(scansOf(orderFile("EG")), 0);
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_EQ(folderPart(systemPath(kept[0])), systemPath(keptFolder()) + "\\");
    EXPECT_EQ(scansOf(kept[0]), 470);
    const std::vector<std::string> files = keptFiles();
    ASSERT_EQ(files.size(), 1u);
    std::string order;
    JetDate at;
    EXPECT_TRUE(parseKeptFileName(files[0], order, at)) << files[0];
    EXPECT_EQ(order, "EG");
    EXPECT_EQ(rows().size(), 1u);
}

TEST_F(KeptOrdersTest, AFileOfTheNameInAnotherLetterCaseThatNoRowNamesIsKeptAndTakenAway)
{
    orderWithScans("EG", 12, 1);
    loseRow("EG");
    std::vector<std::string> kept;
    ASSERT_EQ(create("eg", &kept), OrderResult::Done);
    EXPECT_FALSE(fileExists(orderFile("EG")));
    EXPECT_EQ(scansOf(orderFile("eg")), 0);
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_EQ(scansOf(kept[0]), 12);
    EXPECT_EQ(fileNamePart(kept[0]).rfind("EG ", 0), 0u) << kept[0];
}

TEST_F(KeptOrdersTest, OnlyTheLetterCaseMakesAnotherFileTheSameName)
{
    orderWithScans("Süd", 3, 1);
    loseRow("Süd");
    std::vector<std::string> kept;
    ASSERT_EQ(create("Sud", &kept), OrderResult::Done);
    EXPECT_TRUE(kept.empty());
    EXPECT_EQ(scansOf(orderFile("Süd")), 3);
    ASSERT_EQ(create("SÜD", &kept), OrderResult::Done);
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_EQ(scansOf(kept[0]), 3);
    EXPECT_FALSE(fileExists(orderFile("Süd")));
    EXPECT_EQ(scansOf(orderFile("Sud")), 0);
}

TEST_F(KeptOrdersTest, TheFileOfAnotherOrderInAnotherLetterCaseStaysItsOwn)
{
    orderWithScans("EG", 12, 1);
    std::vector<std::string> kept;
    ASSERT_EQ(create("eg", &kept), OrderResult::Done);
    EXPECT_TRUE(kept.empty());
    EXPECT_EQ(scansOf(orderFile("EG")), 12);
    EXPECT_EQ(scansOf(orderFile("eg")), 0);
    EXPECT_TRUE(keptFiles().empty());
}

TEST_F(KeptOrdersTest, TwoCopiesKeptInOneSecondGetNamesOfTheirOwn)
{
    orderWithScans("EG", 3, 1);
    const std::string first = keepOrderDatabase(settings, orderFile("EG"));
    const std::string second = keepOrderDatabase(settings, orderFile("EG"));
    ASSERT_FALSE(first.empty());
    ASSERT_FALSE(second.empty());
    EXPECT_NE(first, second);
    EXPECT_EQ(scansOf(first), 3);
    EXPECT_EQ(scansOf(second), 3);
    // Kept under a second name: the order's own file is still where it was.
    EXPECT_EQ(scansOf(orderFile("EG")), 3);
}

TEST_F(KeptOrdersTest, DeletingAnOrderKeepsItsFile)
{
    orderWithScans("EG", 470, 2);
    std::string kept;
    ASSERT_EQ(DeleteOrder(reg, settings, ui, *row("EG"), &kept), OrderResult::Done);
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_TRUE(rows().empty());
    EXPECT_FALSE(fileExists(orderFile("EG")));
    ASSERT_FALSE(kept.empty());
    EXPECT_EQ(scansOf(kept), 470);
    EXPECT_TRUE(folderExists(project + "Inventur"));
}

TEST_F(KeptOrdersTest, AFileThatCantBeKeptIsNeitherReplacedNorRegistered)
{
    orderWithScans("EG", 5, 1);
    loseRow("EG");
    writeFile(keptFolder(), "kein Ordner");
    ASSERT_EQ(create("EG"), OrderResult::Failed);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, std::string(mainlabel::MakeDatabase) + "\r\n" + ordermsg::notKept(project + "Inventur\\EG.mdb"));
    EXPECT_EQ(scansOf(orderFile("EG")), 5);
    EXPECT_TRUE(rows().empty());
    EXPECT_FALSE(fileExists(project + "Inventur/~Auftrag.neu"));
}

TEST_F(KeptOrdersTest, ADeletedOrderWhoseFileCantBeKeptLeavesTheFile)
{
    orderWithScans("EG", 5, 1);
    writeFile(keptFolder(), "kein Ordner");
    ASSERT_EQ(DeleteOrder(reg, settings, ui, *row("EG")), OrderResult::Done);
    EXPECT_TRUE(rows().empty());
    EXPECT_EQ(scansOf(orderFile("EG")), 5);
}

// ---------------------------------------------------------------- the list and taking one back

TEST_F(KeptOrdersTest, TheListCountsScansAndFilesOfEveryKeptFile)
{
    orderWithScans("EG", 470, 2);
    orderWithScans("OG", 7, 1);
    ASSERT_EQ(DeleteOrder(reg, settings, ui, *row("EG")), OrderResult::Done);
    ASSERT_EQ(DeleteOrder(reg, settings, ui, *row("OG")), OrderResult::Done);
    writeFile(keptFolder() + "/notizen.txt", "kein Auftrag");
    writeFile(keptFolder() + "/Kaputt 2026-01-02 03-04-05.mdb", "keine Datenbank");
    const std::vector<KeptOrder> list = listKeptOrders(settings);
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0].order, "EG");
    EXPECT_EQ(list[0].scans, 470);
    EXPECT_EQ(list[0].files, 2);
    EXPECT_EQ(list[1].order, "Kaputt");
    EXPECT_EQ(list[1].scans, -1);
    EXPECT_EQ(list[1].keptAt, JetDate::fromParts(2026, 1, 2, 3, 4, 5));
    EXPECT_EQ(list[2].order, "OG");
    EXPECT_EQ(list[2].scans, 7);
    EXPECT_EQ(list[2].files, 1);
}

TEST_F(KeptOrdersTest, AKeptFileComesBackAsANewOrder)
{
    orderWithScans("EG", 470, 2);
    std::string kept;
    ASSERT_EQ(DeleteOrder(reg, settings, ui, *row("EG"), &kept), OrderResult::Done);
    CAuftragRec rec;
    rec.stBezeichung = "EG alt";
    ASSERT_EQ(RestoreOrder(reg, settings, ui, kept, rec), OrderResult::Done);
    EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    const CAuftragRec* r = row("EG alt");
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->stPfad, "\\Inventur\\EG alt.mdb");
    EXPECT_EQ(scansOf(orderFile("EG alt")), 470);
    EXPECT_EQ(toText(Database::open(orderFile("EG alt"), true)->scalar("SELECT stAuftrag FROM T_Auftrag")), "EG alt");
    EXPECT_EQ(toLong(Database::open(orderFile("EG alt"), true)->scalar("SELECT COUNT(*) FROM T_Auftrag")), 1);
    EXPECT_EQ(scansOf(kept), 470); // the kept file stays
}

TEST_F(KeptOrdersTest, AFileThatIsNoOrderDatabaseDoesNotComeBack)
{
    fs::create_directories(keptFolder());
    const std::string kept = keptFolder() + "/EG 2026-01-02 03-04-05.mdb";
    writeFile(kept, "keine Datenbank");
    CAuftragRec rec;
    rec.stBezeichung = "EG";
    EXPECT_EQ(RestoreOrder(reg, settings, ui, kept, rec), OrderResult::Failed);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind(std::string(mainlabel::MakeDatabase) + "\r\n", 0), 0u) << ui.messages[0].text;
    EXPECT_TRUE(rows().empty());
    EXPECT_FALSE(fileExists(orderFile("EG")));
    EXPECT_FALSE(fileExists(project + "Inventur/~Auftrag.neu"));
}

TEST_F(KeptOrdersTest, AReadOnlyProjectTakesNothingBack)
{
    orderWithScans("EG", 3, 1);
    const std::string kept = keepOrderDatabase(settings, orderFile("EG"));
    settings.readOnly = true;
    CAuftragRec rec;
    rec.stBezeichung = "EG alt";
    EXPECT_EQ(RestoreOrder(reg, settings, ui, kept, rec), OrderResult::ReadOnly);
    EXPECT_FALSE(fileExists(orderFile("EG alt")));
    EXPECT_EQ(rows().size(), 1u);
}

// ---------------------------------------------------------------- an order whose change was cut off

TEST_F(KeptOrdersTest, LookingAtACutOffOrderReadsAPutBackCopyAndLeavesTheFile)
{
    orderWithScans("EG", 470, 2);
    leaveCutOffChange(orderFile("EG"));
    const auto before = treeDigest(project + "Inventur");

    CAuftragRec rec = *row("EG");
    CAuftragDb looked(ui);
    // Without a place for a private copy the order is refused, as before.
    EXPECT_EQ(OpenOrderDatabase(reg, settings, ui, rec, looked, OrderAccess::Look), OrderResult::Failed);
    ui.messages.clear();
    std::unique_ptr<RolledBackCopy> putBack;
    ASSERT_EQ(OpenOrderDatabase(reg, settings, ui, rec, looked, OrderAccess::Look, &putBack), OrderResult::Done);
    EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    ASSERT_TRUE(putBack);
    EXPECT_EQ(toLong(looked.database()->scalar("SELECT COUNT(*) FROM T_DatInventur")), 470);
    EXPECT_EQ(toLong(looked.database()->scalar("SELECT COUNT(*) FROM T_Dateien")), 2);
    looked.CloseDb();
    const std::string copyFolder = folderPart(putBack->path());
    putBack.reset();
    EXPECT_FALSE(folderExists(copyFolder));
    EXPECT_EQ(treeDigest(project + "Inventur"), before);
}

TEST_F(KeptOrdersTest, ACutOffOrderOfAReadOnlyProjectIsWorkedOnInAPutBackCopyThatRefusesChanges)
{
    orderWithScans("EG", 470, 2);
    leaveCutOffChange(orderFile("EG"));
    const auto before = treeDigest(project + "Inventur");
    settings.readOnly = true;
    CAuftragRec rec = *row("EG");
    CAuftragDb worked(ui);
    std::unique_ptr<RolledBackCopy> putBack;
    ASSERT_EQ(OpenOrderDatabase(reg, settings, ui, rec, worked, OrderAccess::Work, &putBack), OrderResult::Done);
    ASSERT_TRUE(putBack);
    EXPECT_TRUE(worked.isReadOnly());
    EXPECT_EQ(toLong(worked.database()->scalar("SELECT COUNT(*) FROM T_DatInventur")), 470);
    worked.CloseDb();
    putBack.reset();
    EXPECT_EQ(treeDigest(project + "Inventur"), before);
}

TEST_F(KeptOrdersTest, ACutOffOrderOfAProjectThatMayBeChangedIsPutBackInPlace)
{
    orderWithScans("EG", 470, 2);
    leaveCutOffChange(orderFile("EG"));
    CAuftragRec rec = *row("EG");
    CAuftragDb worked(ui);
    std::unique_ptr<RolledBackCopy> putBack;
    ASSERT_EQ(OpenOrderDatabase(reg, settings, ui, rec, worked, OrderAccess::Work, &putBack), OrderResult::Done);
    EXPECT_FALSE(putBack);
    EXPECT_FALSE(worked.isReadOnly());
    EXPECT_EQ(toLong(worked.database()->scalar("SELECT COUNT(*) FROM T_DatInventur")), 470);
    worked.CloseDb();
    EXPECT_FALSE(hasJournal(orderFile("EG")));
}

TEST_F(KeptOrdersTest, AnOrderWithoutACutOffChangeIsLookedAtInPlace)
{
    orderWithScans("EG", 4, 1);
    CAuftragRec rec = *row("EG");
    CAuftragDb looked(ui);
    std::unique_ptr<RolledBackCopy> putBack;
    ASSERT_EQ(OpenOrderDatabase(reg, settings, ui, rec, looked, OrderAccess::Look, &putBack), OrderResult::Done);
    EXPECT_FALSE(putBack);
    EXPECT_EQ(looked.DbPath(), orderDatabaseFile(settings, rec.stPfad));
}

TEST_F(KeptOrdersTest, ACutOffFileIsKeptWithItsJournalAndListedAndTakenBackAsBeforeTheChange)
{
    orderWithScans("EG", 470, 2);
    leaveCutOffChange(orderFile("EG"));
    loseRow("EG");
    std::vector<std::string> kept;
    ASSERT_EQ(create("EG", &kept), OrderResult::Done);
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_TRUE(hasJournal(kept[0]));
    EXPECT_FALSE(hasJournal(orderFile("EG")));
    EXPECT_EQ(scansOf(orderFile("EG")), 0);
    const std::vector<KeptOrder> list = listKeptOrders(settings);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].scans, 470);
    EXPECT_EQ(list[0].files, 2);
    CAuftragRec rec;
    rec.stBezeichung = "EG alt";
    ASSERT_EQ(RestoreOrder(reg, settings, ui, kept[0], rec), OrderResult::Done);
    EXPECT_EQ(scansOf(orderFile("EG alt")), 470);
    EXPECT_TRUE(integrityOk(orderFile("EG alt")));
    EXPECT_TRUE(hasJournal(kept[0])); // the kept file itself is only read
}

} // namespace
} // namespace qi::test
