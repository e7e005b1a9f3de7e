#pragma once
// Quarn's rooms as the overview needs them: every room of the building structure with its
// name, and the numbers of the objects standing in each room, asked of Quarn's building
// component once per room however many orders hold it.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace qi {

class QGebDb;
struct GebRoom;

class QuarnRooms {
public:
    /// Reads every room of the building structure; std::runtime_error (German text) when that fails.
    explicit QuarnRooms(QGebDb& geb);
    ~QuarnRooms();
    QuarnRooms(const QuarnRooms&) = delete;
    QuarnRooms& operator=(const QuarnRooms&) = delete;

    /// Every room of the building structure, in room-number order.
    const std::vector<GebRoom>& all() const { return rooms_; }
    /// Quarn's name of the room (T_Raumkern.lId); empty for a room Quarn no longer has.
    std::string nameOf(std::int32_t lIdRB) const;
    /// The numbers of the objects that stand in the room now (as the evaluation takes them),
    /// sorted as the order databases sort texts; std::runtime_error (German text) when Quarn
    /// can't answer.
    const std::vector<std::string>& objectsOf(std::int32_t lIdRB);

private:
    QGebDb& geb_;
    std::vector<GebRoom> rooms_;
    std::map<std::int32_t, std::string> names_;
    std::map<std::int32_t, std::vector<std::string>> objects_;
};

} // namespace qi
