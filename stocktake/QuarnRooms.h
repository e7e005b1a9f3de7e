#pragma once
// Quarn's rooms as the overview needs them: every room of the building structure with its
// name, and the numbers of the objects standing in each room, read from Quarn's building
// component once for all rooms however many orders hold them.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace qi {

class QGebDb;
struct GebRoom;

class QuarnRooms {
public:
    /// Reads every room of the building structure and the objects standing in the rooms;
    /// std::runtime_error (German text) when Quarn can't answer.
    explicit QuarnRooms(QGebDb& geb);
    ~QuarnRooms();
    QuarnRooms(const QuarnRooms&) = delete;
    QuarnRooms& operator=(const QuarnRooms&) = delete;

    /// Every room of the building structure, in room-number order.
    const std::vector<GebRoom>& all() const { return rooms_; }
    /// Quarn's name of the room (T_Raumkern.lId); empty for a room Quarn no longer has.
    std::string nameOf(std::int32_t lIdRB) const;
    /// The numbers of the objects that stand in the room (as the evaluation takes them), sorted
    /// as the order databases sort texts; none for a room Quarn doesn't have.
    const std::vector<std::string>& objectsOf(std::int32_t lIdRB) const;
    /// The building and floor above the room in the building structure ("Hauptgebäude /
    /// Erdgeschoss"; a node's name, else its number); empty where the structure has none.
    std::string partOf(std::int32_t lIdRB) const;

private:
    std::vector<GebRoom> rooms_;
    std::map<std::int32_t, std::string> names_;
    std::map<std::int32_t, std::vector<std::string>> objects_;
    std::map<std::int32_t, std::string> parts_;
};

} // namespace qi
