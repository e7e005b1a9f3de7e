#pragma once
// Whether an order's stored difference list still fits the order's data. The order
// database keeps no stamp of its evaluation, so the list is compared with what the
// evaluation would make of the order now (see differenceListState).

namespace qi {

class Database;
class QuarnRooms;

enum class ListState {
    Fits,  ///< the list is what an evaluation would make of the rooms and scans now
    Stale, ///< rooms, scans or Quarn's objects of the rooms changed after the list was made
    Never, ///< no list, although rooms of the order are to be evaluated
};

/// The state of the difference list of the order database `order` (only read).
///
/// The list fits when all of these hold (texts compared as the order database compares them):
///  - the rooms of its Soll part (rows with a Soll number, and the empty row of a room where
///    Quarn expects nothing) are exactly the order's rooms with status other than "N";
///  - its Ist numbers (rows with stIstInvNR <> '') with the room number of their lRaumID are
///    exactly the order's scans that lie in one of its rooms (stInvNr with stRaum);
///  - the Soll numbers of each of those rooms are exactly the objects Quarn has in the room now.
/// An empty list while a room has a status other than "N" is Never. What the list takes from
/// Quarn beyond the objects of the rooms (the locations and descriptions of scanned numbers) is
/// not compared. DbError when the order can't be read.
ListState differenceListState(Database& order, const QuarnRooms& quarn);

} // namespace qi
