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
    // The building part of each room: the building and floor nodes above it. A structure that
    // can't be read leaves the rooms without one.
    if (const std::optional<GebStruktur> structure = geb.GetGebStruktur(1)) {
        std::map<std::int32_t, const GebNode*> nodes;
        for (const GebNode& node : structure->nodes)
            nodes.emplace(node.lId, &node);
        const auto nameOfNode = [](const GebNode& n) { return n.stBezeichnung.empty() ? n.stNr : n.stBezeichnung; };
        for (const GebRoom& room : rooms_) {
            std::string building, floor;
            const auto self = nodes.find(room.lId);
            std::int32_t parent = self == nodes.end() ? 0 : self->second->lParentId;
            // A structure is a few levels deep; the bound keeps a broken one (a loop) from hanging.
            for (int depth = 0; parent != 0 && depth < 16; ++depth) {
                const auto it = nodes.find(parent);
                if (it == nodes.end())
                    break;
                const GebNode& n = *it->second;
                if (n.byTyp == 3 && floor.empty())
                    floor = nameOfNode(n);
                else if (n.byTyp == 2 && building.empty())
                    building = nameOfNode(n);
                parent = n.lParentId;
            }
            std::string part = building;
            if (!floor.empty())
                part += (part.empty() ? "" : " / ") + floor;
            if (!part.empty())
                parts_.emplace(room.lId, std::move(part));
        }
    }
}

std::string QuarnRooms::partOf(std::int32_t lIdRB) const
{
    const auto it = parts_.find(lIdRB);
    return it == parts_.end() ? std::string() : it->second;
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
