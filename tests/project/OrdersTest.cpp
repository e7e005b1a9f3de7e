// Creating, deleting and opening orders without a window: which names are accepted,
// that a refused name writes nothing, that a register row pointing outside the
// order folder is never touched, and that what a process that died left behind
// never breaks the next order of that name.

#include "Orders.h"

#include "OrderRegisterFixture.h"

#include "FileSystem.h"
#include "OrderName.h"
#include "TestSupport.h"

#include <filesystem>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

class OrdersTest : public OrderRegisterFixture {
protected:
    OrderResult create(const std::string& name, const std::string& person = "Meier")
    {
        CAuftragRec rec;
        rec.stBezeichung = name;
        rec.stErsteller = person;
        return CreateOrder(reg, settings, ui, rec);
    }
    std::string stAuftragOf(const std::string& file)
    {
        return toText(Database::open(file, true)->scalar("SELECT stAuftrag FROM T_Auftrag"));
    }
};

// ---------------------------------------------------------------- names that are refused

struct RefusedName {
    const char* label;
    std::string name;
    std::string message;
};

std::ostream& operator<<(std::ostream& os, const RefusedName& n) { return os << n.label; }

const std::string kCharacters = "Der Auftragsname darf keines der Zeichen < > : \" / \\ | ? * enthalten.";
const std::string kControl = "Der Auftragsname darf keine Steuerzeichen (wie Tabulator oder Zeilenumbruch) enthalten.";
const std::string kTrailing = "Der Auftragsname darf nicht mit einem Punkt oder einem Leerzeichen enden.";

std::string device(const std::string& name)
{
    return "Der Auftragsname '" + name + "' ist ein Gerätename des Systems und kann kein Dateiname sein.";
}

std::string tooLong(std::size_t bytes)
{
    return "Der Auftragsname ist zu lang: Er darf höchstens 243 Bytes haben (Umlaute und andere Sonderzeichen zählen "
           "doppelt oder mehrfach), hat aber " +
           std::to_string(bytes) + ".";
}

std::string umlauts(int n)
{
    std::string s;
    for (int i = 0; i < n; ++i)
        s += "ü";
    return s;
}

class RefusedNames : public OrdersTest, public ::testing::WithParamInterface<RefusedName> {};

TEST_P(RefusedNames, AreRefusedWithTheirMessageBeforeAnythingIsWritten)
{
    const RefusedName& n = GetParam();
    EXPECT_EQ(orderNameProblem(n.name), n.message);
    const auto before = treeDigest(dir.path());
    EXPECT_EQ(create(n.name), OrderResult::NameRefused);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmMain.MakeDatabase\r\n" + n.message);
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
    EXPECT_TRUE(rows().empty());
    // Not even the order folder is made.
    EXPECT_EQ(treeDigest(dir.path()), before);
    EXPECT_FALSE(fs::exists(project + "Inventur"));
    EXPECT_FALSE(fs::exists(dir.path() + "/evil.mdb"));
    EXPECT_FALSE(fs::exists("/tmp/evil.mdb"));
}

