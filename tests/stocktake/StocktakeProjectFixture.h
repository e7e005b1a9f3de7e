#pragma once
// A project made as a person makes it, for the road tests across orders: orders created, rooms
// chosen and scanner files added with qinventur-cli on the demo installation, once with the
// module INVENTAR and once with TECHNIK (whose inventory numbers hold letters, so that a known
// number can differ in case alone), so that every case across orders occurs at least twice.
// Beside it, the model the tests compare with, computed independently of the overview: from the
// order databases and the register (read with plain statements), Quarn's demo tables (read
// directly) and each order's difference list as `auswerten` makes it on a copy of the project.

#include "CliFixture.h"

#include "Database.h"
#include "DemoInstallation.h"
#include "FileSystem.h"
#include "ProjectResultSchema.h"
#include "Settings.h"
#include "TextFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace qi::test::road {

namespace fs = std::filesystem;

using Row = std::vector<std::string>;
using Rows = std::vector<Row>;

inline std::string rtrim(std::string s)
{
    while (!s.empty() && s.back() == ' ')
        s.pop_back();
    return s;
}

/// A number or room as the order databases compare it (our data are ASCII).
inline std::string key(const std::string& s)
{
    std::string k = rtrim(s);
    for (char& c : k)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return k;
}

/// The sortable stamp of a scanner date and time.
inline std::string stamp(const std::string& datum, const std::string& uhrzeit)
{
    const bool scannerForm = datum.size() == 10 && datum[2] == '.' && datum[5] == '.';
    if (scannerForm)
        return datum.substr(6, 4) + "-" + datum.substr(3, 2) + "-" + datum.substr(0, 2) + " " + uhrzeit;
    return datum + " " + uhrzeit;
}

inline std::string percent(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.4f", value);
    return text;
}

inline std::string percentOf(std::int64_t part, std::int64_t whole) { return percent(whole ? 100.0 * double(part) / double(whole) : 0.0); }

/// "A, B" as a set: the names sorted, so that their order in the text does not count.
inline std::string nameSet(const std::string& text)
{
    std::vector<std::string> names;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t comma = text.find(',', start);
        std::string name = text.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
        while (!name.empty() && name.front() == ' ')
            name.erase(name.begin());
        names.push_back(rtrim(name));
        if (comma == std::string::npos)
            break;
        start = comma + 1;
    }
    std::sort(names.begin(), names.end());
    std::string out;
    for (const std::string& n : names)
        out += (out.empty() ? "" : "|") + n;
    return out;
}

inline std::string joinNames(const std::set<std::string>& names)
{
    std::string out;
    for (const std::string& n : names)
        out += (out.empty() ? "" : ", ") + n;
    return out;
}

inline std::string show(const Row& row)
{
    std::string out;
    for (const std::string& cell : row)
        out += (out.empty() ? "[" : " | ") + cell;
    return out + "]";
}

/// How the cells of a column are compared.
enum class Cell { Exact, Number, NameSet, Percent };

struct Column {
    const char* name;
    Cell cell = Cell::Exact;
};

inline std::string normalised(const std::string& text, Cell cell)
{
    switch (cell) {
    case Cell::Number: return key(text);
    case Cell::NameSet: return nameSet(text);
    default: return rtrim(text);
    }
}

