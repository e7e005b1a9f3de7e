#include "DifferenceListState.h"

#include "Database.h"
#include "JetCollation.h"
#include "QuarnRooms.h"

#include <algorithm>
#include <map>
#include <string>
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
// A scan in a room of the order that the list lacks, and an Ist row that no scan of its room explains.
const std::string kScansNotListed =
    "SELECT COUNT(*) FROM T_DatInventur AS s WHERE EXISTS (SELECT 1 FROM T_Raum AS r WHERE r.stRaumNr = s.stRaum) "
    "AND NOT EXISTS (SELECT 1 FROM T_Differenzliste AS d JOIN T_Raum AS r ON r.lID = d.lRaumID "
    "WHERE d.stIstInvNR = s.stInvNr AND r.stRaumNr = s.stRaum)";
const std::string kListedNotScanned =
    "SELECT COUNT(*) FROM T_Differenzliste AS d LEFT JOIN T_Raum AS r ON r.lID = d.lRaumID "
    "WHERE d.stIstInvNR <> '' AND NOT EXISTS (SELECT 1 FROM T_DatInventur AS s "
    "WHERE s.stInvNr = d.stIstInvNR AND s.stRaum = r.stRaumNr)";
const std::string kRoomsToEvaluate = "SELECT lID, lIdRB FROM T_Raum WHERE ststatus <> 'N'";
const std::string kSollNumbers = "SELECT lRaumID, stSollInvNR FROM T_Differenzliste WHERE stSollInvNR <> ''";

std::int64_t count(Database& db, const std::string& sql) { return toLong(db.scalar(sql)); }

} // namespace

ListState differenceListState(Database& order, const QuarnRooms& quarn)
{
    if (count(order, kListRows) == 0 && count(order, kEvaluatedRooms) > 0)
        return ListState::Never;
    if (count(order, kRoomsWithoutRows) > 0 || count(order, kRowsOfOtherRooms) > 0 ||
        count(order, kScansNotListed) > 0 || count(order, kListedNotScanned) > 0)
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
