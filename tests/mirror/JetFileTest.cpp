// Real Jet files that nobody here wrote, read into the mirror and compared value
// for value with what mdb-export prints for them; the mirror is reused while a
// file is unchanged and made anew after it changed; damaged copies give the
// message that names the file, and nothing crashes.

#include "Database.h"
#include "FileSystem.h"
#include "HostMirror.h"
#include "JetDate.h"
#include "JetFile.h"
#include "MirrorTestSupport.h"
#include "QuarnHost.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <map>
#include <optional>
#include <random>
#include <sstream>

namespace qi {
namespace {

namespace fs = std::filesystem;
using test::successfulCommandOutput;
using test::shellWord;

constexpr const char* kDateFormat = "%Y-%m-%d %H:%M:%S";

/// One CSV field of mdb-export's output: its text and whether it was quoted.
struct Field {
    std::string text;
    bool quoted = false;
};

/// Splits mdb-export's CSV (comma, double quotes doubled, line breaks inside quotes) into rows.
std::vector<std::vector<Field>> parseCsv(const std::string& csv)
{
    std::vector<std::vector<Field>> rows;
    std::vector<Field> row;
    Field field;
    bool inQuotes = false;
    for (std::size_t i = 0; i < csv.size(); ++i) {
        const char c = csv[i];
        if (inQuotes) {
            if (c == '"' && i + 1 < csv.size() && csv[i + 1] == '"') {
                field.text += '"';
                ++i;
            } else if (c == '"') {
                inQuotes = false;
            } else {
                field.text += c;
            }
        } else if (c == '"') {
            inQuotes = true;
            field.quoted = true;
        } else if (c == ',') {
            row.push_back(field);
            field = {};
        } else if (c == '\n') {
            row.push_back(field);
            rows.push_back(row);
            row.clear();
            field = {};
        } else {
            field.text += c;
        }
    }
    if (!row.empty() || !field.text.empty())
        rows.push_back(row), rows.back().push_back(field);
    return rows;
}

/// Column types of every table as mdb-schema names them ("Long Integer", "Text (15)", "Boolean" ...).
std::map<std::string, std::vector<std::string>> schemaTypes(const std::string& file)
{
    std::map<std::string, std::vector<std::string>> types;
    std::istringstream in(successfulCommandOutput("mdb-schema " + shellWord(file)));
    std::string line, table;
    while (std::getline(in, line)) {
        if (line.rfind("CREATE TABLE [", 0) == 0) {
            table = line.substr(14, line.find(']', 14) - 14);
        } else if (!table.empty() && line.rfind("\t[", 0) == 0) {
            const auto close = line.find(']');
            std::string type = line.substr(line.find_first_not_of('\t', close + 1));
            type = type.substr(0, type.find_last_not_of(", ") + 1);
            types[table].push_back(type);
        }
    }
    return types;
}

/// The mirror's value as mdb-export prints it for a column of that Jet type.
std::string exported(const Value& v, const std::string& type)
{
    if (isNull(v))
        return "";
    char buf[64];
    if (type.rfind("Boolean", 0) == 0)
        return toLong(v) ? "1" : "0";
    if (type.rfind("Single", 0) == 0) {
        std::snprintf(buf, sizeof buf, "%.8g", double(float(std::get<double>(v))));
        return buf;
    }
    if (type.rfind("Double", 0) == 0) {
        std::snprintf(buf, sizeof buf, "%.16g", std::get<double>(v));
        return buf;
    }
    if (type.rfind("Currency", 0) == 0) {
        std::snprintf(buf, sizeof buf, "%.4f", std::get<double>(v));
        return buf;
    }
    return toText(v);
}

class JetFiles : public ::testing::Test {
protected:
    void SetUp() override
    {
        data = test::jetTestDataFolder();
        cache = dir.path() + "/cache";
    }
    /// A copy of a test file in the test's folder (the originals are never touched).
    std::string copyOf(const std::string& name, const std::string& as = "")
    {
        const std::string target = dir.path() + "/" + (as.empty() ? name : as);
        EXPECT_TRUE(copyFile(data + "/" + name, target));
        return target;
    }
    HostMirror mirror(bool all = true)
    {
        HostMirror m(cache, QI_PROGRAM_DIR);
        m.setAllTables(all);
        return m;
    }

