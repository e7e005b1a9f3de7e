#include "Database.h"
#include "FileSystem.h"
#include "TableRecordset.h"
#include "TestSupport.h"

using namespace qi;

class DatabaseTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        path = dir.file("t.mdb");
        auto db = Database::create(path);
        db->executeScript("CREATE TABLE T_X (lID INTEGER PRIMARY KEY AUTOINCREMENT, stName TEXT COLLATE JET DEFAULT '',"
                          " iZahl SMALLINT DEFAULT 0 CHECK (iZahl BETWEEN -32768 AND 32767), lWert INTEGER DEFAULT 0);"
                          "CREATE UNIQUE INDEX T_X_stName ON T_X(stName);");
    }
    std::unique_ptr<Database> open() { return Database::open(path); }
    test::TempDir dir;
    std::string path;
};

TEST_F(DatabaseTest, OpeningAMissingFileFailsAndCreatesNothing)
{
    const std::string missing = dir.file("fehlt.mdb");
    try {
        Database::open(missing);
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::FileNotFound);
        EXPECT_NE(e.description().find("fehlt.mdb"), std::string::npos);
    }
    EXPECT_FALSE(fileExists(missing));
}

TEST_F(DatabaseTest, OpeningAFileThatIsNoDatabaseFails)
{
    const std::string other = dir.file("text.mdb");
    test::writeFile(other, std::string(2000, 'x'));
    try {
        Database::open(other);
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::UnrecognizedFormat);
    }
    EXPECT_EQ(test::readFile(other), std::string(2000, 'x'));
}

TEST_F(DatabaseTest, AutoNumberIsReadableAtAddNewAndNeverReused)
{
    auto db = open();
    TableRecordset rs(*db, "T_X");
    const auto k1 = rs.addNew();
    EXPECT_EQ(k1, 1);
    rs.setField("stName", std::string("a"));
    rs.update();
    const auto k2 = rs.addNew();
    rs.setField("stName", std::string("b"));
    rs.update();
    EXPECT_EQ(k2, 2);
    // Abandoned row: its number is consumed.
    const auto k3 = rs.addNew();
    rs.cancelUpdate();
    EXPECT_EQ(k3, 3);
    // Deleting the newest row does not free its number.
    ASSERT_TRUE(rs.seek(k2));
    rs.remove();
    const auto k4 = rs.addNew();
    rs.setField("stName", std::string("c"));
    rs.update();
    EXPECT_EQ(k4, 4);
    db.reset();
    auto again = open();
    TableRecordset rs2(*again, "t_x");
    EXPECT_EQ(rs2.addNew(), 5);
}

TEST_F(DatabaseTest, UniqueViolationIsError3022AndLeavesTableUnchanged)
{
    auto db = open();
    TableRecordset rs(*db, "T_X");
    rs.addNew();
    rs.setField("stName", std::string("Stuhl"));
    rs.update();
    rs.addNew();
    rs.setField("stName", std::string("STUHL "));
    try {
        rs.update();
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::DuplicateKey);
    }
    rs.cancelUpdate();
    EXPECT_EQ(toLong(db->scalar("SELECT count(*) FROM T_X")), 1);
}

TEST_F(DatabaseTest, SixteenBitColumnsOverflow)
{
    auto db = open();
    TableRecordset rs(*db, "T_X");
    rs.addNew();
    rs.setField("iZahl", std::int64_t{32767});
    EXPECT_THROW(rs.setField("iZahl", std::int64_t{32768}), DbError);
    EXPECT_THROW(rs.setField("iZahl", std::int64_t{-32769}), DbError);
    rs.update();
    try {
        db->execute("UPDATE T_X SET iZahl = iZahl + 1");
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::NumericOverflow);
    }
    EXPECT_EQ(toLong(db->scalar("SELECT iZahl FROM T_X")), 32767);
}

