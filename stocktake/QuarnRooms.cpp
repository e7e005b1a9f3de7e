#include "QuarnRooms.h"

#include "JetCollation.h"
#include "QuarnHost.h"

#include <algorithm>
#include <stdexcept>

namespace qi {

QuarnRooms::QuarnRooms(QGebDb& geb) : geb_(geb)
{
    if (!geb_.GetAllRooms(rooms_))
        throw std::runtime_error(geb_.LastError());
    for (const GebRoom& room : rooms_)
        names_.emplace(room.lId, room.stBezeichnung);
}

QuarnRooms::~QuarnRooms() = default;

std::string QuarnRooms::nameOf(std::int32_t lIdRB) const
{
    const auto it = names_.find(lIdRB);
    return it == names_.end() ? std::string() : it->second;
}

const std::vector<std::string>& QuarnRooms::objectsOf(std::int32_t lIdRB)
{
    if (const auto it = objects_.find(lIdRB); it != objects_.end())
        return it->second;
    std::vector<RoomObject> objects;
    if (!geb_.GetObjectsOfRoom(lIdRB, objects))
        throw std::runtime_error(geb_.LastError());
    std::vector<std::string> names;
    names.reserve(objects.size());
    for (RoomObject& o : objects)
        names.push_back(std::move(o.stName));
    std::sort(names.begin(), names.end(),
              [](const std::string& a, const std::string& b) { return jetCompare(a, b) < 0; });
    return objects_.emplace(lIdRB, std::move(names)).first->second;
}

} // namespace qi
