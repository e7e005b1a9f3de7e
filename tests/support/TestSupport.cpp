#include "TestSupport.h"

#include "CInventurDb.h"
#include "OrderSchema.h"
#include "ProjectLock.h"

#include <QApplication>
#include <QSettings>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace qi::test {

namespace fs = std::filesystem;

namespace {
/// The mirrors of Quarn's data that tests make go to a cache folder of the build, not the user's.
const bool kTestCache = ::setenv("XDG_CACHE_HOME", QI_PROGRAM_DIR "/../tests/cache", 1) == 0;
} // namespace

TempDir::TempDir()
{
    std::random_device rd;
    const auto base = fs::temp_directory_path() / "qinventur-tests";
    fs::create_directories(base);
    for (;;) {
        const auto p = base / ("t" + std::to_string(rd()));
        if (fs::create_directory(p)) {
            path_ = p.string();
            break;
        }
    }
}

TempDir::~TempDir()
{
    std::error_code ec;
    fs::remove_all(path_, ec);
}

void makeOrderDatabase(const std::string& path)
{
    auto db = Database::create(path);
    createOrderSchema(*db);
}

void makeRegisterDatabase(const std::string& path)
{
    auto db = Database::create(path);
    createRegisterSchema(*db);
}

void writeFile(const std::string& path, const std::string& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << bytes;
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::string commandOutput(const std::string& command)
{
    std::string out;
    if (FILE* pipe = ::popen(command.c_str(), "r")) {
        char buffer[4096];
        for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
            out.append(buffer, n);
        ::pclose(pipe);
    }
    return out;
}

QApplication& qtApplication()
{
    static int argc = 1;
    static char name[] = "qinventur-test";
    static char* argv[] = {name, nullptr};
    static QApplication* app = [] {
        auto* a = new QApplication(argc, argv);
        // What the windows remember between runs goes to a folder of this test process only.
        static const std::string settings =
            (fs::temp_directory_path() / "qinventur-tests" / ("settings-" + std::to_string(::getpid()))).string();
        QCoreApplication::setOrganizationName(QStringLiteral("QInventur-Test"));
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QString::fromStdString(settings));
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, QString::fromStdString(settings));
        std::atexit([] {
            std::error_code ec;
            fs::remove_all(settings, ec);
        });
        return a;
    }();
    return *app;
}

std::vector<std::string> sortedNames(const std::string& folder)
{
    std::vector<std::string> names;
    std::error_code ec;
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec))
        names.push_back(it->path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::map<std::string, std::string> treeDigest(const std::string& folder)
{
    std::map<std::string, std::string> files;
    for (const auto& e : fs::recursive_directory_iterator(folder)) {
        // A project's lock file stays behind every program that worked on the project.
        if (!e.is_regular_file() || e.path().filename() == ProjectLock::kFileName)
            continue;
        const std::string bytes = readFile(e.path().string());
        std::uint64_t h = 1469598103934665603ull;
        for (unsigned char c : bytes) {
            h ^= c;
            h *= 1099511628211ull;
        }
        files[fs::relative(e.path(), folder).string()] = std::to_string(bytes.size()) + ":" + std::to_string(h);
    }
    return files;
}

namespace {

void hexOf(std::uint64_t h, std::string& out)
{
    static const char* digits = "0123456789abcdef";
    for (int i = 60; i >= 0; i -= 4)
        out += digits[(h >> i) & 0xF];
}

} // namespace

std::string contentDigest(const std::string& databaseFile)
{
    auto db = Database::open(databaseFile, true);
    const Recordset tables =
        db->query("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite_%' ORDER BY name");
    // FNV-1a over the tables' names and every value of every row in key order.
    std::uint64_t h = 1469598103934665603ull;
    const auto add = [&h](const std::string& bytes) {
        for (unsigned char c : bytes) {
            h ^= c;
            h *= 1099511628211ull;
        }
        h ^= 0xFF;
        h *= 1099511628211ull;
    };
    std::size_t rows = 0;
    for (const auto& t : tables.rows()) {
        const std::string name = toText(t[0]);
        add(name);
        Statement& st = db->prepare("SELECT * FROM \"" + name + "\" ORDER BY rowid");
        st.bindAll({});
        while (st.step()) {
            ++rows;
            for (int c = 0; c < st.columnCount(); ++c) {
                const Value v = st.column(c);
                add(isNull(v) ? std::string("\x01") : toText(v));
            }
        }
        st.reset();
    }
    std::string out = std::to_string(rows) + ":";
    hexOf(h, out);
    return out;
}

bool integrityOk(const std::string& databaseFile)
{
    auto db = Database::open(databaseFile);
    return toText(db->scalar("PRAGMA integrity_check")) == "ok";
}

std::string leaveLastError(CAuftragDb& db)
{
    CRaumRec missing;
    missing.lID = -1;
    EXPECT_FALSE(db.ReadRaumRec(&missing));
    EXPECT_EQ(db.LastError().rfind("Der Datensatz konnte nicht gelesen werden!", 0), 0u) << db.LastError();
    return db.LastError();
}

void OrderDbTest::SetUp()
{
    dbFile = dir.file("A1.mdb");
    makeOrderDatabase(dbFile);
    db.setDbPath(dbFile);
    ASSERT_TRUE(db.OpenDb()) << db.LastError();
}

} // namespace qi::test
