#include "DifferenceListState.h"

#include "Database.h"
#include "JetCollation.h"
#include "QuarnRooms.h"

#include <algorithm>
#include <map>
#include <string>
#include <unordered_set>
#include <vector>

namespace qi {

namespace {

// Rows of the Soll part: a Soll number, or the empty row of a room without objects.
constexpr const char* kSollPart = "(d.stSollInvNR <> '' OR d.stIstInvNR = '')";

const std::string kListRows = "SELECT COUNT(*) FROM T_Differenzliste";
const std::string kEvaluatedRooms = "SELECT COUNT(*) FROM T_Raum WHERE ststatus <> 'N'";
// An evaluated room without its rows, and rows of the Soll part of a room that is not evaluated.
const std::string kRoomsWithoutRows = std::string("SELECT COUNT(*) FROM T_Raum AS r WHERE r.ststatus <> 'N' AND NOT "
                                                  "EXISTS (SELECT 1 FROM T_Differenzliste AS d WHERE d.lRaumID = "
                                                  "r.lID AND ") +
                                      kSollPart + ")";
const std::string kRowsOfOtherRooms =
    std::string("SELECT COUNT(*) FROM T_Differenzliste AS d WHERE ") + kSollPart +
    " AND NOT EXISTS (SELECT 1 FROM T_Raum AS r WHERE r.lID = d.lRaumID AND r.ststatus <> 'N')";
// The scans and the rows of the list, each with the number of its room, for matching them
// against each other (scanAndListMatch).
const std::string kRoomNumbers = "SELECT stRaumNr FROM T_Raum WHERE stRaumNr IS NOT NULL";
const std::string kScans = "SELECT stInvNr IS NULL, coalesce(stInvNr, ''), stRaum FROM T_DatInventur "
                           "WHERE stRaum IS NOT NULL";
const std::string kListedIst = "SELECT d.stIstInvNR, r.stRaumNr IS NULL, coalesce(r.stRaumNr, '') "
                               "FROM T_Differenzliste AS d LEFT JOIN T_Raum AS r ON r.lID = d.lRaumID "
                               "WHERE d.stIstInvNR IS NOT NULL";
const std::string kRoomsToEvaluate = "SELECT lID, lIdRB FROM T_Raum WHERE ststatus <> 'N'";
const std::string kSollNumbers = "SELECT lRaumID, stSollInvNR FROM T_Differenzliste WHERE stSollInvNR <> ''";

/// A number and a room number, each folded (jetFoldKey), as one key: texts that compare equal
/// as the order database compares them make the same key.
std::string pairKey(const std::string& foldedNr, const std::string& foldedRoom)
{
    return std::to_string(foldedNr.size()) + ':' + foldedNr + foldedRoom;
}

/// True when every scan in a room of the order has its row with the same number in the list
/// and every row with an Ist number has its scan in the row's room, the texts compared as the
/// order database compares them. One walk over each table: the order's indexes are not asked
/// once per scan.
bool scanAndListMatch(Database& order)
{
    std::unordered_set<std::string> rooms;
    {
        Statement& st = order.prepare(kRoomNumbers);
        st.bindAll({});
        while (st.step())
            rooms.insert(jetFoldKey(st.columnText(0)));
        st.reset();
    }
    // The rows of the list by Ist number (also the empty one of a Soll row) and room number.
    std::unordered_set<std::string> listed;
    std::vector<std::string> listedWithNumber;
    {
        Statement& st = order.prepare(kListedIst);
        st.bindAll({});
        while (st.step()) {
            if (st.columnInt(1) != 0) {
                // A row without its room has no scan in it.
                if (!st.columnText(0).empty())
                    return false;
                continue;
            }
            std::string key = pairKey(jetFoldKey(st.columnText(0)), jetFoldKey(st.columnText(2)));
            if (!st.columnText(0).empty())
                listedWithNumber.push_back(key);
            listed.insert(std::move(key));
        }
        st.reset();
    }
    std::unordered_set<std::string> scanned;
    {
        Statement& st = order.prepare(kScans);
        st.bindAll({});
        while (st.step()) {
            const std::string room = jetFoldKey(st.columnText(2));
            if (!rooms.count(room))
                continue;
            // A scan without a number in a room of the order: no row can name it.
            if (st.columnInt(0) != 0)
                return false;
            std::string key = pairKey(jetFoldKey(st.columnText(1)), room);
            if (!listed.count(key))
                return false;
            scanned.insert(std::move(key));
        }
        st.reset();
    }
    // A row's room is a room of the order: its scan was among those above.
    for (const std::string& key : listedWithNumber)
        if (!scanned.count(key))
            return false;
    return true;
}

std::int64_t count(Database& db, const std::string& sql) { return toLong(db.scalar(sql)); }

} // namespace

ListState differenceListState(Database& order, const QuarnRooms& quarn)
{
    if (count(order, kListRows) == 0 && count(order, kEvaluatedRooms) > 0)
        return ListState::Never;
    if (count(order, kRoomsWithoutRows) > 0 || count(order, kRowsOfOtherRooms) > 0 ||
        !scanAndListMatch(order))
        return ListState::Stale;

    std::map<std::int64_t, std::vector<std::string>> soll;
    {
        Statement& rows = order.prepare(kSollNumbers);
        rows.reset();
        while (rows.step())
            soll[rows.columnInt(0)].emplace_back(rows.columnText(1));
        rows.reset();
    }
    const Recordset rooms = order.query(kRoomsToEvaluate);
    const auto jetLess = [](const std::string& a, const std::string& b) { return jetCompare(a, b) < 0; };
    for (const auto& room : rooms.rows()) {
        const std::vector<std::string>& now = quarn.objectsOf(std::int32_t(toLong(room[1])));
        std::vector<std::string>& listed = soll[toLong(room[0])];
        if (listed.size() != now.size())
            return ListState::Stale;
        std::sort(listed.begin(), listed.end(), jetLess);
        for (std::size_t i = 0; i < listed.size(); ++i)
            if (!jetEqual(listed[i], now[i]))
                return ListState::Stale;
    }
    return ListState::Fits;
}

} // namespace qi
