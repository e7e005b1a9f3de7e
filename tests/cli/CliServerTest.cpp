// qinventur-cli on a project whose Quarn data lie on a real PostgreSQL server,
// started by the test, with a password in braces in its connection string: the
// local copy of the server's data is readable by its user alone and holds no
// password; with the server gone, commands work on the last copy and end with a
// warning and exit code 0, and without a copy a change that needs none stands.

#include "CliFixture.h"

#include "FileSystem.h"
#include "PostgresCluster.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

const std::string kUnreachable = "[Problem] Die Quarn-Datenbank auf dem Server ist nicht erreichbar (ODBC;DRIVER={";
const std::string kLastCopy = "[qinventur-cli] Warnung: Der Server der Quarn-Datenbank war nicht erreichbar. Der Befehl "
                              "hat mit der letzten Kopie ihrer Daten vom ";

unsigned modeOf(const std::string& path)
{
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 ? unsigned(st.st_mode & 07777) : 0u;
}

/// The last line of a text (without its line break).
std::string lastLine(const std::string& text)
{
    std::string t = text;
    if (!t.empty() && t.back() == '\n')
        t.pop_back();
    return t.substr(t.rfind('\n') == std::string::npos ? 0 : t.rfind('\n') + 1);
}

class CliServerTest : public CliFixture {
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        // The copies of Quarn's data go to a cache folder of the test's own.
        const char* before = std::getenv("XDG_CACHE_HOME");
        oldCache = before ? before : "";
        hadCache = before != nullptr;
        ::setenv("XDG_CACHE_HOME", root.file("cache").c_str(), 1);
        try {
            cluster = std::make_unique<demo::PostgresCluster>();
        } catch (const std::exception& e) {
            FAIL() << e.what();
        }
        cluster->createDatabase("quarn");
        cluster->loadInstallation(inst, "quarn");
        std::string connection = cluster->connectionString("quarn");
        connection.replace(connection.find("PWD=;"), 5, "PWD={Fa;lsch=99};");
        for (const char* file :
             {"QGebaeude.mdb", "QOvInventar.mdb", "QOvTechnik.mdb", "QOvBrandschutz.mdb", "QStammdaten.mdb"})
            ASSERT_TRUE(removeFile(demoDir + "/" + file));
        writeFile(demoDir + "/Projekt.ini", "[ODBC]\r\nProjekttyp=ptODBC\r\nConnectionString=" + connection +
                                                "\r\n[Inventur]\r\nModul=INVENTAR\r\n");
    }
    void TearDown() override
    {
        cluster.reset();
        if (hadCache)
            ::setenv("XDG_CACHE_HOME", oldCache.c_str(), 1);
        else
            ::unsetenv("XDG_CACHE_HOME");
    }

    std::int64_t rows(const std::string& order, const std::string& table)
    {
        return count(orderFile(order), "SELECT COUNT(*) FROM " + table);
    }
    /// Expects the server's message (its password masked) and the closing warning of the last copy.
    void expectLastCopy(const CliRun& r)
    {
        EXPECT_NE(r.err.find(kUnreachable), std::string::npos) << r.err;
        EXPECT_NE(r.err.find(";PWD=***;"), std::string::npos) << r.err;
        EXPECT_EQ(r.err.find("lsch"), std::string::npos) << r.err;
        const std::string last = lastLine(r.err);
        const std::string end = " gearbeitet.";
        EXPECT_EQ(last.rfind(kLastCopy, 0), 0u) << r.err;
        ASSERT_GT(last.size(), kLastCopy.size() + end.size()) << r.err;
        EXPECT_EQ(last.substr(last.size() - end.size()), end);
        // The copy's time: "TT.MM.JJJJ hh:mm".
        EXPECT_EQ(last.size(), kLastCopy.size() + 16 + end.size()) << last;
    }

    std::unique_ptr<demo::PostgresCluster> cluster;
    std::string oldCache;
    bool hadCache = false;
};

TEST_F(CliServerTest, TheCopyOfTheServersDataIsPrivateAndCommandsWorkOnItWhileTheServerIsDown)
{
    expectCli(0, {"anlegen", "EG"});
    std::vector<std::string> args = {"raeume", "EG", "--setzen"};
    for (const std::string& nr : orderRooms())
        args.push_back(nr);
    EXPECT_EQ(expectCli(0, args).err, "");

    // The copy: its folder and files readable by their user alone, without the password anywhere.
    const std::string cache = root.file("cache/QInventur/Quarn");
    EXPECT_EQ(modeOf(cache), 0700u);
    int copies = 0;
    for (const auto& e : fs::directory_iterator(cache)) {
        ++copies;
        EXPECT_EQ(modeOf(e.path().string()), 0600u) << e.path();
        EXPECT_EQ(readFile(e.path().string()).find("lsch=99"), std::string::npos) << e.path();
    }
    EXPECT_GE(copies, 1);

    // The server gone: the file is added from the last copy, told once it stands, and the command ends with 0.
    cluster.reset();
    CliRun r = expectCli(0, {"hinzufuegen", "EG", scanFile("Scan_EG_Teil1.dat"), "--konflikt", "behalten"});
    EXPECT_EQ(r.out, "Datei 'Scan_EG_Teil1.dat' hinzugefügt.\n");
    expectLastCopy(r);
    EXPECT_GT(rows("EG", "T_DatInventur"), 0);

    // A new order, the list of orders and a report as well.
    r = expectCli(0, {"anlegen", "OG"});
    EXPECT_EQ(r.out, "Auftrag 'OG' angelegt: " + displayPath(orderFile("OG")) + "\n");
    expectLastCopy(r);
    EXPECT_TRUE(fileExists(orderFile("OG")));
    expectLastCopy(expectCli(0, {"auftraege"}));
    r = expectCli(0, {"bericht", "EG", "raumerfassung", "--ausgabe", root.file("raum.csv")});
    expectLastCopy(r);
    EXPECT_NE(readFile(root.file("raum.csv")).find(orderRooms().front()), std::string::npos);
}

TEST_F(CliServerTest, WithoutACopyAnOrderIsCreatedWithAWarningAndWhatNeedsQuarnsDataFails)
{
    cluster.reset();
    CliRun r = expectCli(0, {"anlegen", "OG"});
    EXPECT_NE(r.err.find(kUnreachable), std::string::npos) << r.err;
    EXPECT_EQ(r.err.find("lsch"), std::string::npos) << r.err;
    EXPECT_EQ(lastLine(r.err), "[qinventur-cli] Warnung: Der Befehl ist ausgeführt und seine Änderung gespeichert; "
                               "die Fehlermeldungen oben haben sie nicht verhindert.");
    EXPECT_TRUE(fileExists(orderFile("OG")));
    // Choosing rooms needs Quarn's building structure; listing the orders shows the error.
    EXPECT_EQ(cli({"raeume", "OG", "--setzen", "--alle"}).code, 1);
    EXPECT_EQ(cli({"auftraege"}).code, 1);
}

} // namespace
} // namespace qi::test
