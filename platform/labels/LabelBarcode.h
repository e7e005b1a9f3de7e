#pragma once
// A label's barcode encoded with libzint, as the filled shapes of its symbol in modules
// (the symbol's narrowest bar or its square cell), without quiet zones.

#include "LabelSheets.h"

#include <vector>

class QPainterPath;

namespace qi {

struct BarcodeSymbol {
    /// A filled shape: a rectangle, or a circle or hexagon of diameter `width` centred at (x, y).
    struct Shape {
        enum class Kind : unsigned char { Rect, Circle, Hexagon };
        Kind kind = Kind::Rect;
        float x = 0, y = 0, width = 0, height = 0;
    };
    bool linear = true;      ///< a row of bars (Code 128) stretched to any height; else a square grid
    double widthModules = 0; ///< the symbol's width
    double heightModules = 0;
    double quietModules = 0; ///< the light margin the symbol needs on each side
    std::vector<Shape> shapes;

    /// The symbol's shapes as one path: `module` points per module horizontally, the symbol
    /// `height` points tall, its top left corner at (x, y).
    void addTo(QPainterPath& path, double x, double y, double module, double height) const;
};

/// Encodes `code`; LabelError naming it when the symbology can't carry it.
BarcodeSymbol encodeBarcode(const std::string& code, Symbology symbology);

} // namespace qi
