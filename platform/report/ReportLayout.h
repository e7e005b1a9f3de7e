#pragma once
// A report laid out on pages, once, in one pass over its rows: A4 in portrait or
// landscape, a page header (title, order, project, print date), the column
// headings on every page, group headers kept with their first row and repeated
// as "(Fortsetzung)" on the pages a group runs on to, group footers, the summary,
// and the page footer ("Seite x von y"). Pages hold bands that point into the
// model's rows; the texts are made when a page is painted.

#include "PagedDocument.h"
#include "ReportModel.h"
#include "ReportTypography.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

class QPainter;

namespace qi {

/// One horizontal strip of a page.
struct Band {
    enum class Kind : std::uint8_t {
        ReportHeader,     ///< index: line of the report header
        ColumnHeadings,
        GroupHeader,      ///< level, index: group of that level
        Row,              ///< index: row
        GroupFooter,      ///< level, index: group of that level
        Totals,           ///< the sums of the summary
        SummaryLine,      ///< index: line of the summary
        BreakdownHeading, ///< index: breakdown
        BreakdownLine,    ///< level: breakdown, index: its line
        Empty             ///< the text of a report without rows
    };
    Kind kind = Kind::Row;
    std::uint8_t level = 0;
    bool continued = false; ///< a group header repeated on a following page
    bool shaded = false;    ///< every other row of a group
    std::uint32_t index = 0;
    float y = 0;      ///< top, in points from the page's top edge
    float height = 0; ///< in points
};

/// A column's place on the page, in points.
struct ColumnBox {
    double x = 0;
    double width = 0;
};

class ReportLayout {
public:
    /// Lays the model out; the model must outlive the layout.
    explicit ReportLayout(const ReportModel& model);

    const ReportModel& model() const { return model_; }
    int pageCount() const { return int(pages_.size()); }
    std::span<const Band> bands(int page) const;
    std::size_t bandCount() const { return bands_.size(); }

    // Geometry in points.
    double pageWidth() const { return pageWidth_; }
    double pageHeight() const { return pageHeight_; }
    double left() const { return marginX_; }
    double right() const { return pageWidth_ - marginX_; }
    double top() const { return marginTop_; }
    double headerRule() const { return headerRule_; }
    double footerRule() const { return footerRule_; }
    double footerTop() const { return footerTop_; }
    const std::vector<ColumnBox>& columns() const { return columns_; }

    // Spacing in points.
    static constexpr double kCellPadX = 3.0;
    static constexpr double kRowPadY = 1.8;
    static constexpr double kGroupGap = 7.0;

    /// Lines of a wrapped cell that a row may use at most.
    int maxCellLines() const { return maxCellLines_; }
    /// Line heights of the laid-out type.
    const Typography& typography() const { return *type_; }

private:
    friend class Paginator;
    void placeColumns();
    double rowHeight(std::size_t row) const;
    double groupHeaderHeight(std::size_t level, bool continued) const;
    double groupFooterHeight(std::size_t level) const;

    const ReportModel& model_;
    std::unique_ptr<Typography> type_;
    double pageWidth_ = 0, pageHeight_ = 0, marginX_ = 0, marginTop_ = 0, marginBottom_ = 0;
    double headerRule_ = 0, bodyTop_ = 0, bodyBottom_ = 0, footerRule_ = 0, footerTop_ = 0;
    double headingsHeight_ = 0;
    int maxCellLines_ = 1;
    std::vector<ColumnBox> columns_;
    std::vector<Band> bands_;
    struct Page {
        std::uint32_t first = 0;
        std::uint32_t count = 0;
    };
    std::vector<Page> pages_;
};

/// Paints pages of a laid-out report on one device.
class PagePainter : public PagePainting {
public:
    /// `dpi`: the device's resolution; `unitsPerPoint`: device units per point (the zoom);
    /// `hinted` for screens.
    PagePainter(const ReportLayout& layout, double dpi, double unitsPerPoint, bool hinted);
    /// Paints page `page` (0-based) with its top left corner at the painter's origin.
    void paint(QPainter& painter, int page) const override;

private:
    const ReportLayout& layout_;
    Typography type_;
    double k_;
};

/// Heading lines of a column, as laid out.
QStringList columnHeadingLines(const ReportLayout& layout, const Typography& type, std::size_t column);

} // namespace qi
