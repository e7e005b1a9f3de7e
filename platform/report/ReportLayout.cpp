#include "ReportLayout.h"

#include <QColor>
#include <QPainter>
#include <QPen>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace qi {

namespace {

constexpr double kMm = 72.0 / 25.4;
constexpr double kA4Short = 210.0 * kMm;
constexpr double kA4Long = 297.0 * kMm;
constexpr double kMarginX = 15.0 * kMm;
constexpr double kMarginY = 12.0 * kMm;
constexpr double kMinStarWidth = 15.0 * kMm;
constexpr double kHeadingPadY = 3.0;
constexpr double kSummaryGap = 12.0;
constexpr double kBreakdownWidth = 180.0 * kMm;
constexpr int kMaxHeadingLines = 3;

QString q(const std::string& s) { return QString::fromStdString(s); }

/// Texts of columns that don't wrap stay on one line.
QString oneLine(QString s)
{
    if (s.contains(QLatin1Char('\n')) || s.contains(QLatin1Char('\r')) || s.contains(QLatin1Char('\t'))) {
        s.replace(QLatin1String("\r\n"), QLatin1String(" "));
        s.replace(QLatin1Char('\n'), QLatin1Char(' ')).replace(QLatin1Char('\r'), QLatin1Char(' '));
        s.replace(QLatin1Char('\t'), QLatin1Char(' '));
    }
    return s;
}

QString wrapSource(const std::string& s)
{
    QString t = q(s);
    t.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return t;
}

// Colours of the printed page: dark slate for rules and headings, light tints for bands.
const QColor kInk(0x1a, 0x1a, 0x1a);
const QColor kHeadInk(0x1f, 0x2d, 0x3d);
const QColor kMuted(0x55, 0x60, 0x6b);
const QColor kAccent(0x2f, 0x48, 0x58);
const QColor kHeadingFill(0xe1, 0xe7, 0xed);
const QColor kGroupFill(0xea, 0xef, 0xf4);
const QColor kZebra(0xf4, 0xf6, 0xf8);
const QColor kRule(0x9a, 0xa7, 0xb4);

} // namespace

// ------------------------------------------------------------------ headings

QStringList columnHeadingLines(const ReportLayout& layout, const Typography& type, std::size_t column)
{
    const ColumnBox& box = layout.columns()[column];
    return type.wrap(FontRole::Bold, q(layout.model().definition().columns[column].heading),
                     box.width - 2 * ReportLayout::kCellPadX, kMaxHeadingLines);
}

// ------------------------------------------------------------------ layout

class Paginator {
public:
    explicit Paginator(ReportLayout& layout)
        : l_(layout), model_(layout.model_), levels_(model_.groupLevels()), open_(levels_, false), next_(levels_, 0)
    {
    }

    void run()
    {
        startPage(true, false);
        const std::size_t rows = model_.rowCount();
        if (rows == 0)
            place(make(Band::Kind::Empty, 0, 0, l_.type_->lineHeight(FontRole::Italic) + 16));
        for (std::size_t r = 0; r < rows; ++r) {
            startGroups(r);
            const double h = l_.rowHeight(r);
            // A group's last row goes to the page that has room for its footers as well, so that
            // no page starts with footers under a continued header.
            ensure(h + closingFooters(r), true);
            Band row = make(Band::Kind::Row, 0, std::uint32_t(r), h);
            const std::size_t groupStart = levels_ ? model_.groups(levels_ - 1)[next_[levels_ - 1]].first : 0;
            row.shaded = (r - groupStart) % 2 == 1;
            place(row);
            hasBody_ = true;
            endGroups(r);
        }
        summary();
        for (auto& page : l_.pages_)
            page.count = std::uint32_t((&page == &l_.pages_.back() ? l_.bands_.size() : (&page + 1)->first) -
                                       page.first);
    }

private:
    Band make(Band::Kind kind, std::size_t level, std::uint32_t index, double height) const
    {
        Band b;
        b.kind = kind;
        b.level = std::uint8_t(level);
        b.index = index;
        b.height = float(height);
        return b;
    }

