#include "NumberSightings.h"

#include "Categories.h"
#include "Database.h"
#include "JetCollation.h"

#include <algorithm>

namespace qi {

namespace {

constexpr const char* kScans = "SELECT rowid, stInvNr, stAuftrag FROM P_Scan";
constexpr const char* kListRows = "SELECT rowid, stTyp, stSollInvNR, stIstInvNR FROM P_Diff";

constexpr const char* kTablesCreate =
    "DROP TABLE IF EXISTS temp.Diff; DROP TABLE IF EXISTS temp.Scan; DROP TABLE IF EXISTS temp.Zeile;\n"
    "CREATE TEMP TABLE Diff (stAuftrag TEXT COLLATE JET, stRaumNr TEXT COLLATE JET, stSollInvNR TEXT COLLATE JET,"
    " stIstInvNR TEXT COLLATE JET, stTyp TEXT COLLATE JET, stBeschreibung TEXT COLLATE JET, stArtNr TEXT COLLATE JET,"
    " stQuarn TEXT COLLATE JET, Datum TEXT COLLATE JET, Uhrzeit TEXT COLLATE JET, stZeit TEXT COLLATE JET);\n"
    "CREATE TEMP TABLE Scan (stAuftrag TEXT COLLATE JET, stInvNr TEXT COLLATE JET, stRaum TEXT COLLATE JET,"
    " stArtNr TEXT COLLATE JET, Datum TEXT COLLATE JET, Uhrzeit TEXT COLLATE JET, stZeit TEXT COLLATE JET,"
    " stDatei TEXT COLLATE JET);\n"
    "CREATE TEMP TABLE Zeile (lID INTEGER PRIMARY KEY);\n";
constexpr const char* kNoteRow = "INSERT INTO temp.Zeile (lID) VALUES (?1)";
constexpr const char* kCopyDiff =
    "INSERT INTO temp.Diff (rowid, stAuftrag, stRaumNr, stSollInvNR, stIstInvNR, stTyp, stBeschreibung, stArtNr,"
    " stQuarn, Datum, Uhrzeit, stZeit) SELECT d.rowid, d.stAuftrag, d.stRaumNr, d.stSollInvNR, d.stIstInvNR, d.stTyp,"
    " d.stBeschreibung, d.stArtNr, d.stQuarn, d.Datum, d.Uhrzeit, d.stZeit FROM temp.Zeile AS z"
    " INNER JOIN P_Diff AS d ON d.rowid = z.lID ORDER BY z.lID";
constexpr const char* kCopyScan =
    "INSERT INTO temp.Scan (rowid, stAuftrag, stInvNr, stRaum, stArtNr, Datum, Uhrzeit, stZeit, stDatei)"
    " SELECT s.rowid, s.stAuftrag, s.stInvNr, s.stRaum, s.stArtNr, s.Datum, s.Uhrzeit, s.stZeit, s.stDatei"
    " FROM temp.Zeile AS z INNER JOIN P_Scan AS s ON s.rowid = z.lID ORDER BY z.lID";
constexpr const char* kRowsDone = "DELETE FROM temp.Zeile";
constexpr const char* kIndexes = "DROP TABLE temp.Zeile;\n"
                                 "CREATE INDEX temp.Diff_stSollInvNR ON Diff (stSollInvNR);\n"
                                 "CREATE INDEX temp.Scan_stInvNr ON Scan (stInvNr, stAuftrag);\n";

/// A hash of the number folded by jetFoldKey: numbers that compare equal hash alike.
std::uint64_t foldedHash(std::string_view text)
{
    std::uint64_t h = 0xcbf29ce484222325ULL;
    for (const char c : jetFoldKey(text))
        h = (h ^ static_cast<unsigned char>(c)) * 0x100000001b3ULL;
    return h;
}

/// Copies the rows `rowids` of a table of `result` with the statement `copy`.
void copyRows(Database& result, const char* copy, std::vector<std::int64_t> rowids)
{
    std::sort(rowids.begin(), rowids.end());
    rowids.erase(std::unique(rowids.begin(), rowids.end()), rowids.end());
    Statement& note = result.prepare(kNoteRow);
    for (const std::int64_t rowid : rowids) {
        note.bindAll({rowid});
        note.step();
    }
    note.reset();
    result.execute(copy);
    result.execute(kRowsDone);
}

} // namespace

int NumberSightings::orderId(std::string_view order)
{
    // The rows of an order follow each other.
    if (lastOrderId_ < 0 || order != lastOrder_) {
        lastOrder_ = std::string(order);
        lastOrderId_ = orders_.try_emplace(jetFoldKey(order), int(orders_.size())).first->second;
    }
    return lastOrderId_;
}

void NumberSightings::noteScan(std::int64_t rowid, std::string_view number, std::string_view order)
{
    sightings_.push_back({foldedHash(number), rowid, orderId(order), Role::Scan});
}

std::optional<NumberSightings::Role> NumberSightings::roleOf(std::string_view typ)
{
    if (jetEqual(typ, category::k3b))
        return Role::Missing;
    if (jetEqual(typ, category::k2b))
        return Role::Surplus;
    if (jetEqual(typ, category::k2c))
        return Role::Unknown;
    return std::nullopt;
}

void NumberSightings::noteListRow(std::int64_t rowid, std::string_view typ, std::string_view soll,
                                  std::string_view ist)
{
    // The rows of a type mostly follow each other.
    if (typ != lastTyp_) {
        lastTyp_ = std::string(typ);
        lastRole_ = roleOf(typ);
    }
    // A missing object is named by its Soll number, surplus and unknown ones by their Ist number.
    if (lastRole_)
        sightings_.push_back({foldedHash(*lastRole_ == Role::Missing ? soll : ist), rowid, -1, *lastRole_});
    if (!soll.empty())
        sightings_.push_back({foldedHash(soll), rowid, -1, Role::Expecting});
}

void NumberSightings::noteAll(Database& result)
{
    Statement& scans = result.prepare(kScans);
    scans.bindAll({});
    while (scans.step())
        noteScan(scans.columnInt(0), scans.columnText(1), scans.columnText(2));
    scans.reset();
    Statement& rows = result.prepare(kListRows);
    rows.bindAll({});
    while (rows.step())
        noteListRow(rows.columnInt(0), rows.columnText(1), rows.columnText(2), rows.columnText(3));
    rows.reset();
}

void NumberSightings::writeListRows(Database& result) const
{
    result.executeScript(kTablesCreate);
    std::vector<Sighting> byNumber = sightings_;
    std::sort(byNumber.begin(), byNumber.end(),
              [](const Sighting& a, const Sighting& b) { return a.number < b.number; });
    std::vector<std::int64_t> listRows, scans;
    for (auto first = byNumber.begin(); first != byNumber.end();) {
        auto last = first;
        bool scansWanted = false, surplus = false;
        int scannedBy = -1;
        for (; last != byNumber.end() && last->number == first->number; ++last) {
            switch (last->role) {
            case Role::Scan:
                if (scannedBy < 0)
                    scannedBy = last->order;
                else if (scannedBy != last->order)
                    scansWanted = true;
                break;
            case Role::Missing:
            case Role::Unknown:
                scansWanted = true;
                listRows.push_back(last->rowid);
                break;
            case Role::Surplus:
                surplus = true;
                listRows.push_back(last->rowid);
                break;
            case Role::Expecting: break;
            }
        }
        for (auto s = first; s != last; ++s) {
            if (s->role == Role::Scan && scansWanted)
                scans.push_back(s->rowid);
            else if (s->role == Role::Expecting && surplus)
                listRows.push_back(s->rowid);
        }
        first = last;
    }
    copyRows(result, kCopyDiff, std::move(listRows));
    copyRows(result, kCopyScan, std::move(scans));
    result.executeScript(kIndexes);
}

} // namespace qi