INSTANTIATE_TEST_SUITE_P(
    Names, RefusedNames,
    ::testing::Values(
        RefusedName{"empty", "", "Der Auftrag braucht einen Namen."},
        RefusedName{"dot", ".", "Der Auftragsname '.' bezeichnet einen Ordner und kann kein Dateiname sein."},
        RefusedName{"dotdot", "..", "Der Auftragsname '..' bezeichnet einen Ordner und kann kein Dateiname sein."},
        RefusedName{"parent_backslash", "..\\evil", kCharacters}, RefusedName{"parent_slash", "../evil", kCharacters},
        RefusedName{"two_up", "..\\..\\evil", kCharacters}, RefusedName{"sub_backslash", "sub\\evil", kCharacters},
        RefusedName{"sub_slash", "sub/evil", kCharacters}, RefusedName{"root_slash", "/tmp/evil", kCharacters},
        RefusedName{"root_backslash", "\\evil", kCharacters}, RefusedName{"drive", "C:evil", kCharacters},
        RefusedName{"drive_path", "C:\\evil", kCharacters}, RefusedName{"stream", "Lager:Zone.Identifier", kCharacters},
        RefusedName{"less", "a<b", kCharacters}, RefusedName{"greater", "a>b", kCharacters},
        RefusedName{"quote", "a\"b", kCharacters}, RefusedName{"pipe", "bad|name", kCharacters},
        RefusedName{"question", "frage?", kCharacters}, RefusedName{"star", "stern*", kCharacters},
        RefusedName{"tab", "tab\tname", kControl}, RefusedName{"newline", "zeile\nneu", kControl},
        RefusedName{"carriage_return", "zeile\rneu", kControl}, RefusedName{"nul_byte", std::string("a\0b", 3), kControl},
        RefusedName{"escape", "farbe\x1b[31m", kControl}, RefusedName{"delete", "a\x7f", kControl},
        RefusedName{"c1_control", "a\xc2\x85z", kControl},
        RefusedName{"no_utf8", "Lager\xfc", "Der Auftragsname enthält Bytes, die kein Zeichen ergeben."},
        RefusedName{"overlong_utf8", "a\xc0\xaf", "Der Auftragsname enthält Bytes, die kein Zeichen ergeben."},
        RefusedName{"cut_utf8", "Lager\xc3", "Der Auftragsname enthält Bytes, die kein Zeichen ergeben."},
        RefusedName{"trailing_dot", "Lager.", kTrailing}, RefusedName{"trailing_dots", "Lager..", kTrailing},
        RefusedName{"trailing_blank", "Lager ", kTrailing}, RefusedName{"device_con", "CON", device("CON")},
        RefusedName{"device_con_lower", "con", device("con")}, RefusedName{"device_prn", "PRN", device("PRN")},
        RefusedName{"device_aux", "Aux", device("Aux")}, RefusedName{"device_nul", "NUL", device("NUL")},
        RefusedName{"device_com1", "COM1", device("COM1")}, RefusedName{"device_com9", "com9", device("com9")},
        RefusedName{"device_lpt1", "LPT1", device("LPT1")}, RefusedName{"device_lpt0", "LPT0", device("LPT0")},
        RefusedName{"device_superscript", "COM\u00B9", device("COM\u00B9")},
        RefusedName{"device_extension", "NUL.Lager", device("NUL.Lager")},
        RefusedName{"device_blank_extension", "CON .x", device("CON .x")},
        RefusedName{"device_conin", "CONIN$", device("CONIN$")},
        RefusedName{"bytes_244", std::string(244, 'x'), tooLong(244)},
        RefusedName{"bytes_251", std::string(251, 'x'), tooLong(251)},
        RefusedName{"bytes_300", std::string(300, 'x'), tooLong(300)},
        RefusedName{"umlauts_244_bytes", umlauts(122), tooLong(244)}),
    [](const ::testing::TestParamInfo<RefusedName>& info) { return std::string(info.param.label); });

// ---------------------------------------------------------------- names that are accepted

struct AcceptedName {
    const char* label;
    std::string name;
};

std::ostream& operator<<(std::ostream& os, const AcceptedName& n) { return os << n.label; }

class AcceptedNames : public OrdersTest, public ::testing::WithParamInterface<AcceptedName> {};

TEST_P(AcceptedNames, GetTheirDatabaseInTheOrderFolderAndNothingElse)
{
    const std::string& name = GetParam().name;
    EXPECT_EQ(orderNameProblem(name), "");
    fs::create_directories(project + "Inventur");
    const auto before = treeDigest(dir.path());
    ASSERT_EQ(create(name), OrderResult::Done);
    EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text;

    const auto registered = rows();
    ASSERT_EQ(registered.size(), 1u);
    EXPECT_EQ(registered[0].stBezeichung, name);
    EXPECT_EQ(registered[0].stPfad, "\\Inventur\\" + name + ".mdb");
    ASSERT_TRUE(fileExists(orderFile(name)));
    EXPECT_EQ(stAuftragOf(orderFile(name)), name);

    // Only the register changed and the order's database was added.
    auto after = treeDigest(dir.path());
    EXPECT_NE(after.at("Projekt/QInventur.mdb"), before.at("Projekt/QInventur.mdb"));
    EXPECT_EQ(after.erase("Projekt/Inventur/" + name + ".mdb"), 1u);
    after.erase("Projekt/QInventur.mdb");
    auto unchanged = before;
    unchanged.erase("Projekt/QInventur.mdb");
    EXPECT_EQ(after, unchanged);

    // And it is deleted again, with nothing left.
    EXPECT_EQ(DeleteOrder(reg, settings, ui, registered[0]), OrderResult::Done);
    EXPECT_TRUE(rows().empty());
    EXPECT_FALSE(fs::exists(fs::u8path(orderFile(name))));
    EXPECT_TRUE(folderExists(project + "Inventur"));
}