    void place(Band b)
    {
        b.y = float(y_);
        y_ += b.height;
        l_.bands_.push_back(b);
    }

    void startPage(bool headings, bool continueGroups)
    {
        l_.pages_.push_back({std::uint32_t(l_.bands_.size()), 0});
        y_ = l_.bodyTop_;
        hasBody_ = false;
        if (l_.pages_.size() == 1) {
            const auto& header = model_.definition().reportHeader;
            for (std::size_t i = 0; i < header.size(); ++i)
                place(make(Band::Kind::ReportHeader, 0, std::uint32_t(i),
                           l_.type_->lineHeight(FontRole::Body) + 1.5 + (i + 1 == header.size() ? 6 : 0)));
        }
        if (headings)
            place(make(Band::Kind::ColumnHeadings, 0, 0, l_.headingsHeight_));
        if (continueGroups)
            for (std::size_t level = 0; level < levels_; ++level)
                if (open_[level]) {
                    Band b = make(Band::Kind::GroupHeader, level, std::uint32_t(next_[level]),
                                  l_.groupHeaderHeight(level, true));
                    b.continued = true;
                    place(b);
                }
    }

    bool fits(double h) const { return y_ + h <= l_.bodyBottom_ + 0.01; }

    /// A new page when `h` points don't fit on this one and it holds something already.
    void ensure(double h, bool headings)
    {
        if (!fits(h) && hasBody_)
            startPage(headings, true);
    }

    void startGroups(std::size_t r)
    {
        std::size_t first = levels_;
        for (std::size_t level = 0; level < levels_; ++level)
            if (model_.groups(level)[next_[level]].first == r) {
                first = level;
                break;
            }
        if (first == levels_)
            return;
        bool newPage = false;
        double need = l_.rowHeight(r) + closingFooters(r);
        for (std::size_t level = first; level < levels_; ++level) {
            newPage |= model_.definition().groups[level].newPage && next_[level] > 0;
            need += l_.groupHeaderHeight(level, false);
        }
        if (newPage && hasBody_)
            startPage(true, true);
        else
            ensure(need, true);
        for (std::size_t level = first; level < levels_; ++level) {
            place(make(Band::Kind::GroupHeader, level, std::uint32_t(next_[level]), l_.groupHeaderHeight(level, false)));
            open_[level] = true;
        }
        hasBody_ = true;
    }

    /// Height of the footers of the groups that end with row `r`.
    double closingFooters(std::size_t r) const
    {
        double h = 0;
        for (std::size_t level = 0; level < levels_; ++level) {
            const RowRange& g = model_.groups(level)[next_[level]];
            if (g.first + g.count - 1 == r)
                h += l_.groupFooterHeight(level);
        }
        return h;
    }

    void endGroups(std::size_t r)
    {
        for (std::size_t level = levels_; level-- > 0;) {
            const RowRange& g = model_.groups(level)[next_[level]];
            if (g.first + g.count - 1 != r)
                continue;
            const double h = l_.groupFooterHeight(level);
            if (h > 0) {
                ensure(h, true);
                place(make(Band::Kind::GroupFooter, level, std::uint32_t(next_[level]), h));
            }
            open_[level] = false;
            ++next_[level];
        }
    }

