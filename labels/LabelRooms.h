#pragma once
// The rooms that labels and walk lists are made for: every room of Quarn's building
// structure with its building and floor, the rooms below one node of the structure,
// and the rooms of an order. Each room's number is the value a scanner must deliver for
// it: the import compares its room field with the order's room numbers.

#include "RecColl.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace qi {

class QGebDb;

/// One room as its label and its walk list name it.
struct LabelRoom {
    std::int32_t lId = 0;      ///< the room's id in Quarn's structure (T_Raumkern.lId)
    std::string number;        ///< the room number, blanks trimmed (the barcode's value)
    std::string name;          ///< Quarn's name of the room
    std::string building;      ///< the building above it (its name, else its number); may be empty
    std::string floor;         ///< the floor above it; may be empty
};

/// Quarn's rooms with the building and floor above each, read once from the building component.
class LabelRoomDirectory {
public:
    /// Reads every room and the building structure; std::runtime_error (German) when Quarn can't answer.
    explicit LabelRoomDirectory(QGebDb& geb);

    /// Every room of the building structure, in room-number order.
    const std::vector<LabelRoom>& all() const { return rooms_; }
    /// Whether the structure has a node of that id.
    bool hasNode(std::int32_t nodeId) const { return nodes_.count(nodeId) > 0; }
    /// The rooms below the node (a site, building, floor; a room node is the room itself), in
    /// room-number order; none for a node the structure doesn't have.
    std::vector<LabelRoom> underNode(std::int32_t nodeId) const;
    /// The order's rooms (T_Raum) in room-number order, with Quarn's names; a room Quarn no
    /// longer has keeps its number alone.
    std::vector<LabelRoom> ofOrder(const CRaumRecColl& orderRooms) const;

private:
    struct Node {
        std::int32_t parent = 0;
        int typ = 0;
        std::string text;
    };
    /// Whether `ancestor` is the node itself or lies above it.
    bool isBelow(std::int32_t node, std::int32_t ancestor) const;
    std::vector<LabelRoom> rooms_;
    std::map<std::int32_t, Node> nodes_;
};

/// Sorts rooms by number as the order databases sort texts.
void sortByNumber(std::vector<LabelRoom>& rooms);

} // namespace qi
