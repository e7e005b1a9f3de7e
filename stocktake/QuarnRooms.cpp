#include "QuarnRooms.h"

#include "JetCollation.h"
#include "QuarnHost.h"

#include <algorithm>
#include <stdexcept>

namespace qi {

QuarnRooms::QuarnRooms(QGebDb& geb)
{
    if (!geb.GetAllRooms(rooms_))
        throw std::runtime_error(geb.LastError());
    for (const GebRoom& room : rooms_)
        names_.emplace(room.lId, room.stBezeichnung);
    // Every room's objects in one walk over Quarn's objects, not one question per room.
    if (!geb.GetObjectNamesByRoom(objects_))
        throw std::runtime_error(geb.LastError());
    for (auto& [room, numbers] : objects_)
        std::sort(numbers.begin(), numbers.end(),
                  [](const std::string& a, const std::string& b) { return jetCompare(a, b) < 0; });
}

QuarnRooms::~QuarnRooms() = default;

std::string QuarnRooms::nameOf(std::int32_t lIdRB) const
{
    const auto it = names_.find(lIdRB);
    return it == names_.end() ? std::string() : it->second;
}

const std::vector<std::string>& QuarnRooms::objectsOf(std::int32_t lIdRB) const
{
    static const std::vector<std::string> none;
    const auto it = objects_.find(lIdRB);
    return it == objects_.end() ? none : it->second;
}

} // namespace qi
