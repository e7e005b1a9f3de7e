#include "LabelBarcode.h"

#include <QPainterPath>
#include <QPolygonF>

#include <zint.h>

#include <cmath>
#include <memory>

namespace qi {

namespace {

struct SymbolDeleter {
    void operator()(zint_symbol* s) const { ZBarcode_Delete(s); }
};

} // namespace

BarcodeSymbol encodeBarcode(const std::string& code, Symbology symbology)
{
    const std::string shown = "Der Inhalt '" + code + "' lässt sich nicht als ";
    if (code.empty())
        throw LabelError("Ein Etikett ohne Inhalt für den Strichcode kann nicht gedruckt werden.");
    std::unique_ptr<zint_symbol, SymbolDeleter> symbol(ZBarcode_Create());
    if (!symbol)
        throw LabelError(shown + "Strichcode darstellen.");
    switch (symbology) {
    case Symbology::Code128:
        symbol->symbology = BARCODE_CODE128;
        break;
    case Symbology::DataMatrix:
        symbol->symbology = BARCODE_DATAMATRIX;
        break;
    case Symbology::QrCode:
        symbol->symbology = BARCODE_QRCODE;
        break;
    }
    symbol->input_mode = UNICODE_MODE;
    symbol->show_hrt = 0;
    symbol->output_options = BARCODE_NO_QUIET_ZONES;
    symbol->whitespace_width = 0;
    symbol->whitespace_height = 0;
    symbol->border_width = 0;
    symbol->scale = 1.0f;
    const int encoded = ZBarcode_Encode(symbol.get(), reinterpret_cast<const unsigned char*>(code.data()),
                                        int(code.size()));
    if (encoded >= ZINT_ERROR || ZBarcode_Buffer_Vector(symbol.get(), 0) >= ZINT_ERROR || !symbol->vector)
        throw LabelError(shown + (symbology == Symbology::Code128 ? "Strichcode (Code 128)"
                                  : symbology == Symbology::DataMatrix ? "DataMatrix-Code"
                                                                       : "QR-Code") +
                         " darstellen.");

    BarcodeSymbol result;
    result.linear = symbology == Symbology::Code128;
    result.widthModules = symbol->width;
    result.heightModules = result.linear ? 1.0 : symbol->rows;
    // The light margins the symbologies ask for: ten modules beside a Code 128, one around a
    // Data Matrix, four around a QR code.
    result.quietModules = symbology == Symbology::Code128 ? 10 : symbology == Symbology::DataMatrix ? 1 : 4;
    // The vector's units: its width spans the symbol's modules (no quiet zones, no text).
    const zint_vector& v = *symbol->vector;
    const double k = v.width > 0 ? symbol->width / double(v.width) : 1.0;
    const double ky = result.linear ? (v.height > 0 ? 1.0 / v.height : 1.0) : k;
    for (const zint_vector_rect* r = v.rectangles; r; r = r->next) {
        if (r->colour > 0 && r->colour == 8) // white: the background
            continue;
        result.shapes.push_back({BarcodeSymbol::Shape::Kind::Rect, float(r->x * k), float(r->y * ky),
                                 float(r->width * k), float(r->height * ky)});
    }
    for (const zint_vector_circle* c = v.circles; c; c = c->next)
        if (!c->colour)
            result.shapes.push_back({BarcodeSymbol::Shape::Kind::Circle, float(c->x * k), float(c->y * ky),
                                     float(c->diameter * k), float(c->diameter * k)});
    for (const zint_vector_hexagon* h = v.hexagons; h; h = h->next)
        result.shapes.push_back({BarcodeSymbol::Shape::Kind::Hexagon, float(h->x * k), float(h->y * ky),
                                 float(h->diameter * k), float(h->diameter * k)});
    return result;
}

void BarcodeSymbol::addTo(QPainterPath& path, double x, double y, double module, double height) const
{
    const double ky = linear ? height : module;
    for (const Shape& s : shapes) {
        switch (s.kind) {
        case Shape::Kind::Rect:
            path.addRect(QRectF(x + s.x * module, y + s.y * ky, s.width * module, s.height * ky));
            break;
        case Shape::Kind::Circle:
            path.addEllipse(QPointF(x + s.x * module, y + s.y * ky), s.width * module / 2, s.width * module / 2);
            break;
        case Shape::Kind::Hexagon: {
            QPolygonF hexagon;
            const double r = s.width * module / 2;
            for (int i = 0; i < 6; ++i) {
                const double a = M_PI / 3 * i + M_PI / 6;
                hexagon << QPointF(x + s.x * module + r * std::cos(a), y + s.y * ky + r * std::sin(a));
            }
            hexagon << hexagon.front();
            path.addPolygon(hexagon);
            break;
        }
        }
    }
}

} // namespace qi