TEST_F(DatabaseTest, TextLongerThanItsFieldIsError3163AndLeavesTheRowAsItWas)
{
    auto db = open();
    db->executeScript("CREATE TABLE T_Kurz (lID INTEGER PRIMARY KEY AUTOINCREMENT, stKurz TEXT(10), stMemo MEMO);");
    TableRecordset rs(*db, "T_X");
    rs.addNew();
    // Only a database asked to keep the sizes refuses a longer text.
    rs.setField("stName", std::string(300, 'z'));
    db->setLimitsText(true);
    rs.setField("stName", std::string(255, 'x'));
    try {
        rs.setField("stName", std::string(256, 'y'));
        FAIL() << "no error";
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::FieldTooSmall);
        EXPECT_EQ(e.description(), "Der Wert für das Feld 'stName' der Tabelle 'T_X' ist 256 Zeichen lang; das Feld "
                                   "nimmt höchstens 255 Zeichen auf.");
    }
    EXPECT_EQ(toText(rs.field("stName")), std::string(255, 'x'));
    rs.update();
    // Characters count, not bytes: 255 umlauts fit, one more does not.
    rs.addNew();
    std::string umlauts;
    for (int i = 0; i < 255; ++i)
        umlauts += "Ä";
    rs.setField("stName", umlauts);
    EXPECT_THROW(rs.setField("stName", umlauts + "Ä"), DbError);
    rs.update();
    EXPECT_EQ(toLong(db->scalar("SELECT count(*) FROM T_X")), 2);
    // A size the column names holds; a column that is no text has none.
    TableRecordset kurz(*db, "T_Kurz");
    kurz.addNew();
    kurz.setField("stKurz", std::string(10, 'k'));
    EXPECT_THROW(kurz.setField("stKurz", std::string(11, 'k')), DbError);
    kurz.setField("stMemo", std::string(5000, 'm'));
    kurz.update();
    EXPECT_EQ(toText(db->scalar("SELECT stMemo FROM T_Kurz")).size(), 5000u);
}

TEST_F(DatabaseTest, TheEnginesOwnWordsAreToldInGerman)
{
    auto db = open();
    const auto description = [&](const std::string& sql) {
        try {
            db->execute(sql);
        } catch (const DbError& e) {
            EXPECT_EQ(e.number(), dberr::General);
            return e.description();
        }
        return std::string("no error");
    };
    EXPECT_EQ(description("SELEC 1"), "Datenbankfehler 1: Die Anweisung kann nicht ausgeführt werden (SELEC 1).");
    db->executeScript("CREATE TABLE T_Pflicht (stWert TEXT NOT NULL);");
    EXPECT_EQ(description("INSERT INTO T_Pflicht (stWert) VALUES (NULL)"),
              "Datenbankfehler 1299: Der Wert verletzt eine Bedingung der Tabelle.");
    // Each kind of failure of the engine has German words of its own (the engine's numbers).
    const std::pair<int, const char*> kinds[] = {
        {3, "Zugriff verweigert"},           {23, "Zugriff verweigert"},
        {4, "Der Vorgang wurde abgebrochen"}, {9, "Der Vorgang wurde abgebrochen"},
        {7, "Nicht genügend Arbeitsspeicher"}, {15, "Die Datei kann nicht gesperrt werden"},
        {17, "Der Aufbau der Datenbank hat sich geändert"}, {18, "Der Wert ist zu groß"},
        {20, "Datentypen unverträglich"},    {22, "Die Datei ist zu groß"},
        {25, "Die Werte passen nicht zur Anweisung"}, {2, "Fehler des Datenbankmoduls"},
        {21, "Fehler des Datenbankmoduls"}};
    for (const auto& [rc, words] : kinds)
        EXPECT_EQ(db->errorFor(rc).description(), "Datenbankfehler " + std::to_string(rc) + ": " + words + ".");
    // A trigger refuses in its own words.
    db->executeScript("CREATE TRIGGER T_Pflicht_nein BEFORE INSERT ON T_Pflicht BEGIN SELECT RAISE(ABORT, 'Nicht hier'); END;");
    EXPECT_EQ(description("INSERT INTO T_Pflicht (stWert) VALUES ('x')"), "Datenbankfehler 1811: Nicht hier.");
}

