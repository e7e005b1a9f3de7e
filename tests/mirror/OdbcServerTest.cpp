// Quarn's tables on a real PostgreSQL server, started by the test, read through
// psqlODBC into the mirror: the same tables and rows as the installation's files
// (text of fixed-length columns without its padding), a server that can't be
// reached gives the message and leaves the last copy, and no password of the
// connection string shows in a message or in the mirror, which its user alone
// can read.

#include "Database.h"
#include "DemoInstallation.h"
#include "FileSystem.h"
#include "HostMirror.h"
#include "LinkedDatabase.h"
#include "MirrorWriter.h"
#include "PostgresCluster.h"
#include "QuarnHost.h"
#include "QuarnTables.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <sys/stat.h>

namespace qi {
namespace {

class OdbcServer : public ::testing::Test {
protected:
    void SetUp() override
    {
        // Never skipped: a server that does not start fails the test with the reason.
        try {
            cluster = std::make_unique<demo::PostgresCluster>();
        } catch (const std::exception& e) {
            FAIL() << e.what();
        }
        inst = demo::buildInstallation(demo::smallSizes());
        inst.modules[0].objects[0].name = "Ä-" + inst.modules[0].objects[0].name;
        cluster->createDatabase("quarn");
        cluster->loadInstallation(inst, "quarn");
        connection = cluster->connectionString("quarn");
        files = dir.path() + "/Dateien";
        std::filesystem::create_directories(files);
        demo::writeHostDatabases(inst, files);
    }

    /// The cache folder the host components use as well.
    HostMirror mirror() { return HostMirror(HostMirror::defaultCacheFolder(), QI_PROGRAM_DIR); }

    /// Every row of a table of a mirror, in key order, as texts.
    static std::vector<std::vector<std::string>> rowsOf(const std::string& mirrorFile, const std::string& table)
    {
        auto db = Database::open(mirrorFile, true);
        const Recordset rs = db->query("SELECT * FROM \"" + table + "\" ORDER BY lId");
        std::vector<std::vector<std::string>> rows;
        for (const auto& row : rs.rows()) {
            rows.emplace_back();
            for (std::size_t c = 0; c < row.size(); ++c)
                rows.back().push_back(rs.columnNames()[c] + "=" + toText(row[c]) + ":" + std::to_string(row[c].index()));
        }
        return rows;
    }