/// The rows of a result table in the given columns, normalised for the comparison.
inline Rows actualRows(Database& result, const std::string& table, const std::vector<Column>& columns)
{
    std::string sql = "SELECT ";
    for (std::size_t i = 0; i < columns.size(); ++i)
        sql += (i ? ", " : "") + std::string(columns[i].name);
    const Recordset rs = result.query(sql + " FROM " + table);
    Rows rows;
    for (const auto& r : rs.rows()) {
        Row row;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (columns[i].cell == Cell::Percent) {
                const Value& v = r[i];
                const double d = std::holds_alternative<double>(v)           ? std::get<double>(v)
                                 : std::holds_alternative<std::int64_t>(v) ? double(std::get<std::int64_t>(v))
                                                                             : std::stod("0" + toText(v));
                row.push_back(percent(d));
            } else {
                row.push_back(normalised(toText(r[i]), columns[i].cell));
            }
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

/// Compares a result table with the expected rows as multisets; every missing and every extra row is told.
inline void expectTable(Database& result, const std::string& table, const std::vector<Column>& columns, Rows expected)
{
    SCOPED_TRACE(table);
    for (Row& row : expected)
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (columns[i].cell != Cell::Percent)
                row[i] = normalised(row[i], columns[i].cell);
    Rows actual = actualRows(result, table, columns);
    std::sort(expected.begin(), expected.end());
    std::sort(actual.begin(), actual.end());
    Rows missing, extra;
    std::set_difference(expected.begin(), expected.end(), actual.begin(), actual.end(), std::back_inserter(missing));
    std::set_difference(actual.begin(), actual.end(), expected.begin(), expected.end(), std::back_inserter(extra));
    std::string header;
    for (const Column& c : columns)
        header += (header.empty() ? "[" : " | ") + std::string(c.name);
    std::string told;
    for (const Row& r : missing)
        told += "  expected, not there: " + show(r) + "\n";
    for (const Row& r : extra)
        told += "  there, not expected:  " + show(r) + "\n";
    EXPECT_TRUE(missing.empty() && extra.empty())
        << table << " " << header << "]: " << expected.size() << " rows expected, " << actual.size() << " there\n"
        << told;
}

// ------------------------------------------------------------------ what the orders hold

struct OrderRoom {
    std::int64_t id = 0;
    std::int64_t idRB = 0;
    std::string nr, status;
};

struct Scan {
    std::string order, invNr, room, artNr, datum, uhrzeit, zeit, file;
};

struct DiffRow {
    std::string order, room;
    std::int64_t roomId = 0;
    std::string soll, ist, typ, beschreibung, artNr, ziel, quelle, quarn, datum, uhrzeit, zeit;
};

struct Order {
    std::int64_t id = 0;
    std::string name, pfad, file;
    std::string stand;
    std::vector<OrderRoom> rooms;
    std::int64_t files = 0;
    std::vector<Scan> scans;
    std::vector<DiffRow> diffs;       ///< as a fresh evaluation makes it
    std::vector<DiffRow> storedDiffs; ///< as the order holds it
};

struct QuarnObject {
    std::string name, ort;
};

struct QuarnRoom {
    std::int64_t id = 0;
    std::string nr, name;
    std::int64_t expected = 0;
};

/// The rows of a query (the result's own copy).
inline std::vector<std::vector<Value>> rowsOf(Database& db, const std::string& sql, const std::vector<Value>& params = {})
{
    return db.query(sql, params).rows();
}

inline bool startsWith(const std::string& text, const char* prefix) { return text.rfind(prefix, 0) == 0; }

/// The lists across orders as the test computes them, one row per expected row of the
/// result's table (the columns as the road test of the overview compares them).
struct CrossOrderModel {
    Rows verschoben; ///< stInvNr, stBeschreibung, stArtNr, stAuftragSoll, stRaumSoll, stAuftragIst, stRaumIst, Datum, Uhrzeit, stZeit
    Rows doppelt;    ///< stInvNr, stAuftrag, stRaum, Datum, Uhrzeit, stZeit, stDatei, iAuftraege, iRang
    Rows zuviel;     ///< stAuftrag, stRaum, stInvNr, stArtNr, stQuarn, Datum, Uhrzeit, stZeit
    Rows unbekannt;  ///< stInvNr, stArtNr, stAuftraege, stRaum, iScans, Datum, stZeit
    Rows fehlend;    ///< stInvNr, stBeschreibung, stArtNr
    std::map<std::string, std::set<std::pair<std::string, std::string>>> fehlendWhere; ///< orders and rooms by number
    Rows ungeprueft;      ///< lIdRB, stRaumNr, stBezeichnung, iErwartet, stPruefung
    Rows ueberschneidung; ///< lIdRB, stRaumNr, stBezeichnung, stAuftraege, iAuftraege
};

/// A scanner file of one run: one employee, one day, the clock running on by 37 seconds a line.
class ScanRun {
public:
    ScanRun(std::string date, int startMinutes) : date_(std::move(date)), seconds_(startMinutes * 60) {}
    void line(const std::string& room, const std::string& invNr, const std::string& artNr)
    {
        seconds_ += 37;
        char time[16];
        std::snprintf(time, sizeof time, "%02d:%02d:%02d", seconds_ / 3600, (seconds_ / 60) % 60, seconds_ % 60);
        lines_.push_back("MA07,2025-01," + date_ + "," + time + "," + room + "," + invNr + "," + artNr + ",Zählung");
    }
    void write(const std::string& path) const
    {
        TextFileWriter w(path);
        for (const std::string& l : lines_)
            w.writeLine(l);
        w.close();
    }

private:
    std::string date_;
    int seconds_;
    std::vector<std::string> lines_;
};

/// The parameter is the module: 0 INVENTAR, 1 TECHNIK.
class StocktakeProjectFixture : public CliFixture, public ::testing::WithParamInterface<int> {
protected:
    int module() const { return GetParam(); }

    void SetUp() override
    {
        CliFixture::SetUp();
        // The evaluation reads the remarks of Quarn's INVENTAR objects whatever the module, through
        // the report database, which a fresh program folder links to them only once an INVENTAR
        // project was evaluated: one is, first.
        if (module() != 0) {
            const std::string inventar = root.file("Inventar");
            demo::writeDemoProject(demo::smallSizes(), inventar, "");
            expectCli(0, {"--projekt", inventar, "anlegen", "Vorlauf"});
            expectCli(0, {"--projekt", inventar, "raeume", "Vorlauf", "--setzen", "1001:L"});
            expectCli(0, {"--projekt", inventar, "auswerten", "Vorlauf"});
        }
        demo::writeProjectIni(demoDir, inst.modules[module()].name);
        scans = root.file("Scans");
        fs::create_directories(scans);
    }

    const demo::Room& room(const std::string& nr) const
    {
        for (const demo::Room& r : inst.rooms)
            if (r.nr == nr)
                return r;
        throw std::runtime_error("no room " + nr);
    }
    /// The k-th object (from 1) that Quarn expects in the room.
    const demo::Object& object(const std::string& nr, int k) const
    {
        return *inst.objectsOfRoom(module(), room(nr).id).at(std::size_t(k - 1));
    }
    std::vector<const demo::Object*> objects(const std::string& nr) const
    {
        return inst.objectsOfRoom(module(), room(nr).id);
    }
    std::string article(const demo::Object& o) const
    {
        const demo::Article* a = inst.modules[module()].articleOf(o);
        return a ? a->artNr : "";
    }
    /// A variant object of the module (never expected in a room).
    const demo::Object& variant() const
    {
        for (const demo::Object& o : inst.modules[module()].objects)
            if (o.variante != 0)
                return o;
        throw std::runtime_error("no variant");
    }
    void scan(ScanRun& run, const std::string& room, const demo::Object& o) { run.line(room, o.name, article(o)); }
    void scanAll(ScanRun& run, const std::string& nr)
    {
        for (const demo::Object* o : objects(nr))
            scan(run, nr, *o);
    }
    std::string lower(std::string s) const
    {
        for (char& c : s)
            c = char(std::tolower(static_cast<unsigned char>(c)));
        return s;
    }
    std::string add(const std::string& order, const ScanRun& run, const std::string& name)
    {
        const std::string path = scans + "/" + name;
        run.write(path);
        expectCli(0, {"hinzufuegen", order, path});
        return path;
    }

    /// The project of the test (see the cases in each step).
    void buildProject()
    {
        // A: evaluated after its last file (its list is current). 1003 is marked "L"; 1004 is
        // also B's. The file of 1004 is taken away afterwards (a scanner file no longer there).
        expectCli(0, {"anlegen", "A", "--mitarbeiter", "Meier"});
        expectCli(0, {"raeume", "A", "--setzen", "1001", "1002", "1003:L", "1004"});
        ScanRun a1("14.03.2025", 8 * 60);
        scan(a1, "1001", object("1001", 1)); // also scanned by C (in lower case) and D: a number in three orders
        scan(a1, "1001", object("1001", 2));
        // object("1001", 3) is missed here and scanned in C: moved between orders
        a1.line("1001", "X-4711", "TA999"); // unknown, also scanned by C in lower case
        a1.line("1001", "X-4713", "TA998"); // unknown, in A alone
        scan(a1, "01002", object("1002", 1));
        scan(a1, "01002", object("1002", 3));
        // object("1002", 2) is missed here and scanned in B: moved between orders
        scan(a1, "1002", object("1006", 1)); // surplus from a room of no order: stays surplus
        add("A", a1, "A_Teil1.dat");
        ScanRun a2("15.03.2025", 9 * 60);
        scanAll(a2, "1004"); // B scans two of them too: numbers in two orders
        aMissingFile = add("A", a2, "A_Teil2.dat");
        expectCli(0, {"auswerten", "A"});
        fs::remove(aMissingFile);

        // B: evaluated, then another file added (stale). 2001 stays "N" (D has it too).
        expectCli(0, {"anlegen", "B", "--mitarbeiter", "Schulz"});
        expectCli(0, {"raeume", "B", "--setzen", "1004", "1005", "2001", "2002"});
        ScanRun b1("16.03.2025", 7 * 60);
        scan(b1, "1004", object("1004", 1));
        scan(b1, "1004", object("1004", 2));
        // object("1004", 3): missing in B, found in its place by A (no move, not missing)
        scanAll(b1, "1005");
        scan(b1, "1005", object("1002", 2)); // moved from A's 1002
        scan(b1, "1005", object("2001", 1)); // D expects it in 2001 and misses it: moved from D
        b1.line("1005", "X-4712", "TA997");  // unknown, also in C and D
        add("B", b1, "B_Teil1.dat");
        expectCli(0, {"auswerten", "B"});
        ScanRun b2("17.03.2025", 10 * 60);
        scan(b2, "2002", object("2002", 1));
        scan(b2, "2002", object("2002", 2));
        // object("2002", 3): missing in B and in C (2002 is "L" there): missing twice
        scan(b2, "2002", variant()); // known to Quarn, expected nowhere: stays surplus
        b2.line("2002", "X-4714", article(object("2002", 1))); // unknown, in B alone, with an article of Quarn
        add("B", b2, "B_Teil2.dat");

        // C: never evaluated; its scanner file is taken away afterwards.
        expectCli(0, {"anlegen", "C", "--mitarbeiter", "Meier"});
        expectCli(0, {"raeume", "C", "--setzen", "2002:L", "2003", "2004"});
        ScanRun c1("18.03.2025", 8 * 60);
        scan(c1, "2003", object("2003", 2));
        scan(c1, "2003", object("2003", 3));
        // object("2003", 1) is missed here and scanned in D in lower case: moved between orders
        c1.line("2003", "x-4711", "TA996");                              // A's unknown "X-4711" in lower case
        c1.line("2003", lower(object("1001", 1).name), "TA001");         // A's object in lower case
        c1.line("2004", object("2004", 1).name + "   ", article(object("2004", 1))); // trailing blanks
        for (std::size_t k = 1; k < objects("2004").size(); ++k)
            scan(c1, "2004", *objects("2004")[k]);
        scan(c1, "2004", object("1001", 3)); // moved from A's 1001
        scan(c1, "2004", object("2006", 2)); // surplus from a room of no order: stays surplus
        c1.line("2004", "X-4712", "TA997");
        cMissingFile = add("C", c1, "C_Teil1.dat");
        fs::remove(cMissingFile);

        // D: created over a file of that name (kept), evaluated, then another file added (stale).
        copyFile(orderFile("A"), orderFile("D"));
        expectCli(0, {"anlegen", "D", "--mitarbeiter", "Schulz"});
        expectCli(0, {"raeume", "D", "--setzen", "2005", "2001"});
        ScanRun d1("19.03.2025", 8 * 60);
        scanAll(d1, "2005");
        scan(d1, "2005", object("1001", 1)); // the third order of this number
        add("D", d1, "D_Teil1.dat");
        expectCli(0, {"auswerten", "D"});
        ScanRun d2("20.03.2025", 8 * 60);
        scan(d2, "2001", object("2001", 2));
        scan(d2, "2001", object("2001", 3));
        d2.line("2001", lower(object("2003", 1).name), "TA001"); // C's object, in lower case
        d2.line("2001", "X-4712", "TA997");
        add("D", d2, "D_Teil2.dat");

        // E: never evaluated, without scans: A's 1003 not marked, A's 1002 marked "L" (so that
        // A's object missed in 1002 and scanned by B is missing in two orders).
        expectCli(0, {"anlegen", "E", "--mitarbeiter", "Meier"});
        expectCli(0, {"raeume", "E", "--setzen", "1003", "1002:L"});

        // An order deleted: its database is kept; its scans count nowhere.
        expectCli(0, {"anlegen", "Weg", "--mitarbeiter", "Meier"});
        expectCli(0, {"raeume", "Weg", "--setzen", "2006"});
        ScanRun w1("21.03.2025", 8 * 60);
        scanAll(w1, "2006");
        add("Weg", w1, "Weg_Teil1.dat");
        expectCli(0, {"loeschen", "Weg"});

        // Order databases that no register row names.
        copyFile(orderFile("A"), demoDir + "/Inventur/Fremd.mdb");
        copyFile(demoDir + "/QAuftrag.mdb", demoDir + "/Inventur/Rest.mdb");

        stand = {{"A", kStandAktuell}, {"B", kStandNeu}, {"C", kStandNie}, {"D", kStandNeu}, {"E", kStandNie}};
    }

    /// Evaluates every order on a copy of the project as `auswerten` does; what it printed, per order.
    std::map<std::string, std::string> evaluateCopy()
    {
        copyDir = root.file("Kopie");
        fs::copy(demoDir, copyDir, fs::copy_options::recursive);
        std::map<std::string, std::string> printed;
        for (const auto& [name, s] : stand)
            printed[name] = expectCli(0, {"--projekt", copyDir, "auswerten", name}).out;
        return printed;
    }

    /// The difference list of an order database file.
    std::vector<DiffRow> differenceList(const std::string& order, const std::string& file) const
    {
        auto db = read(file);
        std::map<std::int64_t, std::string> roomNr;
        for (const auto& rr : rowsOf(*db, "SELECT lID, stRaumNr FROM T_Raum"))
            roomNr[toLong(rr[0])] = toText(rr[1]);
        std::vector<DiffRow> rows;
        for (const auto& d : rowsOf(*db, "SELECT lRaumID, stSollInvNR, stIstInvNR, stTyp, stBeschreibung, stArtNr, "
                                         "stZiel, stQuelle, stQuarn, Datum, Uhrzeit FROM T_Differenzliste")) {
            DiffRow row;
            row.order = order;
            row.roomId = toLong(d[0]);
            row.room = roomNr[row.roomId];
            row.soll = toText(d[1]);
            row.ist = toText(d[2]);
            row.typ = toText(d[3]);
            row.beschreibung = toText(d[4]);
            row.artNr = toText(d[5]);
            row.ziel = toText(d[6]);
            row.quelle = toText(d[7]);
            row.quarn = toText(d[8]);
            row.datum = toText(d[9]);
            row.uhrzeit = toText(d[10]);
            row.zeit = stamp(row.datum, row.uhrzeit);
            rows.push_back(std::move(row));
        }
        return rows;
    }

    void readModel()
    {
        auto reg = read(demoDir + "/QInventur.mdb");
        for (const auto& r : rowsOf(*reg, "SELECT lID, stBezeichung, stPfad FROM T_Auftrag ORDER BY lID")) {
            Order o;
            o.id = toLong(r[0]);
            o.name = toText(r[1]);
            o.pfad = toText(r[2]);
            std::string rel = o.pfad;
            std::replace(rel.begin(), rel.end(), '\\', '/');
            while (!rel.empty() && rel.front() == '/')
                rel.erase(rel.begin());
            o.file = demoDir + "/" + rel;
            o.stand = stand.at(o.name);
            auto db = read(o.file);
            std::map<std::int64_t, std::string> fileNames;
            for (const auto& f : rowsOf(*db, "SELECT lID, stName FROM T_Dateien"))
                fileNames[toLong(f[0])] = toText(f[1]);
            o.files = std::int64_t(fileNames.size());
            for (const auto& rr : rowsOf(*db, "SELECT lID, lIdRB, stRaumNr, ststatus FROM T_Raum"))
                o.rooms.push_back({toLong(rr[0]), toLong(rr[1]), toText(rr[2]), toText(rr[3])});
            for (const auto& s : rowsOf(*db, "SELECT stInvNr, stRaum, stArtNr, Datum, Uhrzeit, lDatID FROM T_DatInventur"))
                o.scans.push_back({o.name, toText(s[0]), toText(s[1]), toText(s[2]), toText(s[3]), toText(s[4]),
                                   stamp(toText(s[3]), toText(s[4])), fileNames[toLong(s[5])]});
            // The difference list as a fresh evaluation makes it (the copy's), and as the order holds it.
            o.diffs = differenceList(o.name, copyDir + "/" + rel);
            o.storedDiffs = differenceList(o.name, o.file);
            orders.push_back(std::move(o));
        }

        auto geb = read(demoDir + "/QGebaeude.mdb");
        const demo::Module& m = inst.modules[module()];
        auto obj = read(demoDir + "/" + m.file);
        std::map<std::int64_t, std::int64_t> expectedIn;
        for (const auto& r : rowsOf(*obj, "SELECT stName, stOrt, lGebstruId, byGebstruTyp, iVariante FROM " + m.prefix + "Objekt")) {
            quarnObjects[key(toText(r[0]))] = {toText(r[0]), toText(r[1])};
            if (toLong(r[3]) == 4 && toLong(r[4]) == 0)
                ++expectedIn[toLong(r[2])];
        }
        for (const auto& r : rowsOf(*geb, "SELECT lId, stRaumNr, stBezeichnung FROM T_Raumkern ORDER BY lId"))
            quarnRooms.push_back({toLong(r[0]), toText(r[1]), toText(r[2]), expectedIn[toLong(r[0])]});
    }

    /// The lists across orders as computed from the model (readModel first).
    CrossOrderModel crossOrderModel() const
    {
        CrossOrderModel m;
        auto& [verschoben, doppelt, zuviel, unbekannt, fehlend, fehlendWhere, ungeprueft, ueberschneidung] = m;
        std::vector<const Scan*> allScans;
        for (const Order& o : orders)
            for (const Scan& s : o.scans)
                allScans.push_back(&s);
        const auto scannedAnywhere = [&](const std::string& number) {
            return std::any_of(allScans.begin(), allScans.end(), [&](const Scan* s) { return key(s->invNr) == key(number); });
        };

        for (const Order& a : orders)
            for (const DiffRow& d : a.diffs) {
                if (startsWith(d.typ, "3b") && !d.soll.empty()) {
                    for (const Order& b : orders)
                        if (b.name != a.name)
                            for (const Scan& s : b.scans)
                                if (key(s.invNr) == key(d.soll) && key(s.room) != key(d.room))
                                    verschoben.push_back({d.soll, d.beschreibung, d.artNr, a.name, d.room, b.name, s.room,
                                                          s.datum, s.uhrzeit, s.zeit});
                    if (!scannedAnywhere(d.soll)) {
                        fehlendWhere[key(d.soll)].insert({a.name, d.room});
                        if (fehlendWhere[key(d.soll)].size() == 1)
                            fehlend.push_back({d.soll, d.beschreibung, d.artNr});
                    }
                }
                if (startsWith(d.typ, "2b")) {
                    bool expectedElsewhere = false;
                    for (const Order& other : orders)
                        if (other.name != a.name)
                            for (const DiffRow& x : other.diffs)
                                expectedElsewhere = expectedElsewhere || (!x.soll.empty() && key(x.soll) == key(d.ist));
                    if (!expectedElsewhere) {
                        const auto q = quarnObjects.find(key(d.ist));
                        zuviel.push_back({a.name, d.room, d.ist, d.artNr, q == quarnObjects.end() ? "" : q->second.ort,
                                          d.datum, d.uhrzeit, d.zeit});
                    }
                }
            }

        // Scans by number: those of numbers in several orders, and the unknown numbers.
        std::map<std::string, std::vector<const Scan*>> byNumber;
        for (const Scan* s : allScans)
            byNumber[key(s->invNr)].push_back(s);
        for (auto& [number, list] : byNumber) {
            std::set<std::string> inOrders;
            for (const Scan* s : list)
                inOrders.insert(s->order);
            if (inOrders.size() < 2)
                continue;
            std::sort(list.begin(), list.end(), [](const Scan* x, const Scan* y) { return x->zeit > y->zeit; });
            for (std::size_t i = 0; i < list.size(); ++i)
                doppelt.push_back({list[i]->invNr, list[i]->order, list[i]->room, list[i]->datum, list[i]->uhrzeit,
                                   list[i]->zeit, list[i]->file, std::to_string(inOrders.size()), std::to_string(i + 1)});
        }
        std::set<std::string> unknownNumbers;
        for (const Order& o : orders)
            for (const DiffRow& d : o.diffs)
                if (startsWith(d.typ, "2c"))
                    unknownNumbers.insert(key(d.ist));
        for (const std::string& number : unknownNumbers) {
            std::vector<const Scan*> list = byNumber[number];
            if (list.empty()) {
                ADD_FAILURE() << "no scan of the unknown number " << number;
                continue;
            }
            std::sort(list.begin(), list.end(), [](const Scan* x, const Scan* y) { return x->zeit < y->zeit; });
            std::set<std::string> inOrders;
            for (const Scan* s : list)
                inOrders.insert(s->order);
            const Scan& first = *list.front();
            unbekannt.push_back({first.invNr, first.artNr, joinNames(inOrders), first.room, std::to_string(list.size()),
                                 first.datum, first.zeit});
        }

        // Coverage: rooms by Quarn's id in the orders.
        std::map<std::int64_t, std::set<std::string>> ordersOfRoom;
        for (const Order& o : orders)
            for (const OrderRoom& r : o.rooms)
                ordersOfRoom[r.idRB].insert(o.name);
        for (const QuarnRoom& q : quarnRooms) {
            const auto it = ordersOfRoom.find(q.id);
            if (it == ordersOfRoom.end())
                ungeprueft.push_back({std::to_string(q.id), q.nr, q.name, std::to_string(q.expected), kNichtGeprueft});
            else if (it->second.size() > 1)
                ueberschneidung.push_back({std::to_string(q.id), q.nr, q.name, joinNames(it->second),
                                           std::to_string(it->second.size())});
        }
        return m;
    }

    const QuarnRoom& quarnRoom(std::int64_t id) const
    {
        for (const QuarnRoom& r : quarnRooms)
            if (r.id == id)
                return r;
        throw std::runtime_error("no Quarn room " + std::to_string(id));
    }

    Settings projectSettings() const
    {
        Settings s;
        s.gstProjektPfad = demoDir + "/";
        s.gstProjekttyp = "ptJet";
        s.gstAppPfad = programDir;
        s.giModul = std::int16_t(module());
        return s;
    }

    std::string scans;
    std::string copyDir;
    std::string aMissingFile, cMissingFile;
    std::map<std::string, std::string> stand;
    std::vector<Order> orders;
    std::map<std::string, QuarnObject> quarnObjects; ///< by key(number)
    std::vector<QuarnRoom> quarnRooms;
};

} // namespace qi::test::road