INSTANTIATE_TEST_SUITE_P(
    Names, AcceptedNames,
    ::testing::Values(AcceptedName{"double_dot_inside", "Lager..Süd"}, AcceptedName{"leading_dots", "..Lager"},
                      AcceptedName{"leading_dot", ".versteckt"}, AcceptedName{"blank", "Lager Süd"},
                      AcceptedName{"leading_blank", " Lager"}, AcceptedName{"umlauts", "Über-Größe ß"},
                      AcceptedName{"sql_words", "x'); DROP TABLE T_Auftrag; --"},
                      AcceptedName{"quotes_semicolons", "O'Brien; SELECT 1; DELETE FROM T_Auftrag"},
                      AcceptedName{"percent", "%s%n%d"}, AcceptedName{"device_prefix", "CONSOLE"},
                      AcceptedName{"port_ten", "COM10"}, AcceptedName{"port_without_number", "LPT"},
                      AcceptedName{"device_inside", "Lager CON"}, AcceptedName{"euro", "€uro"},
                      AcceptedName{"emoji", "Kiste 📦"}, AcceptedName{"bytes_243", std::string(243, 'x')},
                      AcceptedName{"umlauts_243_bytes", umlauts(121) + "x"}),
    [](const ::testing::TestParamInfo<AcceptedName>& info) { return std::string(info.param.label); });

// ---------------------------------------------------------------- what a dead process leaves behind

/// Leaves at `journal` a rollback journal of another database, as a process that died in the
/// middle of a transaction of that database would have left it (pages already written out).
void leaveHotJournal(const std::string& otherDb, const std::string& journal)
{
    makeOrderDatabase(otherDb);
    auto db = Database::open(otherDb);
    db->execute("PRAGMA cache_size = 2");
    Database::Transaction tx(*db);
    for (int i = 0; i < 400; ++i)
        db->execute("INSERT INTO T_Auftrag (stAuftrag) VALUES (?1)", {std::string(500, char('a' + i % 26))});
    ASSERT_TRUE(fileExists(otherDb + "-journal"));
    ASSERT_TRUE(copyFile(otherDb + "-journal", journal));
}

TEST_F(OrdersTest, AnOrphanFileWithAJournalBesideItIsReplacedByTheNextOrderOfThatName)
{
    fs::create_directories(project + "Inventur");
    writeFile(orderFile("Nord"), "keine Datenbank");
    leaveHotJournal(dir.path() + "/andere.mdb", orderFile("Nord") + "-journal");
    ASSERT_EQ(create("Nord"), OrderResult::Done);
    EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    EXPECT_EQ(stAuftragOf(orderFile("Nord")), "Nord");
    EXPECT_EQ(toText(Database::open(orderFile("Nord"))->scalar("PRAGMA integrity_check")), "ok");
    EXPECT_EQ(toLong(Database::open(orderFile("Nord"))->scalar("SELECT COUNT(*) FROM T_Auftrag")), 1);
    EXPECT_FALSE(fileExists(orderFile("Nord") + "-journal"));
}

TEST_F(OrdersTest, AHalfMadeDatabaseOfADeadCreationIsMadeAnew)
{
    fs::create_directories(project + "Inventur");
    writeFile(project + "Inventur/~Auftrag.neu", "halb kopiert");
    leaveHotJournal(dir.path() + "/andere.mdb", project + "Inventur/~Auftrag.neu-journal");
    ASSERT_EQ(create("Nord"), OrderResult::Done);
    EXPECT_EQ(stAuftragOf(orderFile("Nord")), "Nord");
    EXPECT_FALSE(fileExists(project + "Inventur/~Auftrag.neu"));
    EXPECT_FALSE(fileExists(project + "Inventur/~Auftrag.neu-journal"));
    // The staging name is no order's name: an order that looks like it is an order of its own.
    ASSERT_EQ(create("~Auftrag.neu"), OrderResult::Done);
    EXPECT_EQ(stAuftragOf(orderFile("~Auftrag.neu")), "~Auftrag.neu");
    EXPECT_EQ(stAuftragOf(orderFile("Nord")), "Nord");
}