TEST_F(DatabaseTest, ValuesWithQuotesAndKeywordsRoundTrip)
{
    auto db = open();
    const std::vector<std::string> values = {"O'Brien", "Raum \"12\"", "1; DROP TABLE T_X; --",
                                             "' OR '1'='1", "SELECT * FROM T_X", "Müller €"};
    TableRecordset rs(*db, "T_X");
    std::vector<std::int64_t> keys;
    for (const auto& v : values) {
        keys.push_back(rs.addNew());
        rs.setField("stName", v);
        rs.update();
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_TRUE(rs.seek(keys[i]));
        EXPECT_EQ(toText(rs.field("STNAME")), values[i]);
        EXPECT_EQ(toLong(db->scalar("SELECT count(*) FROM T_X WHERE stName = ?1", {values[i]})), 1);
    }
    EXPECT_TRUE(db->tableExists("T_X"));
}

TEST_F(DatabaseTest, SeekMissReportsNoMatch)
{
    auto db = open();
    TableRecordset rs(*db, "T_X");
    rs.setIndex("PrimaryKey");
    EXPECT_FALSE(rs.seek(42));
    EXPECT_TRUE(rs.noMatch());
    EXPECT_THROW(rs.setIndex("stName"), DbError);
    EXPECT_THROW(rs.field("stName"), DbError);
}

TEST_F(DatabaseTest, UnknownTableAndFieldAreEngineErrors)
{
    auto db = open();
    try {
        TableRecordset rs(*db, "T_Nix");
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::InputTableNotFound);
        EXPECT_NE(e.description().find("T_Nix"), std::string::npos);
    }
    TableRecordset rs(*db, "T_X");
    rs.addNew();
    EXPECT_THROW(rs.setField("stNix", std::string("x")), DbError);
}

TEST_F(DatabaseTest, TransactionRollsBackUnlessCommitted)
{
    auto db = open();
    {
        Database::Transaction tx(*db);
        db->execute("INSERT INTO T_X(stName) VALUES (?1)", {std::string("weg")});
    }
    EXPECT_EQ(toLong(db->scalar("SELECT count(*) FROM T_X")), 0);
    {
        Database::Transaction tx(*db);
        db->execute("INSERT INTO T_X(stName) VALUES (?1)", {std::string("bleibt")});
        {
            Database::Transaction inner(*db);
            db->execute("INSERT INTO T_X(stName) VALUES (?1)", {std::string("innen")});
        }
        tx.commit();
    }
    const Recordset rs = db->query("SELECT stName FROM T_X");
    ASSERT_EQ(rs.size(), 1u);
    EXPECT_EQ(toText(rs.rows()[0][0]), "bleibt");
}

TEST_F(DatabaseTest, ReadOnlyRefusesChanges)
{
    auto db = Database::open(path, true);
    try {
        db->execute("INSERT INTO T_X(stName) VALUES ('x')");
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::ReadOnly);
        EXPECT_EQ(e.description(), "Aktualisieren nicht möglich. Die Datei '" + displayPath(path) + "' ist schreibgeschützt.");
    }
}

TEST_F(DatabaseTest, WalkingATableGoesInKeyOrder)
{
    auto db = open();
    for (const char* s : {"c", "a", "b"})
        db->execute("INSERT INTO T_X(stName) VALUES (?1)", {std::string(s)});
    TableRecordset rs(*db, "T_X");
    std::string seen;
    for (bool ok = rs.moveFirst(); ok && !rs.eof(); rs.moveNext())
        seen += toText(rs.field("stName"));
    EXPECT_EQ(seen, "cab");
    EXPECT_EQ(rs.recordCount(), 3u);
}

// ---------------------------------------------------------------- files that are no good

TEST_F(DatabaseTest, AnEmptyFileIsRefusedAndStaysEmpty)
{
    const std::string empty = dir.file("leer.mdb");
    test::writeFile(empty, "");
    try {
        Database::open(empty);
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::UnrecognizedFormat);
        EXPECT_EQ(e.description(), "Die Datei '" + displayPath(empty) + "' ist leer.");
    }
    EXPECT_EQ(test::readFile(empty), "");
}

TEST_F(DatabaseTest, AFileCutShortIsRefusedAsIncomplete)
{
    {
        auto db = open();
        Database::Transaction tx(*db);
        for (int i = 0; i < 400; ++i)
            db->execute("INSERT INTO T_X(stName) VALUES (?1)", {std::string(200, char('a' + i % 26)) + std::to_string(i)});
        tx.commit();
    }
    const std::string whole = test::readFile(path);
    ASSERT_GT(whole.size(), 40000u);
    const std::string cut = whole.substr(0, whole.size() / 2);
    test::writeFile(path, cut);
    try {
        Database::open(path);
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::UnrecognizedFormat);
        EXPECT_EQ(e.description(), "Die Datei '" + displayPath(path) + "' ist beschädigt: sie ist unvollständig.");
    }
    EXPECT_EQ(test::readFile(path), cut);
}

