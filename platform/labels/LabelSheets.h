#pragma once
// Barcode label sheets: labels (a code and lines of plain text) placed on sheets of a
// layout (page size, margins, columns, rows, label size, gaps), from a start position on
// a partly used sheet and with copies per label. The barcodes (libzint) are drawn as filled
// vector shapes. The sheets are a paged document: they go through the same page output as
// the reports (PDF file, printing, preview).
//
// On a label, a Code 128 spans the width below the text lines; a Data Matrix or QR code
// stands at the left with the lines beside it. The first line is set large and bold, the
// others small; a line too wide is set smaller (down to kMinFontPt), and wrapped when even
// that is too wide; texts too tall are set smaller as a whole. Nothing is ever cut.

#include "PagedDocument.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

class QPainter;

namespace qi {

/// A label's barcode.
enum class Symbology { Code128, DataMatrix, QrCode };

/// One label: its code (as the scanner must deliver it) and its plain text lines; the first
/// line is the big one (the number).
struct Label {
    std::string code;
    Symbology symbology = Symbology::Code128;
    std::vector<std::string> lines;
};

/// A sheet of labels; lengths in millimetres. Labels are counted left to right, top to
/// bottom, from 1.
struct LabelLayout {
    std::string name; ///< the German display name
    double pageWidthMm = 210, pageHeightMm = 297;
    double marginLeftMm = 0, marginTopMm = 0;
    double labelWidthMm = 70, labelHeightMm = 37;
    double gapXMm = 0, gapYMm = 0;
    int columns = 1, rows = 1;

    int labelsPerPage() const { return columns * rows; }
};

/// Raised for a layout file that can't be read, a layout not found, and labels that can't
/// be printed (a barcode too narrow to scan); the message is German and names the file and
/// line, or the label.
class LabelError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a layout file ("Schlüssel = Wert" lines); LabelError naming the file and the line.
LabelLayout readLabelLayout(const std::string& path);
/// The display names of the layouts in the template folder's label folder, sorted.
std::vector<std::string> labelLayoutNames(const std::string& templateDir);
/// The layout of that display name (or file name without extension; letter case ignored) in
/// the template folder; LabelError naming it and the layouts there when there is none.
LabelLayout findLabelLayout(const std::string& templateDir, const std::string& name);
/// The folder of the layout files in a template folder ("Etiketten", letter case ignored);
/// empty when there is none.
std::string labelLayoutDir(const std::string& templateDir);

/// A rectangle in millimetres from the page's top left corner.
struct RectMm {
    double x = 0, y = 0, width = 0, height = 0;
};

/// Labels placed on sheets. The constructor places them and checks every barcode;
/// LabelError naming the label whose barcode can't be printed wide enough to scan (its
/// narrowest bar below kMinCode128ModuleMm, a 2D symbol's module below kMin2dModuleMm) or
/// whose text doesn't fit even in the smallest type, and for a start position off the sheet,
/// fewer than one copy or no labels at all.
class LabelSheets : public PagedDocument {
public:
    /// `startPosition` (from 1): the first free place on the first sheet; `copies`: how
    /// many times each label is printed, one after the other.
    LabelSheets(LabelLayout layout, std::vector<Label> labels, int startPosition = 1, int copies = 1);
    ~LabelSheets();
    LabelSheets(LabelSheets&&) noexcept;
    LabelSheets& operator=(LabelSheets&&) noexcept;

    /// "70 × 37 mm": a label's size as messages name it.
    static std::string sizeText(const LabelLayout& layout);

    const LabelLayout& layout() const;
    int pageCount() const override;
    /// The labels printed, copies counted.
    int printedCount() const;
    /// Where printed label `i` (0-based, copies counted) goes: its page (0-based) and its place.
    int pageOf(int i) const;
    RectMm labelRect(int i) const;
    /// The label printed as `i`.
    const Label& printedLabel(int i) const;
    /// The place of the barcode on printed label `i`, quiet zones included.
    RectMm barcodeRect(int i) const;
    /// The width of the barcode's module (its narrowest bar) on printed label `i`, in mm.
    double moduleMm(int i) const;
    /// The point size of each text line of printed label `i` (shrunk when a line doesn't fit)
    /// and the lines as they are drawn (a line wrapped when even the smallest size doesn't fit).
    std::vector<double> fontSizes(int i) const;
    std::vector<std::string> drawnLines(int i) const;

    /// Paints page `page` (0-based) with its top left corner at the painter's origin;
    /// `unitsPerPoint`: device units per point (the zoom).
    void paint(QPainter& painter, int page, double unitsPerPoint) const;

    // As a paged document (preview, printing, PDF), titled "Etiketten" unless told otherwise.
    void setTitle(const std::string& title);
    double pageWidth() const override;
    double pageHeight() const override;
    QPageLayout pageLayout() const override;
    std::string documentTitle() const override;
    std::string cannotPrintText(const std::string& printer) const override;
    std::unique_ptr<PagePainting> pagePainter(double dpi, double unitsPerPoint, bool hinted) const override;

    /// Writes the sheets as a PDF that replaces an earlier file only when complete;
    /// LabelError naming the file when it can't be written. `progress` is told after each page.
    void writePdf(const std::string& path, const std::function<void(int page, int pages)>& progress = {}) const;

    // Printing limits: the narrowest bar of a Code 128 and the module of a 2D symbol, in mm.
    static constexpr double kMinCode128ModuleMm = 0.19;
    static constexpr double kMin2dModuleMm = 0.35;
    static constexpr double kMinFontPt = 5.0;

    struct Impl;

private:
    std::unique_ptr<Impl> d_;
};

} // namespace qi
