#include "OverviewTables.h"

#include "Database.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

namespace qi {

namespace {

/// How a column's value is shown.
enum class Kind { Text, Number, Percent, Stamp };

struct Column {
    Column(const char* e, const char* h, Kind k = Kind::Text) : expr(e), heading(h), kind(k) {}
    const char* expr;    ///< column of the table, or an expression over its columns
    const char* heading; ///< the list's heading
    Kind kind;
};

constexpr std::array<OverviewList, 8> kLists{{
    {"L_Verschoben", "Verschoben"},
    {"L_Doppelt", "Doppelt erfasst"},
    {"L_Zuviel", "Zuviel"},
    {"L_Unbekannt", "Nicht in Quarn"},
    {"L_Fehlend", "Fehlend"},
    {"L_Ungeprueft", "Nicht geprüft"},
    {"L_Ueberschneidung", "Überschneidungen"},
    {"L_Hinweis", "Hinweise"},
}};

/// Columns and order of each list, by its table.
struct ListColumns {
    const char* table;
    std::vector<Column> columns;
    const char* orderBy;
};

const std::array<ListColumns, 8>& listColumns()
{
    static const std::array<ListColumns, 8> lists{{
        {"L_Verschoben",
         {{"stInvNr", "Inv.-Nr."},
          {"stBeschreibung", "Beschreibung"},
          {"stArtNr", "Artikel"},
          {"stAuftragSoll", "Auftrag (Soll)"},
          {"stRaumSoll", "Raum (Soll)"},
          {"stAuftragIst", "Auftrag (Ist)"},
          {"stRaumIst", "Raum (Ist)"},
          {"Datum", "Datum"},
          {"Uhrzeit", "Uhrzeit"}},
         "stInvNr, stAuftragSoll, stAuftragIst"},
        {"L_Doppelt",
         {{"stInvNr", "Inv.-Nr."},
          {"stAuftrag", "Auftrag"},
          {"stRaum", "Raum"},
          {"Datum", "Datum"},
          {"Uhrzeit", "Uhrzeit"},
          {"stDatei", "Datei"},
          {"iAuftraege", "Aufträge", Kind::Number},
          {"iRang", "Rang", Kind::Number}},
         "stInvNr, iRang"},
        {"L_Zuviel",
         {{"stAuftrag", "Auftrag"},
          {"stRaum", "Raum"},
          {"stInvNr", "Inv.-Nr."},
          {"stArtNr", "Artikel"},
          {"stQuarn", "Raum in Quarn"},
          {"Datum", "Datum"},
          {"Uhrzeit", "Uhrzeit"}},
         "stAuftrag, stRaum, stInvNr"},
        {"L_Unbekannt",
         {{"stInvNr", "Inv.-Nr."},
          {"stArtNr", "Artikel"},
          {"stAuftraege", "Aufträge"},
          {"stRaum", "Raum"},
          {"iScans", "Scans", Kind::Number},
          {"Datum", "Datum"}},
         "stInvNr"},
        {"L_Fehlend",
         {{"stInvNr", "Inv.-Nr."},
          {"stBeschreibung", "Beschreibung"},
          {"stArtNr", "Artikel"},
          {"stAuftrag", "Auftrag"},
          {"stRaum", "Raum"}},
         "stAuftrag, stRaum, stInvNr"},
        {"L_Ungeprueft",
         {{"stRaumNr", "Raum"},
          {"stBezeichnung", "Bezeichnung"},
          {"iErwartet", "Objekte in Quarn", Kind::Number},
          {"stPruefung", "Prüfung"}},
         "stRaumNr"},
        {"L_Ueberschneidung",
         {{"stRaumNr", "Raum"},
          {"stBezeichnung", "Bezeichnung"},
          {"stAuftraege", "Aufträge"},
          {"iAuftraege", "Anzahl Aufträge", Kind::Number}},
         "stRaumNr"},
        {"L_Hinweis",
         {{"stAuftrag", "Auftrag"}, {"stArt", "Art"}, {"stText", "Hinweis"}, {"stDatei", "Datei"}},
         "stAuftrag, stArt, stDatei"},
    }};
    return lists;
}

const std::vector<Column>& orderColumns()
{
    static const std::vector<Column> columns{
        {"stAuftrag", "Auftrag"},
        {"stStand", "Stand"},
        {"iRaeume", "Räume", Kind::Number},
        {"iRaeumeN", "N", Kind::Number},
        {"iRaeumeE", "E", Kind::Number},
        {"iRaeumeL", "L", Kind::Number},
        {"dRaeumeFertig", "Räume fertig %", Kind::Percent},
        {"iDateien", "Dateien", Kind::Number},
        {"iScans", "Scans", Kind::Number},
        {"iErwartet", "Erwartet", Kind::Number},
        {"iAmPlatz", "Gefunden", Kind::Number},
        {"dProzent", "Gefunden %", Kind::Percent},
        {"i1", "1", Kind::Number},
        {"i2a", "2a", Kind::Number},
        {"i2b", "2b", Kind::Number},
        {"i2c", "2c", Kind::Number},
        {"i3a", "3a", Kind::Number},
        {"i3b", "3b", Kind::Number},
        {"stLetzterScan", "Letzter Scan", Kind::Stamp},
        {"stFehler", "Fehler"},
    };
    return columns;
}

const std::vector<Column>& roomColumns()
{
    static const std::vector<Column> columns{
        {"stRaumNr", "Raum"},
        {"stBezeichnung", "Bezeichnung"},
        {"stStatus", "Status"},
        {"iErwartet", "Erwartet", Kind::Number},
        {"iAmPlatz", "Gefunden", Kind::Number},
        {"iGescannt", "Gescannt", Kind::Number},
        {"dProzent", "Gefunden %", Kind::Percent},
        {"stLetzterScan", "Letzter Scan", Kind::Stamp},
    };
    return columns;
}

const std::vector<Column>& objectColumns()
{
    static const std::vector<Column> columns{
        {"stTyp", "Typ"},
        {"stSollInvNR", "Soll-Inv.-Nr."},
        {"stIstInvNR", "Ist-Inv.-Nr."},
        {"stBeschreibung", "Beschreibung"},
        {"stArtNr", "Artikel"},
        {"stZiel", "Ziel"},
        {"stQuelle", "Quelle"},
        {"stQuarn", "Raum in Quarn"},
        {"Datum", "Datum"},
        {"Uhrzeit", "Uhrzeit"},
    };
    return columns;
}

std::string cellText(const Value& v, Kind kind)
{
    switch (kind) {
    case Kind::Percent: {
        if (isNull(v))
            return {};
        const double d = std::holds_alternative<double>(v) ? std::get<double>(v) : double(toLong(v));
        return percentText(d);
    }
    case Kind::Number: return isNull(v) ? std::string() : std::to_string(toLong(v));
    case Kind::Stamp: return stampText(toText(v));
    case Kind::Text: break;
    }
    return toText(v);
}

/// Reads `columns` (and, first, the key expression `key` when not empty) of `table`.
ShownTable readTable(Database& db, const std::string& table, const std::vector<Column>& columns,
                     const std::string& key, const std::string& where, const std::vector<Value>& params,
                     const std::string& orderBy)
{
    ShownTable out;
    std::string sql = "SELECT " + (key.empty() ? std::string("''") : key);
    for (const Column& c : columns) {
        out.headings.emplace_back(c.heading);
        sql += ", ";
        sql += c.expr;
    }
    sql += " FROM " + table;
    if (!where.empty())
        sql += " WHERE " + where;
    if (!orderBy.empty())
        sql += " ORDER BY " + orderBy;
    const Recordset rows = db.query(sql, params);
    out.rows.reserve(rows.size());
    out.keys.reserve(rows.size());
    for (const auto& row : rows.rows()) {
        out.keys.push_back(toText(row[0]));
        std::vector<std::string> cells;
        cells.reserve(columns.size());
        std::size_t i = 1;
        for (const Column& c : columns)
            cells.push_back(cellText(row[i++], c.kind));
        out.rows.push_back(std::move(cells));
    }
    return out;
}

std::vector<std::string> headingsOf(const std::vector<Column>& columns)
{
    std::vector<std::string> out;
    for (const Column& c : columns)
        out.emplace_back(c.heading);
    return out;
}

const ListColumns* listColumnsOf(const std::string& table)
{
    for (const ListColumns& list : listColumns())
        if (table == list.table)
            return &list;
    return nullptr;
}

std::string share(std::int64_t part, std::int64_t whole)
{
    return percentText(whole > 0 ? double(part) * 100.0 / double(whole) : 0.0);
}

} // namespace

std::span<const OverviewList> overviewLists() { return kLists; }

ShownTable orderTable(Database& result)
{
    return readTable(result, "P_Auftrag", orderColumns(), "lAuftragID", {}, {}, "lAuftragID, stAuftrag");
}

ShownTable roomTable(Database& result, const std::string& order)
{
    return readTable(result, "P_Raum", roomColumns(), "stRaumNr", "stAuftrag = ?1", {order}, "stRaumNr, lRaumID");
}

ShownTable objectTable(Database& result, const std::string& order, const std::string& room)
{
    return readTable(result, "P_Diff", objectColumns(), {}, "stAuftrag = ?1 AND stRaumNr = ?2", {order, room},
                     "stTyp, stSollInvNR, stIstInvNR");
}

ShownTable listTable(Database& result, const std::string& table)
{
    const ListColumns* list = listColumnsOf(table);
    return list ? readTable(result, list->table, list->columns, {}, {}, {}, list->orderBy) : ShownTable{};
}

std::vector<std::string> orderHeadings() { return headingsOf(orderColumns()); }
std::vector<std::string> roomHeadings() { return headingsOf(roomColumns()); }
std::vector<std::string> objectHeadings() { return headingsOf(objectColumns()); }

std::vector<std::string> listHeadings(const std::string& table)
{
    const ListColumns* list = listColumnsOf(table);
    return list ? headingsOf(list->columns) : std::vector<std::string>{};
}

std::vector<std::string> orderListHeadings()
{
    return {"Räume fertig", "Gescannt", "Gefunden %", "Letzter Scan", "Stand"};
}

std::map<std::int32_t, std::vector<std::string>> orderListFigures(Database& result)
{
    std::map<std::int32_t, std::vector<std::string>> out;
    const Recordset rows = result.query("SELECT lAuftragID, iRaeumeE + iRaeumeL, iRaeume, iScans, dProzent, "
                                        "stLetzterScan, stStand FROM P_Auftrag");
    for (const auto& row : rows.rows()) {
        out[std::int32_t(toLong(row[0]))] = {
            std::to_string(toLong(row[1])) + " von " + std::to_string(toLong(row[2])),
            std::to_string(toLong(row[3])),
            cellText(row[4], Kind::Percent),
            stampText(toText(row[5])),
            toText(row[6]),
        };
    }
    return out;
}

std::string projectTotalsText(Database& result)
{
    const Recordset r = result.query("SELECT count(*), total(iRaeume), total(iRaeumeE + iRaeumeL), total(iErwartet), "
                                     "total(iAmPlatz), total(iScans) FROM P_Auftrag");
    const auto& row = r.rows().at(0);
    const auto n = [&](std::size_t i) { return std::int64_t(std::llround(std::get<double>(row[i]))); };
    const std::int64_t orders = toLong(row[0]), rooms = n(1), done = n(2), expected = n(3), found = n(4),
                       scans = n(5);
    return std::to_string(orders) + (orders == 1 ? " Auftrag" : " Aufträge") + ", Räume fertig: " +
           std::to_string(done) + " von " + std::to_string(rooms) + " (" + share(done, rooms) +
           " %), Objekte gefunden: " + std::to_string(found) + " von " + std::to_string(expected) + " (" +
           share(found, expected) + " %), Scans: " + std::to_string(scans);
}

std::string percentText(double percent)
{
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.1f", percent);
    std::string text = buffer;
    for (char& c : text)
        if (c == '.')
            c = ',';
    return text;
}

std::string stampText(const std::string& stamp)
{
    const auto digits = [&](std::size_t from, std::size_t count) {
        for (std::size_t i = from; i < from + count; ++i)
            if (stamp[i] < '0' || stamp[i] > '9')
                return false;
        return true;
    };
    if (stamp.size() != 19 || stamp[4] != '-' || stamp[7] != '-' || stamp[10] != ' ' || !digits(0, 4) ||
        !digits(5, 2) || !digits(8, 2))
        return stamp;
    return stamp.substr(8, 2) + "." + stamp.substr(5, 2) + "." + stamp.substr(0, 4) + stamp.substr(10);
}

} // namespace qi