TEST_F(DatabaseTest, AFileAnotherProgramKeepsLockedIsInUse)
{
    auto writer = open();
    writer->executeScript("BEGIN EXCLUSIVE");
    writer->execute("INSERT INTO T_X(stName) VALUES ('x')");
    try {
        Database::open(path);
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::Locked);
        EXPECT_EQ(e.description(), "Die Datei '" + displayPath(path) + "' ist bereits in Verwendung.");
    }
    writer->executeScript("ROLLBACK");
}

TEST_F(DatabaseTest, ACopyHoldsTheLastCommittedStateWhileAnotherConnectionWrites)
{
    auto db = open();
    db->execute("INSERT INTO T_X(stName) VALUES ('fest')");
    auto writer = open();
    Database::Transaction tx(*writer);
    writer->execute("INSERT INTO T_X(stName) VALUES ('offen')");
    const std::string copy = dir.file("kopie.mdb");
    test::writeFile(copy, "alt");
    Database::open(path, true)->copyTo(copy);
    tx.rollback();
    auto copied = Database::open(copy, true);
    const Recordset rows = copied->query("SELECT stName FROM T_X");
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(toText(rows.rows()[0][0]), "fest");
    // The copy compares as the original does.
    EXPECT_EQ(toLong(copied->scalar("SELECT count(*) FROM T_X WHERE stName = 'FEST  '")), 1);
}

// ---------------------------------------------------------------- a disk that can't take the changes

class FullDiskTest : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        db = open();
        db->execute("INSERT INTO T_X(stName) VALUES ('vorher')");
        // The file may not grow past its pages now: the next pages are a full disk to the engine.
        const auto pages = toLong(db->scalar("PRAGMA page_count"));
        db->scalar("PRAGMA max_page_count = " + std::to_string(pages + 2));
    }
    void fill() { db->execute("INSERT INTO T_X(stName) VALUES (?1)", {std::string(20000, 'x')}); }
    std::int64_t rows() { return toLong(db->scalar("SELECT count(*) FROM T_X")); }
    std::unique_ptr<Database> db;
};

TEST_F(FullDiskTest, AChangeTheDiskCantTakeUndoesTheWholeTransaction)
{
    {
        Database::Transaction outer(*db);
        db->execute("INSERT INTO T_X(stName) VALUES ('erste')");
        Database::Transaction inner(*db);
        db->execute("INSERT INTO T_X(stName) VALUES ('zweite')");
        try {
            fill();
            FAIL();
        } catch (const DbError& e) {
            EXPECT_EQ(e.number(), dberr::DiskFull);
            EXPECT_EQ(e.description(), "Datenträger voll");
        }
        EXPECT_TRUE(db->storageFailed());
        // What came before is gone at once; reading still works, changing is refused.
        EXPECT_EQ(rows(), 1);
        EXPECT_THROW(db->execute("INSERT INTO T_X(stName) VALUES ('danach')"), DbError);
        EXPECT_THROW(db->executeScript("CREATE TABLE T_Y (a)"), DbError);
        {
            Database::Transaction nested(*db);
            EXPECT_THROW(nested.commit(), DbError);
        }
        try {
            inner.commit();
            FAIL();
        } catch (const DbError& e) {
            EXPECT_EQ(e.number(), dberr::DiskFull);
        }
        EXPECT_THROW(outer.commit(), DbError);
    }
    // With the outermost guard the failure is over: the connection works again.
    EXPECT_FALSE(db->storageFailed());
    EXPECT_EQ(rows(), 1);
    db->execute("INSERT INTO T_X(stName) VALUES ('danach')");
    EXPECT_EQ(rows(), 2);
    EXPECT_EQ(toText(Database::open(path)->scalar("PRAGMA integrity_check")), "ok");
}

