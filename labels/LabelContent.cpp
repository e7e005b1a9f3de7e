#include "LabelContent.h"

#include <array>
#include <cctype>

namespace qi {

namespace {

struct SymbologyName {
    std::string_view name;
    std::string_view display;
    Symbology symbology;
};

constexpr std::array<SymbologyName, 3> kSymbologies{{
    {"code128", "Code 128", Symbology::Code128},
    {"datamatrix", "DataMatrix", Symbology::DataMatrix},
    {"qr", "QR-Code", Symbology::QrCode},
}};

} // namespace

Label roomLabel(const LabelRoom& room)
{
    Label label;
    label.code = room.number;
    label.symbology = Symbology::Code128;
    label.lines.push_back(room.number);
    label.lines.push_back(room.name);
    std::string where = room.building;
    if (!room.floor.empty())
        where += (where.empty() ? "" : " \u00b7 ") + room.floor;
    label.lines.push_back(where);
    return label;
}

std::vector<Label> roomLabels(const std::vector<LabelRoom>& rooms)
{
    std::vector<Label> labels;
    labels.reserve(rooms.size());
    for (const LabelRoom& room : rooms)
        labels.push_back(roomLabel(room));
    return labels;
}

std::vector<Label> objectLabels(const std::vector<std::string>& numbers, Symbology symbology)
{
    std::vector<Label> labels;
    labels.reserve(numbers.size());
    for (const std::string& number : numbers)
        labels.push_back(Label{number, symbology, {number}});
    return labels;
}

bool symbologyNamed(std::string_view name, Symbology& symbology)
{
    std::string lower;
    for (char c : name)
        lower += char(std::tolower(static_cast<unsigned char>(c)));
    for (const SymbologyName& s : kSymbologies)
        if (s.name == lower) {
            symbology = s.symbology;
            return true;
        }
    return false;
}

std::string symbologyNames()
{
    std::string names;
    for (const SymbologyName& s : kSymbologies)
        names += (names.empty() ? "" : ", ") + std::string(s.name);
    return names;
}

std::string symbologyDisplayName(Symbology symbology)
{
    for (const SymbologyName& s : kSymbologies)
        if (s.symbology == symbology)
            return std::string(s.display);
    return {};
}

} // namespace qi