    void summary()
    {
        const ReportDefinition& def = model_.definition();
        const Typography& t = *l_.type_;
        double gap = kSummaryGap;
        auto add = [&](Band b, double keepWith) {
            b.height += float(gap);
            if (!fits(b.height + keepWith) && hasBody_) {
                b.height -= float(gap);
                startPage(false, false);
            }
            gap = 0;
            place(b);
            hasBody_ = true;
        };
        if (def.hasSums())
            add(make(Band::Kind::Totals, 0, 0, t.lineHeight(FontRole::Bold) + 8), 0);
        for (std::size_t i = 0; i < def.summary.size(); ++i)
            add(make(Band::Kind::SummaryLine, 0, std::uint32_t(i), t.lineHeight(FontRole::Body) + 3), 0);
        for (std::size_t b = 0; b < def.breakdowns.size(); ++b) {
            const auto& lines = model_.breakdowns()[b];
            const double lineH = t.lineHeight(FontRole::Body) + 2 * 1.2;
            add(make(Band::Kind::BreakdownHeading, 0, std::uint32_t(b), t.lineHeight(FontRole::Bold) + 12),
                lines.empty() ? 0 : lineH);
            for (std::size_t i = 0; i < lines.size(); ++i) {
                Band line = make(Band::Kind::BreakdownLine, b, std::uint32_t(i), lineH);
                line.shaded = i % 2 == 1;
                add(line, 0);
            }
        }
    }

    ReportLayout& l_;
    const ReportModel& model_;
    const std::size_t levels_;
    std::vector<bool> open_;
    std::vector<std::size_t> next_; ///< current group of each level
    double y_ = 0;
    bool hasBody_ = false;
};

ReportLayout::ReportLayout(const ReportModel& model)
    : model_(model), type_(std::make_unique<Typography>(model.definition(), kLayoutDpi, kLayoutDpi / 72.0, false))
{
    const ReportDefinition& def = model.definition();
    pageWidth_ = def.landscape ? kA4Long : kA4Short;
    pageHeight_ = def.landscape ? kA4Short : kA4Long;
    marginX_ = kMarginX;
    marginTop_ = kMarginY;
    marginBottom_ = kMarginY;

    const Typography& t = *type_;
    const double small = t.lineHeight(FontRole::Small);
    const double headerBlock = std::max(t.lineHeight(FontRole::Title) + double(def.pageHeaderLeft.size()) * small,
                                        double(def.pageHeaderRight.size()) * small);
    headerRule_ = marginTop_ + headerBlock + 4;
    bodyTop_ = headerRule_ + 8;
    const std::size_t footerLines = std::max<std::size_t>(
        1, std::max(def.pageFooterLeft.size(), def.pageFooterRight.size()));
    footerTop_ = pageHeight_ - marginBottom_ - double(footerLines) * small;
    footerRule_ = footerTop_ - 4;
    bodyBottom_ = footerRule_ - 8;

    placeColumns();
    int headingLines = 1;
    for (std::size_t c = 0; c < columns_.size(); ++c)
        headingLines = std::max(headingLines, int(columnHeadingLines(*this, t, c).size()));
    headingsHeight_ = headingLines * t.lineHeight(FontRole::Bold) + 2 * kHeadingPadY;

    double reserved = headingsHeight_ + 2 * kRowPadY;
    for (std::size_t level = 0; level < model.groupLevels(); ++level)
        reserved += groupHeaderHeight(level, true);
    maxCellLines_ = std::max(1, int((bodyBottom_ - bodyTop_ - reserved) / t.lineHeight(FontRole::Body)));

    Paginator(*this).run();
}

void ReportLayout::placeColumns()
{
    const auto& defs = model_.definition().columns;
    const double available = pageWidth_ - 2 * marginX_;
    double fixed = 0;
    int stars = 0;
    for (const ColumnDef& c : defs) {
        fixed += c.widthMm * kMm;
        stars += c.widthMm <= 0 ? 1 : 0;
    }
    // Fixed widths that leave too little for the shared ones are narrowed in proportion.
    double scale = 1.0;
    if (fixed > 0 && fixed + stars * kMinStarWidth > available)
        scale = std::max(0.05, (available - stars * kMinStarWidth) / fixed);
    const double starWidth = stars ? std::max(kMinStarWidth * 0.25, (available - fixed * scale) / stars) : 0;
    double x = marginX_;
    for (const ColumnDef& c : defs) {
        const double w = c.widthMm > 0 ? c.widthMm * kMm * scale : starWidth;
        columns_.push_back({x, w});
        x += w;
    }
}