TEST_F(FullDiskTest, AStatementOutsideATransactionFailsAloneAndLeavesNoFailureBehind)
{
    EXPECT_THROW(fill(), DbError);
    EXPECT_FALSE(db->storageFailed());
    db->execute("INSERT INTO T_X(stName) VALUES ('klein')");
    EXPECT_EQ(rows(), 2);
}

TEST_F(FullDiskTest, ACommitTheDiskCantTakeLeavesTheFileAsBefore)
{
    // Small changes fit the page cache; the full disk shows itself only when they are written.
    db->scalar("PRAGMA max_page_count = " + toText(db->scalar("PRAGMA page_count")));
    db->scalar("PRAGMA cache_size = 1000");
    Database::Transaction tx(*db);
    try {
        for (int i = 0; i < 50; ++i)
            db->execute("INSERT INTO T_X(stName) VALUES (?1)", {std::string(100, 'y') + std::to_string(i)});
        tx.commit();
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::DiskFull);
    }
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(toLong(Database::open(path)->scalar("SELECT count(*) FROM T_X")), 1);
}

TEST_F(DatabaseTest, AFileAttachedOnlyForReadingIsReadSetBasedAndNeverWritten)
{
    {
        auto db = open();
        db->execute("INSERT INTO T_X (stName, lWert) VALUES (?1, ?2)", {std::string("a"), std::int64_t{7}});
    }
    // A name the URI has to escape.
    const std::string file = dir.file("Auftrag 50%?#.mdb");
    Database::open(path, true)->copyTo(file);
    const std::string before = test::readFile(file);

    auto memory = Database::inMemory();
    memory->executeScript("CREATE TABLE Kopie (stName TEXT, lWert INTEGER)");
    memory->attachReadOnly(file, "auftrag");
    memory->execute("INSERT INTO Kopie SELECT stName, lWert FROM auftrag.T_X");
    EXPECT_EQ(toLong(memory->scalar("SELECT lWert FROM Kopie WHERE stName = 'a'")), 7);
    EXPECT_THROW(memory->execute("DELETE FROM auftrag.T_X"), DbError);
    memory->detach("auftrag");
    EXPECT_THROW(memory->scalar("SELECT COUNT(*) FROM auftrag.T_X"), DbError);
    EXPECT_EQ(test::readFile(file), before);

    // A database in a file attaches nothing this way: the URI would be taken as a file's name.
    try {
        open()->attachReadOnly(file, "auftrag");
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.description(), "Die Datei '" + displayPath(file) + "' kann nicht angefügt werden.");
    }
    // A file that isn't there is not made.
    const std::string missing = dir.file("fehlt.mdb");
    EXPECT_THROW(memory->attachReadOnly(missing, "fehlt"), DbError);
    EXPECT_FALSE(fileExists(missing));
}

TEST(DatabaseTurningTest, ALongStatementTurnsTheWindowsWhileItRunsAndOnlyTheOutermostGuardTurns)
{
    auto db = Database::inMemory();
    const std::string longStatement =
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000000) SELECT COUNT(*) FROM n";
    int outer = 0, inner = 0;
    {
        const Database::Turning turning(db.get(), [&] { ++outer; }, std::chrono::milliseconds(1));
        {
            const Database::Turning nested(db.get(), [&] { ++inner; }, std::chrono::milliseconds(1));
            EXPECT_EQ(toLong(db->scalar(longStatement)), 1000000);
        }
        EXPECT_GT(outer, 0);
        EXPECT_EQ(inner, 0);
    }
    const int after = outer;
    EXPECT_EQ(toLong(db->scalar(longStatement)), 1000000);
    EXPECT_EQ(outer, after);

    // Without a connection there is nothing to turn.
    const Database::Turning none(nullptr, [&] { ++outer; });
    EXPECT_EQ(outer, after);
}

TEST(DatabaseTurningTest, AThrowingTurnDoesNotEndTheStatement)
{
    auto db = Database::inMemory();
    int turns = 0;
    const Database::Turning turning(
        db.get(),
        [&] {
            ++turns;
            throw std::runtime_error("Fenster");
        },
        std::chrono::milliseconds(1));
    EXPECT_EQ(toLong(db->scalar("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000000) "
                                "SELECT COUNT(*) FROM n")),
              1000000);
    EXPECT_GT(turns, 0);
}