    /// Compares every table, row and value of the mirror of `file` with mdb-export.
    void expectSameAsMdbExport(const std::string& name)
    {
        const std::string file = copyOf(name);
        HostMirror m = mirror();
        const std::string path = m.mirrorFor(HostSource::file(file));
        auto db = Database::open(path, true);

        std::vector<std::string> tables;
        std::istringstream list(successfulCommandOutput("mdb-tables -1 " + shellWord(file)));
        for (std::string t; std::getline(list, t);)
            if (!t.empty())
                tables.push_back(t);
        ASSERT_FALSE(tables.empty());
        const Recordset mirrored = db->query("SELECT name FROM sqlite_master WHERE type = 'table' AND name <> "
                                             "'QI_Mirror' ORDER BY rowid");
        std::vector<std::string> mirroredNames;
        for (const auto& row : mirrored.rows())
            mirroredNames.push_back(toText(row[0]));
        EXPECT_EQ(mirroredNames, tables);

        const auto types = schemaTypes(file);
        for (const std::string& table : tables) {
            SCOPED_TRACE(table);
            const auto rows = parseCsv(successfulCommandOutput("mdb-export -b hex -D '" + std::string(kDateFormat) + "' -T '" +
                                                     kDateFormat + "' " + shellWord(file) + " " + shellWord(table)));
            ASSERT_FALSE(rows.empty());
            const Recordset rs = db->query("SELECT * FROM \"" + table + "\" ORDER BY rowid");
            // The header: the column names in order.
            ASSERT_EQ(rs.columnNames().size(), rows[0].size());
            for (std::size_t c = 0; c < rows[0].size(); ++c)
                EXPECT_EQ(rs.columnNames()[c], rows[0][c].text);
            ASSERT_EQ(rs.size() + 1, rows.size());
            const std::vector<std::string>& columnTypes = types.at(table);
            ASSERT_EQ(columnTypes.size(), rs.columnNames().size());
            for (std::size_t r = 0; r < rs.size(); ++r) {
                for (std::size_t c = 0; c < columnTypes.size(); ++c) {
                    const std::string& type = columnTypes[c];
                    const Field& expected = rows[r + 1][c];
                    const Value& v = rs.rows()[r][c];
                    if (type.rfind("OLE", 0) == 0) {
                        const Value hex = db->scalar("SELECT hex(\"" + rs.columnNames()[c] + "\") FROM \"" + table +
                                                     "\" WHERE rowid = ?1",
                                                     {std::int64_t(r + 1)});
                        EXPECT_EQ(toText(hex), expected.text) << "row " << r << " column " << c;
                        continue;
                    }
                    if (type.rfind("DateTime", 0) == 0 && expected.text == "1900-01-00 00:00:00") {
                        // mdb-export shows no date before 30.12.1899 or after the year 4637; the mirror keeps it.
                        const JetDate d = JetDate::fromStorageText(toText(v));
                        EXPECT_TRUE(d.serial < 0 || d.serial > 1e6) << toText(v);
                        continue;
                    }
                    EXPECT_EQ(exported(v, type), expected.text)
                        << "row " << r << " column " << rs.columnNames()[c] << " (" << type << ")";
                }
            }
        }
    }