TEST_F(OrdersTest, DeletingAnOrderTakesItsJournalAlong)
{
    ASSERT_EQ(create("Nord"), OrderResult::Done);
    writeFile(orderFile("Nord") + "-journal", "Rest");
    EXPECT_EQ(DeleteOrder(reg, settings, ui, rows().at(0)), OrderResult::Done);
    EXPECT_FALSE(fileExists(orderFile("Nord")));
    EXPECT_FALSE(fileExists(orderFile("Nord") + "-journal"));
}

TEST_F(OrdersTest, AMissingTemplateLeavesNothing)
{
    fs::remove(project + "QAuftrag.mdb");
    fs::create_directories(project + "Inventur");
    const auto before = treeDigest(dir.path());
    EXPECT_EQ(create("Nord"), OrderResult::Failed);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmMain.MakeDatabase\r\nDatei nicht gefunden");
    EXPECT_EQ(treeDigest(dir.path()), before);
}

TEST_F(OrdersTest, AFailingRegisterLeavesNoOrderFile)
{
    fs::create_directories(project + "Inventur");
    const auto before = treeDigest(dir.path());
    reg.CloseDb();
    EXPECT_EQ(create("Nord"), OrderResult::Failed);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmMain.MakeNewOrder\r\nDer Datensatz konnte nicht gespeichert werden!");
    EXPECT_EQ(treeDigest(dir.path()), before);
}

TEST_F(OrdersTest, AReadOnlyProjectNeitherCreatesNorDeletesAnOrder)
{
    ASSERT_EQ(create("Nord"), OrderResult::Done);
    settings.readOnly = true;
    const auto before = treeDigest(dir.path());
    EXPECT_EQ(create("Süd"), OrderResult::ReadOnly);
    EXPECT_EQ(DeleteOrder(reg, settings, ui, rows().at(0)), OrderResult::ReadOnly);
    ASSERT_EQ(ui.messages.size(), 2u);
    for (const RecordedMessage& m : ui.messages) {
        EXPECT_EQ(m.text, "Das Projekt ist nur zum Ansehen geöffnet. Aufträge können weder angelegt noch gelöscht werden.");
        EXPECT_EQ(m.title, "Quarn-Inventur");
        EXPECT_EQ(m.icon, MsgIcon::Exclamation);
    }
    EXPECT_EQ(treeDigest(dir.path()), before);
}

TEST_F(OrdersTest, AnOrderOfAReadOnlyProjectOpensReadOnlyWithoutItsStamp)
{
    ASSERT_EQ(create("Nord"), OrderResult::Done);
    settings.readOnly = true;
    const auto before = treeDigest(dir.path());
    CAuftragRec rec = rows().at(0);
    CAuftragDb db(ui);
    ASSERT_EQ(OpenOrderDatabase(reg, settings, ui, rec, db), OrderResult::Done);
    EXPECT_TRUE(db.isReadOnly());
    db.CloseDb();
    EXPECT_EQ(rows().at(0).letzte_Aenderung, rec.erstellt);
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(treeDigest(dir.path()), before);
}

TEST_F(OrdersTest, AFileThatIsNoOrderIsNotOpenedAndItsRowNotStamped)
{
    ASSERT_EQ(create("Nord"), OrderResult::Done);
    CAuftragRec rec = rows().at(0);
    writeFile(orderFile("Nord"), "kein Datenbankinhalt, nur Text, der lang genug ist, um wie eine Datei auszusehen");
    const auto before = treeDigest(dir.path());
    CAuftragDb db(ui);
    EXPECT_EQ(OpenOrderDatabase(reg, settings, ui, rec, db), OrderResult::Failed);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("frmMain.lvAuftraege_DblClick\r\n", 0), 0u) << ui.messages[0].text;
    EXPECT_FALSE(db.isOpen());
    EXPECT_EQ(treeDigest(dir.path()), before);
}

