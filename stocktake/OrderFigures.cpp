#include "OrderFigures.h"

#include "Categories.h"
#include "Database.h"
#include "FileSystem.h"
#include "JetCollation.h"
#include "NumberSightings.h"
#include "QuarnRooms.h"
#include "ScanTime.h"

#include <map>
#include <stdexcept>

#include <sqlite3.h>

namespace qi {

namespace {

constexpr const char* kRooms = "SELECT lID, lIdRB, coalesce(stRaumNr, ''), coalesce(ststatus, '') FROM T_Raum "
                               "ORDER BY lID";
// The attached order (AttachedOrder) and its rows, copied as they are with the time of each.
constexpr const char* kSchema = "auftrag";
constexpr const char* kScanTimeFunction = "qi_scan_time";
constexpr const char* kCopyScans =
    "INSERT INTO P_Scan (stAuftrag, stInvNr, stRaum, stArtNr, Datum, Uhrzeit, stZeit, stDatei) "
    "SELECT ?1, coalesce(s.stInvNr, ''), coalesce(s.stRaum, ''), coalesce(s.stArtNr, ''), coalesce(s.Datum, ''), "
    "coalesce(s.Uhrzeit, ''), qi_scan_time(coalesce(s.Datum, ''), coalesce(s.Uhrzeit, '')), coalesce(f.stName, '') "
    "FROM auftrag.T_DatInventur AS s LEFT JOIN auftrag.T_Dateien AS f ON f.lID = s.lDatID ORDER BY s.lID";
constexpr const char* kCopyList =
    "INSERT INTO P_Diff (stAuftrag, stRaumNr, stSollInvNR, stIstInvNR, stTyp, stBeschreibung, stArtNr, stZiel, "
    "stQuelle, stQuarn, Datum, Uhrzeit, stZeit) "
    "SELECT ?1, coalesce(r.stRaumNr, ''), coalesce(d.stSollInvNR, ''), coalesce(d.stIstInvNR, ''), "
    "coalesce(d.stTyp, ''), coalesce(d.stBeschreibung, ''), coalesce(d.stArtNr, ''), coalesce(d.stZiel, ''), "
    "coalesce(d.stQuelle, ''), coalesce(d.stQuarn, ''), coalesce(d.Datum, ''), coalesce(d.Uhrzeit, ''), "
    "qi_scan_time(coalesce(d.Datum, ''), coalesce(d.Uhrzeit, '')) "
    "FROM auftrag.T_Differenzliste AS d LEFT JOIN auftrag.T_Raum AS r ON r.lID = d.lRaumID ORDER BY d.lID";
// The scans just copied, with their room number and time (the numbers that compare equal are
// joined below) and number, and the rows of the list in the order they were copied, with their
// room, type and numbers.
constexpr const char* kLastScan = "SELECT coalesce(max(rowid), 0) FROM P_Scan";
constexpr const char* kCopiedScans = "SELECT stRaum, stZeit, rowid, stInvNr FROM P_Scan WHERE rowid > ?1";
constexpr const char* kLastListRow = "SELECT coalesce(max(rowid), 0) FROM P_Diff";
constexpr const char* kListRows = "SELECT lRaumID, coalesce(stTyp, ''), coalesce(stSollInvNR, ''), "
                                  "coalesce(stIstInvNR, '') FROM auftrag.T_Differenzliste ORDER BY lID";
constexpr const char* kFiles = "SELECT COUNT(*) FROM T_Dateien";
constexpr const char* kFilePaths = "SELECT coalesce(stPfad, '') FROM T_Dateien ORDER BY lID";
constexpr const char* kRoomsN = "SELECT COUNT(*) FROM T_Raum WHERE ststatus = 'N'";

constexpr const char* kInsertRoom =
    "INSERT INTO P_Raum (stAuftrag, lRaumID, lIdRB, stRaumNr, stBezeichnung, stStatus, iErwartet, iAmPlatz, "
    "iGescannt, dProzent, stLetzterScan, stGebaeudeteil) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12)";
constexpr const char* kInsertOrder =
    "INSERT INTO P_Auftrag (lAuftragID, stAuftrag, stPfad, stDatei, stStand, iRaeume, iRaeumeN, iRaeumeE, "
    "iRaeumeL, iDateien, iScans, iSoll, iErwartet, iAmPlatz, i1, i2a, i2b, i2c, i3a, i3b, dProzent, "
    "dRaeumeFertig, stLetzterScan, stFehler) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, "
    "?14, ?15, ?16, ?17, ?18, ?19, ?20, ?21, ?22, ?23, ?24)";

/// The difference list's categories, in the order of P_Auftrag's columns i1 ... i3b.
constexpr const char* kCategories[] = {category::k1,  category::k2a, category::k2b,
                                       category::k2c, category::k3a, category::k3b};

struct JetLess {
    bool operator()(const std::string& a, const std::string& b) const { return jetCompare(a, b) < 0; }
};

/// Scans of one room number.
struct RoomScans {
    std::int64_t count = 0;
    std::string last;
};

/// The figures of P_Auftrag.
struct Figures {
    std::int64_t raeume = 0, raeumeN = 0, raeumeE = 0, raeumeL = 0, dateien = 0, scans = 0, soll = 0,
                 erwartet = 0, amPlatz = 0;
    std::int64_t category[6] = {};
    std::string letzterScan;
};

double percent(std::int64_t part, std::int64_t whole) { return whole > 0 ? 100.0 * double(part) / double(whole) : 0.0; }

std::string text(const Value& v) { return toText(v); }

void insert(Database& result, const char* sql, const std::vector<Value>& values)
{
    Statement& st = result.prepare(sql);
    st.bindAll(values);
    st.step();
    st.reset();
}

void insertOrder(Database& result, const OrderHeader& h, const Figures& f)
{
    insert(result, kInsertOrder,
           {h.lAuftragID, h.stAuftrag, h.stPfad, h.stDatei, h.stStand, f.raeume, f.raeumeN, f.raeumeE, f.raeumeL,
            f.dateien, f.scans, f.soll, f.erwartet, f.amPlatz, f.category[0], f.category[1], f.category[2],
            f.category[3], f.category[4], f.category[5], percent(f.amPlatz, f.erwartet),
            percent(f.raeumeE + f.raeumeL, f.raeume), f.letzterScan, h.stFehler});
}

/// The index of the category of a type text; -1 for none.
int categoryOf(const std::string& typ)
{
    for (std::size_t i = 0; i < std::size(kCategories); ++i)
        if (jetEqual(typ, kCategories[i]))
            return int(i);
    return -1;
}

/// The time of a scan (scanTime) in the statements of the result database.
void scanTimeOfSql(sqlite3_context* context, int, sqlite3_value** args)
{
    const auto text = [](sqlite3_value* v) {
        const unsigned char* t = sqlite3_value_text(v);
        return t ? std::string_view(reinterpret_cast<const char*>(t), std::size_t(sqlite3_value_bytes(v)))
                 : std::string_view();
    };
    // Called once per row copied: the text is made in a buffer of the thread.
    thread_local std::string zeit;
    scanTime(text(args[0]), text(args[1]), zeit);
    sqlite3_result_text(context, zeit.data(), int(zeit.size()), SQLITE_TRANSIENT);
}

} // namespace

AttachedOrder::AttachedOrder(Database& result, Database& order) : result_(result), order_(order)
{
    const int rc = sqlite3_create_function_v2(result.handle(), kScanTimeFunction, 2,
                                              SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, &scanTimeOfSql, nullptr,
                                              nullptr, nullptr);
    if (rc != SQLITE_OK)
        throw result.errorFor(rc);
    result.attachReadOnly(order.path(), kSchema);
}

AttachedOrder::~AttachedOrder()
{
    try {
        result_.detach(kSchema);
    } catch (const DbError&) {
        // A schema left attached is detached with the result database.
    }
}

void writeOrderFigures(Database& result, const AttachedOrder& attached, const OrderHeader& h, const QuarnRooms& quarn,
                       NumberSightings& sightings)
{
    Database& order = attached.order();
    Figures f;

    // Scan lines, with their time, and per room number their count and the latest.
    const std::int64_t firstScan = toLong(result.scalar(kLastScan));
    result.execute(kCopyScans, {h.stAuftrag});
    std::map<std::string, RoomScans, JetLess> perRoom;
    {
        Statement& scans = result.prepare(kCopiedScans);
        scans.bindAll({firstScan});
        RoomScans* room = nullptr;
        std::string roomNr;
        while (scans.step()) {
            // The scans of a room mostly follow each other.
            if (!room || scans.columnText(0) != roomNr) {
                roomNr = std::string(scans.columnText(0));
                room = &perRoom[roomNr];
            }
            const std::string_view zeit = scans.columnText(1);
            ++room->count;
            if (room->last < zeit)
                room->last = std::string(zeit);
            ++f.scans;
            sightings.noteScan(scans.columnInt(2), scans.columnText(3), h.stAuftrag);
        }
        scans.reset();
        for (const auto& [nr, scanned] : perRoom)
            if (f.letzterScan < scanned.last)
                f.letzterScan = scanned.last;
    }

    // The difference list, with the "1 OK" rows per room. Its rows were copied in the order they
    // are read here, each with the next rowid.
    const std::int64_t firstListRow = toLong(result.scalar(kLastListRow)) + 1;
    const std::int64_t copied = result.execute(kCopyList, {h.stAuftrag});
    std::map<std::int64_t, std::int64_t> okPerRoom;
    {
        Statement& rows = result.prepare(kListRows);
        rows.bindAll({});
        std::string typ;
        int c = categoryOf(typ);
        std::int64_t rowid = firstListRow;
        while (rows.step()) {
            // The rows of a type mostly follow each other.
            if (rows.columnText(1) != typ) {
                typ = std::string(rows.columnText(1));
                c = categoryOf(typ);
            }
            f.soll += rows.columnText(2).empty() ? 0 : 1;
            sightings.noteListRow(rowid++, typ, rows.columnText(2), rows.columnText(3));
            if (c >= 0)
                ++f.category[c];
            if (c == 0) {
                ++f.amPlatz;
                ++okPerRoom[rows.columnInt(0)];
            }
        }
        rows.reset();
        if (rowid != firstListRow + copied)
            throw std::logic_error("Die Differenzliste wurde nicht Zeile für Zeile übernommen.");
    }

    // The rooms.
    const Recordset rooms = order.query(kRooms);
    for (const auto& r : rooms.rows()) {
        const std::int64_t lID = toLong(r[0]);
        const std::int32_t lIdRB = std::int32_t(toLong(r[1]));
        const std::string nr = text(r[2]), status = text(r[3]);
        const std::int64_t erwartet = std::int64_t(quarn.objectsOf(lIdRB).size());
        const std::int64_t amPlatz = okPerRoom.count(lID) ? okPerRoom[lID] : 0;
        const auto scanned = perRoom.find(nr);
        const RoomScans none;
        const RoomScans& s = scanned == perRoom.end() ? none : scanned->second;
        insert(result, kInsertRoom,
               {h.stAuftrag, lID, std::int64_t(lIdRB), nr, quarn.nameOf(lIdRB), status, erwartet, amPlatz, s.count,
                percent(amPlatz, erwartet), s.last, quarn.partOf(lIdRB)});
        ++f.raeume;
        if (jetEqual(status, "N"))
            ++f.raeumeN;
        else if (jetEqual(status, "E"))
            ++f.raeumeE;
        else if (jetEqual(status, "L"))
            ++f.raeumeL;
        f.erwartet += erwartet;
    }
    f.dateien = toLong(order.scalar(kFiles));
    insertOrder(result, h, f);
}

void writeOrderWithoutFigures(Database& result, const OrderHeader& header) { insertOrder(result, header, Figures{}); }

std::int64_t roomsWithoutScans(Database& order) { return toLong(order.scalar(kRoomsN)); }

std::vector<std::string> missingScannerFiles(Database& order)
{
    std::vector<std::string> missing;
    const Recordset files = order.query(kFilePaths);
    for (const auto& row : files.rows())
        if (!fileExists(text(row[0])))
            missing.push_back(text(row[0]));
    return missing;
}

} // namespace qi
