#pragma once
// What a label says: a room's label carries its number as Code 128 and in big type, its
// name, and its building and floor; an object's label its inventory number.

#include "LabelRooms.h"
#include "LabelSheets.h"

#include <string>
#include <string_view>
#include <vector>

namespace qi {

/// The label of a room: code and first line the number, then the name, then "building · floor".
Label roomLabel(const LabelRoom& room);
std::vector<Label> roomLabels(const std::vector<LabelRoom>& rooms);
/// The labels of inventory numbers in a symbology.
std::vector<Label> objectLabels(const std::vector<std::string>& numbers, Symbology symbology);

/// The symbology a name gives ("code128", "datamatrix", "qr"; letter case ignored); false when none.
bool symbologyNamed(std::string_view name, Symbology& symbology);
/// The names symbologyNamed takes, for messages ("code128, datamatrix, qr").
std::string symbologyNames();
/// How a person reads a symbology ("Code 128", "DataMatrix", "QR-Code").
std::string symbologyDisplayName(Symbology symbology);

} // namespace qi