TEST_F(OrdersTest, TakenNamesAreRefusedExactly)
{
    ASSERT_EQ(create("Nord"), OrderResult::Done);
    CAuftragRecColl coll;
    ASSERT_TRUE(reg.ReadAllAuftragRec2Coll(coll));
    EXPECT_TRUE(refuseTakenName(coll, "Nord", ui));
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "Es existiert bereits ein Auftrag mit diesem Namen!");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(ui.messages[0].title, "Problem");
    EXPECT_FALSE(refuseTakenName(coll, "NORD", ui));
    EXPECT_FALSE(refuseTakenName(coll, "Nord ", ui));
    EXPECT_EQ(ui.messages.size(), 1u);
    ASSERT_NE(findOrder(coll, "Nord"), nullptr);
    EXPECT_EQ(findOrder(coll, "nord"), nullptr);
}

// ---------------------------------------------------------------- register rows and their files

TEST_F(OrdersTest, RowsNameTheirFileInTheOrderFolderOnly)
{
    EXPECT_EQ(orderDatabaseFile(settings, "\\Inventur\\Nord.mdb"), project + "Inventur\\Nord.mdb");
    EXPECT_EQ(orderDatabaseFile(settings, "\\Inventur\\Lager..Süd.MDB"), project + "Inventur\\Lager..Süd.MDB");
    EXPECT_EQ(orderDatabaseFile(settings, project + "Inventur/Nord.mdb"), project + "Inventur/Nord.mdb");
    for (const std::string outside : {"\\Nord.mdb", "\\Inventur\\..\\Nord.mdb", "\\Inventur\\Unter\\Nord.mdb",
                                      "\\Inventur\\Nord.dat", "\\Inventur\\Nord.mdb-journal", "\\Inventur",
                                      "Inventur\\Nord.mdb", "/tmp/Nord.mdb", ""})
        EXPECT_EQ(orderDatabaseFile(settings, outside), "") << outside;
}

TEST_F(OrdersTest, LookingAtAnOrderWritesNothing)
{
    ASSERT_EQ(create("Nord"), OrderResult::Done);
    CAuftragRec rec = rows().at(0);
    const auto before = treeDigest(dir.path());
    CAuftragDb db(ui);
    ASSERT_EQ(OpenOrderDatabase(reg, settings, ui, rec, db, OrderAccess::Look), OrderResult::Done);
    EXPECT_TRUE(db.isOpen());
    EXPECT_EQ(db.DbPath(), project + "Inventur\\Nord.mdb");
    CRaumRec room;
    room.stRaumNr = "101";
    EXPECT_FALSE(db.AddNewRaumRec(&room));
    db.CloseDb();
    EXPECT_EQ(rows().at(0).letzte_Aenderung, rec.letzte_Aenderung);
    EXPECT_EQ(treeDigest(dir.path()), before);
}

TEST_F(OrdersTest, ARowOutsideTheOrderFolderIsNeitherOpenedNorDeleted)
{
    makeOrderDatabase(dir.path() + "/fremd.mdb");
    CAuftragRec rec;
    rec.stBezeichung = "Fremd";
    rec.stPfad = "\\..\\fremd.mdb";
    ASSERT_TRUE(reg.AddNewAuftragRec(&rec));
    const auto before = treeDigest(dir.path());
    CAuftragDb db(ui);
    EXPECT_EQ(OpenOrderDatabase(reg, settings, ui, rec, db, OrderAccess::Work), OrderResult::OutsideProject);
    EXPECT_FALSE(db.isOpen());
    EXPECT_EQ(DeleteOrder(reg, settings, ui, rec), OrderResult::OutsideProject);
    ASSERT_EQ(ui.messages.size(), 2u);
    const std::string why = "Die Datenbank '" + displayPath(project + "../fremd.mdb") +
                            "' liegt nicht im Ordner Inventur des Projekts. Sie wird weder geöffnet noch gelöscht.";
    EXPECT_EQ(ui.messages[0].text, "frmMain.lvAuftraege_DblClick\r\n" + why);
    EXPECT_EQ(ui.messages[1].text, "frmMain.mnuDateiFkt_Click\r\n" + why);
    EXPECT_EQ(treeDigest(dir.path()), before);
    EXPECT_EQ(rows().size(), 1u);
}

} // namespace
} // namespace qi::test
