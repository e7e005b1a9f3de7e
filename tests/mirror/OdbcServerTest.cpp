// Quarn's tables on a real PostgreSQL server, started by the test, read through
// psqlODBC into the mirror: the same tables and rows as the installation's files,
// a server that can't be reached gives the message and leaves the last copy.

#include "Database.h"
#include "DemoInstallation.h"
#include "HostMirror.h"
#include "LinkedDatabase.h"
#include "PostgresCluster.h"
#include "QuarnHost.h"
#include "QuarnTables.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

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

} // namespace
} // namespace qi