    test::TempDir dir;
    std::unique_ptr<demo::PostgresCluster> cluster;
    demo::Installation inst;
    std::string connection, files;
};

TEST_F(OdbcServer, MirrorHoldsTheSameTablesAndValuesAsTheFiles)
{
    HostMirror m = mirror();
    const std::string server = m.refresh(HostSource::odbc(connection));
    for (const QuarnTable& t : quarnTables()) {
        SCOPED_TRACE(t.name);
        std::string file = files + "/QStammdaten.mdb";
        const std::string name = t.name;
        if (name == "T_Gebstru" || name == "T_Raumkern")
            file = files + "/QGebaeude.mdb";
        for (const demo::Module& mod : inst.modules)
            if (name.rfind(mod.prefix, 0) == 0)
                file = files + "/" + mod.file;
        const auto expected = rowsOf(m.mirrorFor(HostSource::file(file)), t.name);
        EXPECT_FALSE(expected.empty());
        EXPECT_EQ(rowsOf(server, t.name), expected);
    }
    // Text compares as Jet compares it, and the joined columns are indexed.
    auto db = Database::open(server, true);
    const std::string first = inst.modules[0].objects[0].name;
    EXPECT_EQ(toText(db->scalar("SELECT count(*) FROM T_IObjekt WHERE stName = ?1", {"ä" + first.substr(2) + "  "})),
              "1");
    EXPECT_EQ(toText(db->scalar("SELECT count(*) FROM sqlite_master WHERE type = 'index' AND tbl_name = 'T_IObjekt'")),
              "6");
}

TEST_F(OdbcServer, ServerMirrorIsMadeAnewOnlyWhenAsked)
{
    HostMirror m = mirror();
    const std::string path = m.mirrorFor(HostSource::odbc(connection));
    EXPECT_EQ(m.builds(), 1);
    EXPECT_EQ(m.mirrorFor(HostSource::odbc(connection)), path);
    EXPECT_EQ(m.builds(), 1);
    cluster->runSql("quarn", "UPDATE \"T_Raumkern\" SET \"stBezeichnung\" = 'Neu' WHERE \"lId\" = " +
                                 std::to_string(inst.rooms.front().id) + ";\n");
    auto before = Database::open(path, true);
    EXPECT_NE(toText(before->scalar("SELECT stBezeichnung FROM T_Raumkern WHERE lId = ?1",
                                    {std::int64_t(inst.rooms.front().id)})),
              "Neu");
    EXPECT_EQ(m.refresh(HostSource::odbc(connection)), path);
    EXPECT_EQ(m.builds(), 2);
    auto after = Database::open(path, true);
    EXPECT_EQ(toText(after->scalar("SELECT stBezeichnung FROM T_Raumkern WHERE lId = ?1",
                                   {std::int64_t(inst.rooms.front().id)})),
              "Neu");
    // The "ODBC;" of a link's connect string names the same source.
    EXPECT_EQ(m.mirrorPath(HostSource::odbc(connection.substr(5))), path);
}

TEST_F(OdbcServer, UnreachableServerGivesTheMessageAndKeepsTheLastCopy)
{
    HostMirror m = mirror();
    const std::string path = m.refresh(HostSource::odbc(connection));
    const std::string wrong = "ODBC;DRIVER={" + std::string(demo::PostgresCluster::kDriverName) +
                              "};SERVER=127.0.0.1;PORT=1;DATABASE=quarn;UID=quarn;PWD=geheim;";
    try {
        m.refresh(HostSource::odbc(wrong));
        FAIL() << "no error";
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), linkerr::OdbcFailed);
        EXPECT_EQ(e.description().rfind("Die Quarn-Datenbank auf dem Server ist nicht erreichbar (ODBC;DRIVER={", 0), 0u)
            << e.description();
        EXPECT_NE(e.description().find("PWD=***;"), std::string::npos) << e.description();
        EXPECT_EQ(e.description().find("geheim"), std::string::npos) << e.description();
    }
    // The server gone: the last copy stays and is still used.
    cluster.reset();
    EXPECT_THROW(m.refresh(HostSource::odbc(connection)), DbError);
    EXPECT_EQ(m.mirrorFor(HostSource::odbc(connection)), path);
    QObjektDb obj;
    ASSERT_TRUE(obj.Open(QI_PROGRAM_DIR, HostSource::odbc(connection))) << obj.LastError();
    EXPECT_TRUE(obj.FindByInvNr(inst.modules[0].objects[1].name).has_value());
    // A connection string that names no driver at all.
    QGebDb geb;
    EXPECT_FALSE(geb.Open(QI_PROGRAM_DIR, HostSource::odbc("ODBC;DSN=GibtEsNicht")));
    EXPECT_EQ(geb.LastError().rfind("Die Quarn-Datenbank konnte nicht geöffnet werden!\r\nDie Quarn-Datenbank auf dem "
                                    "Server ist nicht erreichbar (ODBC;DSN=GibtEsNicht).",
                                    0),
              0u)
        << geb.LastError();
}

/// The file mode bits of a path (permissions only).
unsigned modeOf(const std::string& path)
{
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 ? unsigned(st.st_mode & 07777) : 0u;
}

/// The connection string with a password holding ';' and '=' in braces (the test server takes any).
std::string withPassword(const std::string& connection, const std::string& password)
{
    const std::string empty = "PWD=;";
    std::string c = connection;
    c.replace(c.find(empty), empty.size(), "PWD=" + password + ";");
    return c;
}

TEST_F(OdbcServer, MirrorOfAServerKeepsNoPasswordAndOnlyItsUserCanReadIt)
{
    const std::string cache = dir.path() + "/Cache";
    std::filesystem::create_directories(cache);
    ::chmod(cache.c_str(), 0755);
    HostMirror m(cache, QI_PROGRAM_DIR);
    const std::string secret = withPassword(connection, "{Fa;lsch=99}");
    const std::string path = m.refresh(HostSource::odbc(secret));

    const std::string identity = MirrorWriter::identityOf(path);
    EXPECT_EQ(identity.find("lsch"), std::string::npos) << identity;
    EXPECT_NE(identity.find(";UID=quarn"), std::string::npos) << identity;
    EXPECT_NE(identity.find("|sha256:"), std::string::npos) << identity;
    EXPECT_EQ(test::readFile(path).find("lsch=99"), std::string::npos);
    EXPECT_EQ(modeOf(path), 0600u);
    EXPECT_EQ(modeOf(cache), 0700u);
    // A file's mirror too.
    EXPECT_EQ(modeOf(m.mirrorFor(HostSource::file(files + "/QGebaeude.mdb"))), 0600u);

    // Another password names another source; the same string is the same mirror.
    EXPECT_NE(m.mirrorPath(HostSource::odbc(withPassword(connection, "{Fa;lsch=98}"))), path);
    EXPECT_EQ(m.mirrorFor(HostSource::odbc(secret)), path);
    EXPECT_EQ(m.builds(), 2);

    // A mirror of an earlier version that noted the whole string, password and all, goes at the next reading.
    const std::string old = cache + "/quarn-0123456789abcdef.sqlite";
    {
        MirrorWriter w(old);
        w.finish("odbc:" + odbcDriverConnectString(secret));
    }
    ASSERT_TRUE(fileExists(old));
    m.refresh(HostSource::odbc(secret));
    EXPECT_FALSE(fileExists(old));
    EXPECT_TRUE(fileExists(path));
}