double ReportLayout::rowHeight(std::size_t row) const
{
    const Typography& t = *type_;
    int lines = 1;
    const auto& defs = model_.definition().columns;
    for (std::size_t c = 0; c < defs.size(); ++c) {
        if (!defs[c].wrap)
            continue;
        const std::string text = model_.cellText(row, c);
        const double width = columns_[c].width - 2 * kCellPadX;
        if (text.find_first_of("\r\n") == std::string::npos && t.advance(FontRole::Body, q(text)) <= width)
            continue;
        lines = std::max(lines, int(t.wrap(FontRole::Body, wrapSource(text), width, maxCellLines_).size()));
    }
    return lines * t.lineHeight(FontRole::Body) + 2 * kRowPadY;
}

double ReportLayout::groupHeaderHeight(std::size_t level, bool continued) const
{
    const auto& header = model_.definition().groups[level].header;
    const FontRole role = level == 0 ? FontRole::Group : FontRole::SubGroup;
    const std::size_t lines = continued ? 1 : std::max<std::size_t>(1, header.size());
    return double(lines) * type_->lineHeight(role) + 6 + (continued ? 0 : (level == 0 ? kGroupGap : 3));
}

double ReportLayout::groupFooterHeight(std::size_t level) const
{
    const auto& footer = model_.definition().groups[level].footer;
    std::size_t lines = footer.size();
    if (lines == 0 && model_.definition().hasSums())
        lines = 1;
    return lines == 0 ? 0 : double(lines) * type_->lineHeight(FontRole::Italic) + 7;
}

std::span<const Band> ReportLayout::bands(int page) const
{
    if (page < 0 || page >= pageCount())
        return {};
    const Page& p = pages_[std::size_t(page)];
    return std::span<const Band>(bands_.data() + p.first, p.count);
}

// ------------------------------------------------------------------ painting

PagePainter::PagePainter(const ReportLayout& layout, double dpi, double unitsPerPoint, bool hinted)
    : layout_(layout), type_(layout.model().definition(), dpi, unitsPerPoint, hinted), k_(unitsPerPoint)
{
}

