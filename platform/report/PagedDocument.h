#pragma once
// Pages to show, print or write as PDF. A report's pages and a sheet of labels are both
// paged documents: the preview, printing and the PDF file serve every kind of them alike.

#include <functional>
#include <memory>
#include <string>

class QPageLayout;
class QPainter;

namespace qi {

/// Paints the pages of a document on one device.
class PagePainting {
public:
    virtual ~PagePainting() = default;
    /// Paints page `page` (0-based) with its top left corner at the painter's origin.
    virtual void paint(QPainter& painter, int page) const = 0;
};

class PagedDocument {
public:
    virtual ~PagedDocument() = default;
    virtual int pageCount() const = 0;
    /// The page's size in points.
    virtual double pageWidth() const = 0;
    virtual double pageHeight() const = 0;
    /// The sheet as the printer and the PDF file get it: its size and orientation, no margins.
    virtual QPageLayout pageLayout() const = 0;
    /// The title the files written carry and the printer's document name.
    virtual std::string documentTitle() const = 0;
    /// What a print that fails says: that the document can't be printed, on `printer` when
    /// that has a name (empty: none).
    virtual std::string cannotPrintText(const std::string& printer) const = 0;
    /// A painter of the pages for a device of `dpi` dots per inch on which one point is
    /// `unitsPerPoint` device units (the zoom); `hinted` for screens.
    virtual std::unique_ptr<PagePainting> pagePainter(double dpi, double unitsPerPoint, bool hinted) const = 0;
};

/// Writes the pages as a PDF file that replaces an earlier one only when it is complete (a
/// killed write leaves the earlier file as it was). `progress` is told after each page with
/// the number of pages. ReportError naming the file when it can't be written.
void writePagesPdf(const PagedDocument& document, const std::string& path,
                   const std::function<void(int page, int pages)>& progress = {});

/// Setting pages measures type, which needs a GUI application: a program without any
/// application gets an offscreen one that lives as long as the program. ReportError in a
/// program that has a QCoreApplication only.
void ensureGuiApplication();

} // namespace qi