TEST_F(OdbcServer, MessagesOfAServerShowNoPasswordInAnyForm)
{
    HostMirror m(dir.path() + "/Cache", QI_PROGRAM_DIR);
    const std::string base = "ODBC;DRIVER={" + std::string(demo::PostgresCluster::kDriverName) +
                             "};SERVER=127.0.0.1;PORT=1;DATABASE=quarn;UID=quarn;";
    const struct {
        std::string password; ///< as the connection string holds it
        std::string shown;    ///< as the message shows it
        std::string secret;   ///< what must not show
    } forms[] = {
        {"PWD={Fa;lsch=99};", "PWD=***;", "lsch"},
        {"PWD = geheim1;", "PWD = ***;", "geheim1"},
        {"Password=geheim2;", "Password=***;", "geheim2"},
        {"pwd={ge}}heim3};", "pwd=***;", "heim3"},
    };
    for (const auto& f : forms) {
        SCOPED_TRACE(f.password);
        try {
            m.refresh(HostSource::odbc(base + f.password));
            ADD_FAILURE() << "no error";
        } catch (const DbError& e) {
            EXPECT_EQ(e.description().rfind("Die Quarn-Datenbank auf dem Server ist nicht erreichbar (" +
                                                base + f.shown + ").\r\n",
                                            0),
                      0u)
                << e.description();
            EXPECT_EQ(e.description().find(f.secret), std::string::npos) << e.description();
        }
    }
}

TEST_F(OdbcServer, FixedLengthTextArrivesWithoutItsPadding)
{
    const std::int64_t kst = inst.costCentres.front().id;
    cluster->runSql("quarn", "ALTER TABLE \"T_IObjekt\" ALTER COLUMN \"stName\" TYPE char(24);\n"
                             "ALTER TABLE \"T_IObjekt\" ALTER COLUMN \"stOrt\" TYPE char(12);\n"
                             "ALTER TABLE \"T_IArtikel\" ALTER COLUMN \"stArtNr\" TYPE char(12);\n"
                             "ALTER TABLE \"T_Raumkern\" ALTER COLUMN \"stRaumNr\" TYPE char(10);\n"
                             "UPDATE \"T_KST\" SET \"stBezeichnung\" = \"stBezeichnung\" || '  ' WHERE \"lId\" = " +
                                 std::to_string(kst) + ";\n");
    HostMirror m = mirror();
    const std::string server = m.refresh(HostSource::odbc(connection));
    // The same values as Quarn's files hold.
    for (const auto& [table, file] : {std::pair<std::string, std::string>{"T_IObjekt", "QOvInventar.mdb"},
                                      {"T_IArtikel", "QOvInventar.mdb"},
                                      {"T_Raumkern", "QGebaeude.mdb"}}) {
        SCOPED_TRACE(table);
        EXPECT_EQ(rowsOf(server, table), rowsOf(m.mirrorFor(HostSource::file(files + "/" + file)), table));
    }
    auto db = Database::open(server, true);
    EXPECT_EQ(
        toText(db->scalar("SELECT count(*) FROM T_Raumkern WHERE length(stRaumNr) <> length(rtrim(stRaumNr))")),
        "0");
    EXPECT_EQ(toText(db->scalar("SELECT stName FROM T_IObjekt WHERE lId = ?1",
                                {std::int64_t(inst.modules[0].objects[1].id)})),
              inst.modules[0].objects[1].name);
    // A variable-length column keeps its blanks, as Quarn's files do.
    EXPECT_EQ(toText(db->scalar("SELECT stBezeichnung FROM T_KST WHERE lId = ?1", {kst})),
              inst.costCentres.front().name + "  ");
    // The host components answer the values without padding.
    QGebDb geb;
    ASSERT_TRUE(geb.Open(QI_PROGRAM_DIR, HostSource::odbc(connection))) << geb.LastError();
    std::vector<GebRoom> rooms;
    ASSERT_TRUE(geb.GetAllRooms(rooms));
    ASSERT_FALSE(rooms.empty());
    for (const GebRoom& r : rooms)
        EXPECT_EQ(r.stRaumNr.find_last_not_of(' ') + 1, r.stRaumNr.size()) << "'" << r.stRaumNr << "'";
}

} // namespace
} // namespace qi