void PagePainter::paint(QPainter& p, int page) const
{
    const ReportLayout& l = layout_;
    const ReportModel& m = l.model();
    const ReportDefinition& def = m.definition();
    const Typography& t = type_;
    const double k = k_;
    const int pages = l.pageCount();
    const double left = l.left(), right = l.right(), width = right - left;
    const double tableRight = l.columns().empty() ? right : l.columns().back().x + l.columns().back().width;

    auto rect = [k](double x, double y, double w, double h) { return QRectF(x * k, y * k, w * k, h * k); };
    // Font and pen change only when they differ from the last text's: a page sets them
    // hundreds of times, and every change is written into a PDF.
    FontRole currentRole = FontRole::Count;
    QColor currentInk;
    auto text = [&](FontRole role, const QColor& color, double x, double baseline, const QString& s) {
        if (role != currentRole) {
            p.setFont(t.font(role));
            currentRole = role;
        }
        if (color != currentInk) {
            p.setPen(color);
            currentInk = color;
        }
        p.drawText(QPointF(x * k, baseline * k), s);
    };
    // A text in a box [x, x + w], aligned, cut to fit.
    auto boxed = [&](FontRole role, const QColor& color, double x, double w, double baseline, const QString& s,
                     Alignment align) {
        const QString shown = t.elided(role, s, w);
        const double sw = t.advance(role, shown);
        double at = x;
        if (align == Alignment::Right)
            at = x + w - sw;
        else if (align == Alignment::Center)
            at = x + (w - sw) / 2;
        text(role, color, at, baseline, shown);
    };
    // A text the layout has already fitted to its box (a heading's line): a screen's hinted
    // type may run a little wider than the layout's, so it is narrowed to the box, never cut.
    auto whole = [&](FontRole role, const QColor& color, double x, double w, double baseline, const QString& s,
                     Alignment align) {
        const double sw = t.advance(role, s);
        if (sw <= w || sw <= 0) {
            boxed(role, color, x, w, baseline, s, align);
            return;
        }
        const QTransform before = p.transform();
        p.translate(x * k, 0);
        p.scale(w / sw, 1);
        text(role, color, 0, baseline, s);
        p.setTransform(before);
    };
    auto rule = [&](double x1, double x2, double y, double widthPt, const QColor& color) {
        currentInk = QColor();
        QPen pen(color);
        pen.setWidthF(widthPt * k);
        pen.setCapStyle(Qt::FlatCap);
        p.setPen(pen);
        p.drawLine(QPointF(x1 * k, y * k), QPointF(x2 * k, y * k));
    };

    p.save();
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setRenderHint(QPainter::TextAntialiasing, true);

    // Page header.
    const RowRange all = m.all();
    const double titleLine = t.lineHeight(FontRole::Title);
    const double smallLine = t.lineHeight(FontRole::Small);
    double rightWidth = 0;
    std::vector<QString> rightTexts;
    for (const TextTemplate& tt : def.pageHeaderRight) {
        rightTexts.push_back(q(m.evaluate(tt, all, page + 1, pages)));
        rightWidth = std::max(rightWidth, t.advance(FontRole::Small, rightTexts.back()));
    }
    rightWidth = std::min(rightWidth, width * 0.45);
    boxed(FontRole::Title, kHeadInk, left, width - rightWidth - 12, l.top() + t.ascent(FontRole::Title),
          q(m.evaluate(def.pageTitle, all, page + 1, pages)), Alignment::Left);
    for (std::size_t i = 0; i < def.pageHeaderLeft.size(); ++i)
        boxed(FontRole::Small, kMuted, left, width - rightWidth - 12,
              l.top() + titleLine + double(i) * smallLine + t.ascent(FontRole::Small),
              q(m.evaluate(def.pageHeaderLeft[i], all, page + 1, pages)), Alignment::Left);
    for (std::size_t i = 0; i < rightTexts.size(); ++i)
        boxed(FontRole::Small, kMuted, right - rightWidth, rightWidth,
              l.top() + 2 + double(i) * smallLine + t.ascent(FontRole::Small), rightTexts[i], Alignment::Right);
    rule(left, right, l.headerRule(), 1.2, kAccent);

    // Page footer.
    rule(left, right, l.footerRule(), 0.5, kRule);
    for (std::size_t i = 0; i < def.pageFooterLeft.size(); ++i)
        boxed(FontRole::Small, kMuted, left, width * 0.6, l.footerTop() + double(i) * smallLine + t.ascent(FontRole::Small),
              q(m.evaluate(def.pageFooterLeft[i], all, page + 1, pages)), Alignment::Left);
    for (std::size_t i = 0; i < def.pageFooterRight.size(); ++i)
        boxed(FontRole::Small, kMuted, left + width * 0.4, width * 0.6,
              l.footerTop() + double(i) * smallLine + t.ascent(FontRole::Small),
              q(m.evaluate(def.pageFooterRight[i], all, page + 1, pages)), Alignment::Right);

    const auto& cols = l.columns();
    const double pad = ReportLayout::kCellPadX;
    const double bodyLine = t.lineHeight(FontRole::Body);
    for (const Band& b : l.bands(page)) {
        const double y = b.y;
        switch (b.kind) {
        case Band::Kind::ReportHeader:
            boxed(FontRole::Body, kInk, left, width, y + 0.5 + t.ascent(FontRole::Body),
                  q(m.evaluate(def.reportHeader[b.index], all, page + 1, pages)), Alignment::Left);
            break;
        case Band::Kind::ColumnHeadings: {
            p.fillRect(rect(left, y, tableRight - left, b.height), kHeadingFill);
            rule(left, tableRight, y + b.height, 0.8, kAccent);
            for (std::size_t c = 0; c < cols.size(); ++c) {
                const QStringList lines = columnHeadingLines(l, l.typography(), c);
                // Headings sit on the band's bottom line, so that one-line headings line up.
                const double firstBaseline = y + b.height - 3.0 - double(lines.size()) * t.lineHeight(FontRole::Bold) +
                                             t.ascent(FontRole::Bold);
                for (qsizetype i = 0; i < lines.size(); ++i)
                    whole(FontRole::Bold, kHeadInk, cols[c].x + pad, cols[c].width - 2 * pad,
                          firstBaseline + double(i) * t.lineHeight(FontRole::Bold), lines[i],
                          def.columns[c].alignment);
            }
            break;
        }
        case Band::Kind::GroupHeader: {
            const GroupDef& g = def.groups[b.level];
            const RowRange& range = m.groups(b.level)[b.index];
            const FontRole role = b.level == 0 ? FontRole::Group : FontRole::SubGroup;
            const double gap = b.continued ? 0 : (b.level == 0 ? ReportLayout::kGroupGap : 3);
            const double top = y + gap;
            const double indent = 8.0 * b.level;
            if (b.level == 0) {
                p.fillRect(rect(left, top, tableRight - left, b.height - gap), kGroupFill);
                p.fillRect(rect(left, top, 2.5, b.height - gap), kAccent);
            } else {
                rule(left + indent, tableRight, y + b.height - 0.5, 0.5, kRule);
            }
            std::vector<QString> lines;
            for (const TextTemplate& tt : g.header)
                lines.push_back(q(m.evaluate(tt, range, page + 1, pages)));
            if (lines.empty())
                lines.push_back(q(m.fieldText(range.first, m.groupField(b.level))));
            if (b.continued)
                lines.resize(1), lines[0] += QStringLiteral(" (Fortsetzung)");
            for (std::size_t i = 0; i < lines.size(); ++i)
                boxed(role, kHeadInk, left + indent + 8, tableRight - left - indent - 12,
                      top + 3 + double(i) * t.lineHeight(role) + t.ascent(role), lines[i], Alignment::Left);
            break;
        }
        case Band::Kind::Row: {
            if (b.shaded)
                p.fillRect(rect(left, y, tableRight - left, b.height), kZebra);
            const double baseline = y + ReportLayout::kRowPadY + t.ascent(FontRole::Body);
            const int maxLines = std::max(1, int((b.height - 2 * ReportLayout::kRowPadY) / bodyLine + 0.5));
            for (std::size_t c = 0; c < cols.size(); ++c) {
                const ColumnDef& cd = def.columns[c];
                const double w = cols[c].width - 2 * pad;
                const std::string value = m.cellText(b.index, c);
                if (value.empty())
                    continue;
                if (cd.wrap) {
                    // Lines break where the layout broke them, so that the row holds them on every device.
                    const QStringList lines = l.typography().wrap(FontRole::Body, wrapSource(value), w, maxLines);
                    for (qsizetype i = 0; i < lines.size(); ++i)
                        boxed(FontRole::Body, kInk, cols[c].x + pad, w, baseline + double(i) * bodyLine, lines[i],
                              cd.alignment);
                } else {
                    boxed(FontRole::Body, kInk, cols[c].x + pad, w, baseline, oneLine(q(value)), cd.alignment);
                }
            }
            break;
        }
        case Band::Kind::GroupFooter: {
            const GroupDef& g = def.groups[b.level];
            const RowRange& range = m.groups(b.level)[b.index];
            rule(left + 8.0 * b.level, tableRight, y + 1, 0.5, kRule);
            const double baseline = y + 3.5 + t.ascent(FontRole::Italic);
            double labelRight = tableRight;
            if (def.hasSums()) {
                for (std::size_t c = 0; c < cols.size(); ++c) {
                    if (!def.columns[c].sum)
                        continue;
                    labelRight = std::min(labelRight, cols[c].x);
                    whole(FontRole::Bold, kHeadInk, cols[c].x + pad, cols[c].width - 2 * pad, baseline,
                          q(m.columnSum(c, range)), def.columns[c].alignment);
                }
            }
            std::vector<QString> lines;
            for (const TextTemplate& tt : g.footer)
                lines.push_back(q(m.evaluate(tt, range, page + 1, pages)));
            if (lines.empty())
                lines.push_back(QStringLiteral("Summe"));
            for (std::size_t i = 0; i < lines.size(); ++i) {
                const double limit = (i == 0 ? labelRight : tableRight) - left - 8.0 * b.level - pad - 4;
                boxed(FontRole::Italic, kMuted, left + 8.0 * b.level + pad, limit,
                      baseline + double(i) * t.lineHeight(FontRole::Italic), lines[i], Alignment::Left);
            }
            break;
        }
        case Band::Kind::Totals: {
            const double top = y + b.height - t.lineHeight(FontRole::Bold) - 8;
            rule(left, tableRight, top + 1, 1.0, kAccent);
            const double baseline = top + 4 + t.ascent(FontRole::Bold);
            double labelRight = tableRight;
            for (std::size_t c = 0; c < cols.size(); ++c) {
                if (!def.columns[c].sum)
                    continue;
                labelRight = std::min(labelRight, cols[c].x);
                boxed(FontRole::Bold, kHeadInk, cols[c].x + pad, cols[c].width - 2 * pad, baseline,
                      q(m.columnSum(c, all)), def.columns[c].alignment);
            }
            boxed(FontRole::Bold, kHeadInk, left + pad, labelRight - left - 2 * pad, baseline, q(def.totalsLabel),
                  Alignment::Left);
            break;
        }
        case Band::Kind::SummaryLine:
            boxed(FontRole::Body, kInk, left + pad, width - 2 * pad,
                  y + b.height - bodyLine - 1.5 + t.ascent(FontRole::Body),
                  q(m.evaluate(def.summary[b.index], all, page + 1, pages)), Alignment::Left);
            break;
        case Band::Kind::BreakdownHeading: {
            const double boxWidth = std::min(width, kBreakdownWidth);
            const double baseline = y + b.height - t.lineHeight(FontRole::Bold) - 2 + t.ascent(FontRole::Bold);
            boxed(FontRole::Bold, kHeadInk, left + pad, boxWidth - 2 * pad, baseline,
                  q(def.breakdowns[b.index].heading), Alignment::Left);
            rule(left, left + boxWidth, y + b.height - 0.5, 0.8, kAccent);
            break;
        }
        case Band::Kind::BreakdownLine: {
            const double boxWidth = std::min(width, kBreakdownWidth);
            const BreakdownLine& line = m.breakdowns()[b.level][b.index];
            if (b.shaded)
                p.fillRect(rect(left, y, boxWidth, b.height), kZebra);
            const double baseline = y + 1.2 + t.ascent(FontRole::Body);
            const double amountWidth = 30.0 * 72.0 / 25.4;
            boxed(FontRole::Body, kInk, left + pad, boxWidth - amountWidth - 3 * pad, baseline, q(line.value),
                  Alignment::Left);
            boxed(FontRole::Body, kInk, left + boxWidth - amountWidth - pad, amountWidth, baseline, q(line.amount),
                  Alignment::Right);
            break;
        }
        case Band::Kind::Empty:
            boxed(FontRole::Italic, kMuted, left + pad, width - 2 * pad, y + 8 + t.ascent(FontRole::Italic),
                  q(def.emptyText), Alignment::Left);
            break;
        }
    }
    p.restore();
}

} // namespace qi