    test::TempDir dir;
    std::string data, cache;
};

TEST_F(JetFiles, HeaderTellsTheJetVersion)
{
    EXPECT_EQ(jetFileVersion(data + "/nwind.mdb"), 3);
    EXPECT_EQ(jetFileVersion(data + "/DateTestDatabase.mdb"), 4);
    const std::string text = dir.path() + "/text.mdb";
    test::writeFile(text, "Standard Jet DB, but not at the right place");
    EXPECT_EQ(jetFileVersion(text), 0);
    EXPECT_EQ(jetFileVersion(dir.path() + "/missing.mdb"), 0);
}

TEST_F(JetFiles, Jet3FileEqualsMdbExportInEveryValue) { expectSameAsMdbExport("nwind.mdb"); }

TEST_F(JetFiles, Jet4FileEqualsMdbExportInEveryValue) { expectSameAsMdbExport("DateTestDatabase.mdb"); }

TEST_F(JetFiles, TypesAreKeptAsSqliteValues)
{
    const std::string file = copyOf("nwind.mdb");
    HostMirror m = mirror();
    auto db = Database::open(m.mirrorFor(HostSource::file(file)), true);
    // Long, Currency, Single, Boolean, Date, Text keep their kind.
    const Recordset rs = db->query("SELECT typeof(OrderID), typeof(UnitPrice), typeof(Discount) FROM \"Order Details\" "
                                   "LIMIT 1");
    EXPECT_EQ(toText(rs.rows()[0][0]), "integer");
    EXPECT_EQ(toText(rs.rows()[0][1]), "real");
    EXPECT_EQ(toText(rs.rows()[0][2]), "real");
    EXPECT_EQ(toText(db->scalar("SELECT count(*) FROM Products WHERE Discontinued = -1")), "8");
    EXPECT_EQ(toText(db->scalar("SELECT OrderDate FROM Orders WHERE OrderID = 10330")), "1994-11-16 00:00:00");
    // Text compares as Jet compares it, whatever the letter case and trailing blanks.
    EXPECT_EQ(toText(db->scalar("SELECT CompanyName FROM Customers WHERE CustomerID = 'alfki  '")),
              "Alfreds Futterkiste");
    // The year 9999 and years before 1900 keep their dates.
    auto dates = Database::open(m.mirrorFor(HostSource::file(copyOf("DateTestDatabase.mdb"))), true);
    EXPECT_EQ(toText(dates->scalar("SELECT substr(DateTimeCol, 1, 4) FROM DateTest WHERE IDCol = 2")), "9999");
}

TEST_F(JetFiles, MirrorIsReusedWhileTheFileIsUnchangedAndMadeAnewAfterItChanged)
{
    const std::string file = copyOf("nwind.mdb", "QGebaeude.mdb");
    HostMirror first = mirror();
    const std::string path = first.mirrorFor(HostSource::file(file));
    EXPECT_EQ(first.builds(), 1);
    EXPECT_EQ(first.mirrorFor(HostSource::file(file)), path);
    EXPECT_EQ(first.builds(), 1);
    // Another object (another run of the program) finds it too.
    HostMirror second = mirror();
    EXPECT_EQ(second.mirrorFor(HostSource::file(file)), path);
    EXPECT_EQ(second.builds(), 0);

    // A new time of change alone makes it anew.
    fs::last_write_time(file, fs::last_write_time(file) + std::chrono::seconds(5));
    EXPECT_EQ(second.mirrorFor(HostSource::file(file)), path);
    EXPECT_EQ(second.builds(), 1);

    // Another file under the same name: the mirror holds the new file's tables.
    ASSERT_TRUE(copyFile(data + "/DateTestDatabase.mdb", file));
    EXPECT_EQ(second.mirrorFor(HostSource::file(file)), path);
    EXPECT_EQ(second.builds(), 2);
    auto db = Database::open(path, true);
    EXPECT_TRUE(db->tableExists("DateTest"));
    EXPECT_FALSE(db->tableExists("Orders"));
}

TEST_F(JetFiles, OnlyQuarnsTablesAreMirroredForTheHostComponents)
{
    const std::string file = copyOf("nwind.mdb", "QGebaeude.mdb");
    HostMirror m = mirror(false);
    auto db = Database::open(m.mirrorFor(HostSource::file(file)), true);
    EXPECT_FALSE(db->tableExists("Orders"));
    // Without Quarn's tables the components open, and a query names what is missing.
    QGebDb geb;
    ASSERT_TRUE(geb.Open(QI_PROGRAM_DIR, file)) << geb.LastError();
    std::vector<GebRoom> rooms;
    EXPECT_FALSE(geb.GetAllRooms(rooms));
    EXPECT_NE(geb.LastError().find("T_Raumkern"), std::string::npos) << geb.LastError();
}

/// Damaged copies of the Jet 4 and the Jet 3 file.
class DamagedJetFile : public JetFiles, public ::testing::WithParamInterface<std::tuple<const char*, int>> {
protected:
    /// Kind 0: cut after 5000 bytes; 1: random bytes after the first 32 (the header's signature);
    /// 2: random bytes after the first page; 3: the catalogue page overwritten.
    std::string damaged()
    {
        const auto [name, kind] = GetParam();
        std::string bytes = test::readFile(data + "/" + name);
        std::mt19937 random(4711 + kind);
        const auto scramble = [&](std::size_t from, std::size_t to) {
            for (std::size_t i = from; i < std::min(to, bytes.size()); ++i)
                bytes[i] = char(random() & 0xff);
        };
        const std::size_t page = jetFileVersion(data + "/" + name) == 3 ? 2048 : 4096;
        switch (kind) {
        case 0: bytes.resize(5000); break;
        case 1: scramble(32, bytes.size()); break;
        case 2: scramble(page, bytes.size()); break;
        default: scramble(2 * page, 3 * page); break;
        }
        const std::string path = dir.path() + "/QOvInventar.mdb";
        test::writeFile(path, bytes);
        return path;
    }
};

TEST_P(DamagedJetFile, GivesTheMessageNamingTheFileAndNoCrash)
{
    const std::string file = damaged();
    HostMirror m = mirror();
    try {
        m.mirrorFor(HostSource::file(file));
        FAIL() << "a damaged file was read";
    } catch (const DbError& e) {
        EXPECT_EQ(e.description(), jetUnreadableMessage(file));
    }
    QObjektDb obj;
    EXPECT_FALSE(obj.Open(QI_PROGRAM_DIR, file));
    EXPECT_EQ(obj.LastError(), "Die Quarn-Datenbank konnte nicht geöffnet werden!\r\n" + jetUnreadableMessage(file));
    // No half-written file is left in the cache.
    for (const auto& entry : fs::directory_iterator(cache))
        EXPECT_NE(entry.path().extension(), ".tmp") << entry.path();
}

INSTANTIATE_TEST_SUITE_P(Copies, DamagedJetFile,
                         ::testing::Combine(::testing::Values("nwind.mdb", "DateTestDatabase.mdb"),
                                            ::testing::Values(0, 1, 2, 3)));

TEST_F(JetFiles, TruncatedFileGivesTheMessage)
{
    std::string bytes = test::readFile(data + "/nwind.mdb");
    bytes.resize(3000);
    const std::string file = dir.path() + "/QGebaeude.mdb";
    test::writeFile(file, bytes);
    HostMirror m = mirror();
    try {
        m.mirrorFor(HostSource::file(file));
        FAIL() << "a truncated file was read";
    } catch (const DbError& e) {
        EXPECT_EQ(e.description(), "Die Jet-Datenbank '" + file +
                                       "' kann nicht gelesen werden. Sie ist beschädigt oder hat ein unbekanntes "
                                       "Format.");
    }
}

TEST(JetDates, DaysBefore1899CountBackWithTheTimeOfDay)
{
    EXPECT_EQ(jetDateText(0.0), "1899-12-30 00:00:00");
    EXPECT_EQ(jetDateText(-1.25), "1899-12-29 06:00:00");
    EXPECT_EQ(jetDateText(2.5), "1900-01-01 12:00:00");
    EXPECT_EQ(jetDateText(2958465.0), "9999-12-31 00:00:00");
    EXPECT_EQ(jetDateText(-657434.0), "0100-01-01 00:00:00");
    EXPECT_EQ(jetDateText(2958466.0), "");
    EXPECT_EQ(jetDateText(-657435.0), "");
}

} // namespace
} // namespace qi
