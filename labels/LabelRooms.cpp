#include "LabelRooms.h"

#include "JetCollation.h"
#include "QuarnHost.h"
#include "ScannerFile.h"

#include <algorithm>
#include <stdexcept>

namespace qi {

namespace {

/// A structure is a few levels deep; the bound keeps a broken one (a loop) from hanging.
constexpr int kMaxDepth = 16;

} // namespace

void sortByNumber(std::vector<LabelRoom>& rooms)
{
    std::stable_sort(rooms.begin(), rooms.end(),
                     [](const LabelRoom& a, const LabelRoom& b) { return jetCompare(a.number, b.number) < 0; });
}

LabelRoomDirectory::LabelRoomDirectory(QGebDb& geb)
{
    std::vector<GebRoom> rooms;
    if (!geb.GetAllRooms(rooms))
        throw std::runtime_error(geb.LastError());
    const std::optional<GebStruktur> structure = geb.GetGebStruktur(1);
    if (!structure)
        throw std::runtime_error(geb.LastError().empty() ? "Die Gebäudestruktur von Quarn kann nicht gelesen werden."
                                                         : geb.LastError());
    for (const GebNode& n : structure->nodes)
        nodes_[n.lId] = Node{n.lParentId, n.byTyp, n.stBezeichnung.empty() ? n.stNr : n.stBezeichnung};
    rooms_.reserve(rooms.size());
    for (const GebRoom& r : rooms) {
        LabelRoom room{r.lId, trimBlanks(r.stRaumNr), r.stBezeichnung, {}, {}};
        const auto self = nodes_.find(r.lId);
        std::int32_t parent = self == nodes_.end() ? 0 : self->second.parent;
        for (int depth = 0; parent != 0 && depth < kMaxDepth; ++depth) {
            const auto it = nodes_.find(parent);
            if (it == nodes_.end())
                break;
            if (it->second.typ == 3 && room.floor.empty())
                room.floor = it->second.text;
            else if (it->second.typ == 2 && room.building.empty())
                room.building = it->second.text;
            parent = it->second.parent;
        }
        rooms_.push_back(std::move(room));
    }
    sortByNumber(rooms_);
}

bool LabelRoomDirectory::isBelow(std::int32_t node, std::int32_t ancestor) const
{
    for (int depth = 0; node != 0 && depth <= kMaxDepth; ++depth) {
        if (node == ancestor)
            return true;
        const auto it = nodes_.find(node);
        if (it == nodes_.end())
            return false;
        node = it->second.parent;
    }
    return false;
}

std::vector<LabelRoom> LabelRoomDirectory::underNode(std::int32_t nodeId) const
{
    std::vector<LabelRoom> found;
    if (!hasNode(nodeId))
        return found;
    for (const LabelRoom& room : rooms_)
        if (isBelow(room.lId, nodeId))
            found.push_back(room);
    return found;
}

std::vector<LabelRoom> LabelRoomDirectory::ofOrder(const CRaumRecColl& orderRooms) const
{
    std::map<std::int32_t, const LabelRoom*> byId;
    for (const LabelRoom& room : rooms_)
        byId.emplace(room.lId, &room);
    std::vector<LabelRoom> found;
    for (const CRaumRec& rec : orderRooms) {
        const auto it = byId.find(rec.lIdRB);
        if (it != byId.end())
            found.push_back(*it->second);
        else
            found.push_back(LabelRoom{rec.lIdRB, trimBlanks(rec.stRaumNr), {}, {}, {}});
    }
    sortByNumber(found);
    return found;
}

} // namespace qi
