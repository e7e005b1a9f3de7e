#include "LabelSheets.h"

#include "LabelBarcode.h"
#include "ReportError.h"

#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QLocale>
#include <QPageLayout>
#include <QPageSize>
#include <QPaintDevice>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace qi {

namespace {

constexpr double kPointsPerMm = 72.0 / 25.4;
constexpr double kBigFontPt = 14.0;   ///< the first line (the number)
constexpr double kSmallFontPt = 8.0;  ///< the other lines
constexpr double kGapMm = 1.0;        ///< between the text and the barcode
constexpr double kMinBarHeightMm = 6.0;
constexpr double kMaxBarHeightMm = 15.0;
constexpr double kMaxCode128ModuleMm = 0.5;
constexpr double kMax2dModuleMm = 1.0;

/// The type of the labels, measured once at a reference size: advances and line spacing of an
/// unhinted font grow in proportion to its size.
class LabelType {
public:
    static const LabelType& instance()
    {
        static const LabelType type;
        return type;
    }
    static QFont font(bool bold)
    {
        QFont f;
        f.setFamilies({QStringLiteral("Liberation Sans"), QStringLiteral("Arial"), QStringLiteral("Helvetica"),
                       QStringLiteral("DejaVu Sans")});
        f.setStyleHint(QFont::SansSerif);
        f.setHintingPreference(QFont::PreferNoHinting);
        f.setKerning(false);
        f.setStyleStrategy(QFont::PreferNoShaping);
        f.setBold(bold);
        return f;
    }
    /// Width of a text at `size` points, in points.
    double advance(bool bold, const QString& text, double size) const
    {
        return metrics_[bold].horizontalAdvance(text) * size / kReference;
    }
    double lineSpacing(bool bold, double size) const { return metrics_[bold].lineSpacing() * size / kReference; }
    double ascent(bool bold, double size) const { return metrics_[bold].ascent() * size / kReference; }

private:
    static constexpr double kReference = 100.0;
    LabelType()
    {
        // A device of 72 dpi: its units are points.
        QImage device(1, 1, QImage::Format_ARGB32);
        const int dotsPerMeter = int(std::lround(72.0 / 0.0254));
        device.setDotsPerMeterX(dotsPerMeter);
        device.setDotsPerMeterY(dotsPerMeter);
        for (bool bold : {false, true}) {
            QFont f = font(bold);
            f.setPointSizeF(kReference);
            metrics_.emplace_back(f, &device);
        }
    }
    std::vector<QFontMetricsF> metrics_;
};

/// A text line as drawn on a label, relative to the label's top left corner.
struct DrawnLine {
    QString text;
    double size = 0; ///< points
    bool bold = false;
    double xMm = 0;
    double baselineMm = 0;
};

/// A label laid out once, whichever place and copy it is printed on.
struct LaidOutLabel {
    BarcodeSymbol symbol;
    double moduleMm = 0;
    RectMm bar;          ///< the symbol without its quiet zones, relative to the label
    double quietMm = 0;  ///< the quiet zone on each side
    std::vector<DrawnLine> lines;
};

/// Shrinks a line's size until the text is no wider than `width` points; nothing when even
/// the smallest size is too wide.
std::optional<double> sizeForWidth(const QString& text, bool bold, double nominal, double width)
{
    const LabelType& type = LabelType::instance();
    const double wide = type.advance(bold, text, nominal);
    if (wide <= width)
        return nominal;
    double size = std::floor(nominal * width / wide * 10) / 10;
    while (size >= LabelSheets::kMinFontPt && type.advance(bold, text, size) > width)
        size -= 0.1;
    if (size < LabelSheets::kMinFontPt)
        return std::nullopt;
    return size;
}

/// The line split in two at the blank nearest its middle (anywhere near the middle when it
/// has none).
std::pair<QString, QString> splitLine(const QString& text)
{
    const int middle = int(text.size()) / 2;
    int best = -1;
    for (int i = 1; i < text.size(); ++i)
        if (text[i] == QLatin1Char(' ') && (best < 0 || std::abs(i - middle) < std::abs(best - middle)))
            best = i;
    if (best > 0)
        return {text.left(best).trimmed(), text.mid(best + 1).trimmed()};
    const int at = std::max(1, middle);
    return {text.left(at), text.mid(at)};
}

/// Fits one line into `width` points: smaller, and wrapped when even the smallest size is too
/// wide. Nothing when a single character is too wide.
bool fitLine(const QString& text, bool bold, double nominal, double width, std::vector<DrawnLine>& out)
{
    if (const auto size = sizeForWidth(text, bold, nominal, width)) {
        out.push_back({text, *size, bold});
        return true;
    }
    if (text.size() < 2)
        return false;
    const auto [first, second] = splitLine(text);
    const std::size_t from = out.size();
    if (!fitLine(first, bold, nominal, width, out) || !fitLine(second, bold, nominal, width, out))
        return false;
    // The parts of one line keep one size.
    double smallest = nominal;
    for (std::size_t i = from; i < out.size(); ++i)
        smallest = std::min(smallest, out[i].size);
    for (std::size_t i = from; i < out.size(); ++i)
        out[i].size = smallest;
    return true;
}

double linesHeight(const std::vector<DrawnLine>& lines)
{
    double h = 0;
    for (const DrawnLine& l : lines)
        h += LabelType::instance().lineSpacing(l.bold, l.size);
    return h;
}

/// The label's lines fitted into a box of `width` × `height` points; nothing when they don't
/// fit even in the smallest type.
std::optional<std::vector<DrawnLine>> fitLines(const std::vector<std::string>& texts, double width, double height)
{
    std::vector<DrawnLine> lines;
    bool first = true;
    for (const std::string& t : texts) {
        const QString text = QString::fromStdString(t).simplified();
        const bool big = first;
        first = false;
        if (text.isEmpty())
            continue;
        if (!fitLine(text, big, big ? kBigFontPt : kSmallFontPt, width, lines))
            return std::nullopt;
    }
    // Too tall: all lines smaller in proportion, none below the smallest size.
    for (int round = 0; round < 20 && linesHeight(lines) > height; ++round) {
        const double factor = std::max(0.5, height / linesHeight(lines) - 0.005);
        bool shrunk = false;
        for (DrawnLine& l : lines) {
            const double size = std::max(LabelSheets::kMinFontPt, std::floor(l.size * factor * 10) / 10);
            shrunk = shrunk || size < l.size;
            l.size = size;
        }
        if (!shrunk)
            break;
    }
    if (linesHeight(lines) > height + 1e-6)
        return std::nullopt;
    return lines;
}

std::string mmText(double mm)
{
    return QLocale(QLocale::German).toString(mm, 'f', std::abs(mm - std::round(mm)) < 0.05 ? 0 : 1).toStdString();
}

/// The inner margin of a label, in mm.
double paddingOf(const LabelLayout& layout)
{
    return std::clamp(0.06 * std::min(layout.labelWidthMm, layout.labelHeightMm), 1.0, 2.5);
}

LaidOutLabel layOut(const Label& label, const LabelLayout& layout)
{
    LaidOutLabel out;
    out.symbol = encodeBarcode(label.code, label.symbology);
    const double pad = paddingOf(layout);
    const double cx = pad, cy = pad;
    const double cw = layout.labelWidthMm - 2 * pad, ch = layout.labelHeightMm - 2 * pad;
    const std::string tooNarrow = "Der Strichcode für '" + label.code + "' passt nicht lesbar auf das Etikett (" +
                                  LabelSheets::sizeText(layout) + ").";
    const std::string tooMuchText = "Der Text des Etiketts '" + label.code +
                                    "' passt auch in der kleinsten Schrift nicht auf das Etikett (" +
                                    LabelSheets::sizeText(layout) + ").";
    const double span = out.symbol.widthModules + 2 * out.symbol.quietModules;
    if (out.symbol.linear) {
        out.moduleMm = std::min(cw / span, kMaxCode128ModuleMm);
        if (out.moduleMm < LabelSheets::kMinCode128ModuleMm || ch < kMinBarHeightMm)
            throw LabelError(tooNarrow);
        const auto lines = fitLines(label.lines, cw * kPointsPerMm, (ch - kMinBarHeightMm - kGapMm) * kPointsPerMm);
        if (!lines)
            throw LabelError(tooMuchText);
        out.lines = *lines;
        const double textMm = linesHeight(out.lines) / kPointsPerMm;
        const double gap = out.lines.empty() ? 0.0 : kGapMm;
        const double barMm = std::min(kMaxBarHeightMm, ch - textMm - gap);
        // The block of text and barcode in the middle of the label.
        double y = cy + (ch - textMm - gap - barMm) / 2;
        for (DrawnLine& l : out.lines) {
            const LabelType& type = LabelType::instance();
            l.baselineMm = y + type.ascent(l.bold, l.size) / kPointsPerMm;
            l.xMm = cx + (cw - type.advance(l.bold, l.text, l.size) / kPointsPerMm) / 2;
            y += type.lineSpacing(l.bold, l.size) / kPointsPerMm;
        }
        out.quietMm = out.symbol.quietModules * out.moduleMm;
        const double symbolMm = out.symbol.widthModules * out.moduleMm;
        out.bar = {cx + (cw - symbolMm) / 2, y + gap, symbolMm, barMm};
        return out;
    }
    // A square symbol at the left, the lines beside it.
    const double side = std::min(ch, cw / 2);
    out.moduleMm = std::min(side / span, kMax2dModuleMm);
    if (out.moduleMm < LabelSheets::kMin2dModuleMm)
        throw LabelError(tooNarrow);
    out.quietMm = out.symbol.quietModules * out.moduleMm;
    const double used = span * out.moduleMm;
    const double symbolMm = out.symbol.widthModules * out.moduleMm;
    out.bar = {cx + out.quietMm, cy + (ch - used) / 2 + out.quietMm, symbolMm,
               out.symbol.heightModules * out.moduleMm};
    const double tx = cx + used + kGapMm, tw = cw - used - kGapMm;
    const auto lines = fitLines(label.lines, tw * kPointsPerMm, ch * kPointsPerMm);
    if (!lines || (tw <= 0 && !label.lines.empty()))
        throw LabelError(tooMuchText);
    out.lines = *lines;
    double y = cy + (ch - linesHeight(out.lines) / kPointsPerMm) / 2;
    for (DrawnLine& l : out.lines) {
        const LabelType& type = LabelType::instance();
        l.baselineMm = y + type.ascent(l.bold, l.size) / kPointsPerMm;
        l.xMm = tx;
        y += type.lineSpacing(l.bold, l.size) / kPointsPerMm;
    }
    return out;
}

} // namespace

struct LabelSheets::Impl {
    LabelLayout layout;
    std::vector<Label> labels;
    std::vector<LaidOutLabel> laidOut;
    int start = 1;
    int copies = 1;
    std::string title = "Etiketten";

    int slot(int i) const { return start - 1 + i; }
    const LaidOutLabel& laid(int i) const { return laidOut[std::size_t(i / copies)]; }
};

/// Paints the sheets on one device.
class LabelPagePainter : public PagePainting {
public:
    LabelPagePainter(const LabelSheets::Impl& d, const LabelSheets& sheets, double dpi, double unitsPerPoint)
        : d_(d), sheets_(sheets), k_(unitsPerPoint * kPointsPerMm), toFontPoints_(unitsPerPoint * 72.0 / dpi)
    {
    }

    void paint(QPainter& p, int page) const override
    {
        const int perPage = d_.layout.labelsPerPage();
        const int first = std::max(0, page * perPage - (d_.start - 1));
        const int last = std::min(sheets_.printedCount(), (page + 1) * perPage - (d_.start - 1));
        p.save();
        p.setRenderHint(QPainter::Antialiasing, true);
        p.setRenderHint(QPainter::TextAntialiasing, true);
        p.setPen(Qt::black);
        QFont fonts[2] = {LabelType::font(false), LabelType::font(true)};
        for (int i = first; i < last; ++i) {
            const RectMm at = sheets_.labelRect(i);
            const LaidOutLabel& l = d_.laid(i);
            QPainterPath path;
            path.setFillRule(Qt::WindingFill);
            l.symbol.addTo(path, (at.x + l.bar.x) * k_, (at.y + l.bar.y) * k_, l.moduleMm * k_, l.bar.height * k_);
            p.fillPath(path, Qt::black);
            for (const DrawnLine& line : l.lines) {
                QFont& f = fonts[line.bold];
                f.setPointSizeF(line.size * toFontPoints_);
                p.setFont(f);
                p.drawText(QPointF((at.x + line.xMm) * k_, (at.y + line.baselineMm) * k_), line.text);
            }
        }
        p.restore();
    }

private:
    const LabelSheets::Impl& d_;
    const LabelSheets& sheets_;
    double k_;           ///< device units per mm
    double toFontPoints_; ///< font points per point on the page
};

std::string LabelSheets::sizeText(const LabelLayout& layout)
{
    return mmText(layout.labelWidthMm) + " × " + mmText(layout.labelHeightMm) + " mm";
}

LabelSheets::LabelSheets(LabelLayout layout, std::vector<Label> labels, int startPosition, int copies)
    : d_(std::make_unique<Impl>())
{
    if (labels.empty())
        throw LabelError("Es gibt keine Etiketten zu drucken.");
    if (startPosition < 1 || startPosition > layout.labelsPerPage())
        throw LabelError("Die Startposition muss zwischen 1 und " + std::to_string(layout.labelsPerPage()) +
                         " liegen.");
    if (copies < 1 || copies > 1000)
        throw LabelError("Die Zahl der Exemplare je Etikett muss zwischen 1 und 1000 liegen.");
    try {
        ensureGuiApplication();
    } catch (const ReportError& e) {
        throw LabelError(e.what());
    }
    d_->layout = std::move(layout);
    d_->start = startPosition;
    d_->copies = copies;
    d_->laidOut.reserve(labels.size());
    for (const Label& label : labels)
        d_->laidOut.push_back(layOut(label, d_->layout));
    d_->labels = std::move(labels);
}

LabelSheets::~LabelSheets() = default;
LabelSheets::LabelSheets(LabelSheets&&) noexcept = default;
LabelSheets& LabelSheets::operator=(LabelSheets&&) noexcept = default;

const LabelLayout& LabelSheets::layout() const { return d_->layout; }
int LabelSheets::printedCount() const { return int(d_->labels.size()) * d_->copies; }

int LabelSheets::pageCount() const
{
    const int per = d_->layout.labelsPerPage();
    return (d_->slot(printedCount()) + per - 1) / per;
}

int LabelSheets::pageOf(int i) const { return d_->slot(i) / d_->layout.labelsPerPage(); }

RectMm LabelSheets::labelRect(int i) const
{
    const LabelLayout& l = d_->layout;
    const int place = d_->slot(i) % l.labelsPerPage();
    const int column = place % l.columns, row = place / l.columns;
    return {l.marginLeftMm + column * (l.labelWidthMm + l.gapXMm), l.marginTopMm + row * (l.labelHeightMm + l.gapYMm),
            l.labelWidthMm, l.labelHeightMm};
}

const Label& LabelSheets::printedLabel(int i) const { return d_->labels[std::size_t(i / d_->copies)]; }

RectMm LabelSheets::barcodeRect(int i) const
{
    const RectMm at = labelRect(i);
    const LaidOutLabel& l = d_->laid(i);
    const double quietY = l.symbol.linear ? 0.0 : l.quietMm;
    return {at.x + l.bar.x - l.quietMm, at.y + l.bar.y - quietY, l.bar.width + 2 * l.quietMm,
            l.bar.height + 2 * quietY};
}

double LabelSheets::moduleMm(int i) const { return d_->laid(i).moduleMm; }

std::vector<double> LabelSheets::fontSizes(int i) const
{
    std::vector<double> sizes;
    for (const DrawnLine& l : d_->laid(i).lines)
        sizes.push_back(l.size);
    return sizes;
}

std::vector<std::string> LabelSheets::drawnLines(int i) const
{
    std::vector<std::string> lines;
    for (const DrawnLine& l : d_->laid(i).lines)
        lines.push_back(l.text.toStdString());
    return lines;
}

void LabelSheets::paint(QPainter& painter, int page, double unitsPerPoint) const
{
    LabelPagePainter(*d_, *this, painter.device()->logicalDpiY(), unitsPerPoint).paint(painter, page);
}

void LabelSheets::setTitle(const std::string& title) { d_->title = title; }
double LabelSheets::pageWidth() const { return d_->layout.pageWidthMm * kPointsPerMm; }
double LabelSheets::pageHeight() const { return d_->layout.pageHeightMm * kPointsPerMm; }

QPageLayout LabelSheets::pageLayout() const
{
    return QPageLayout(QPageSize(QSizeF(d_->layout.pageWidthMm, d_->layout.pageHeightMm), QPageSize::Millimeter,
                                 QString(), QPageSize::ExactMatch),
                       QPageLayout::Portrait, QMarginsF(0, 0, 0, 0));
}

std::string LabelSheets::documentTitle() const { return d_->title; }

std::string LabelSheets::cannotPrintText(const std::string& printer) const
{
    return printer.empty() ? std::string("Die Etiketten können nicht gedruckt werden.")
                           : "Die Etiketten können auf dem Drucker '" + printer + "' nicht gedruckt werden.";
}

std::unique_ptr<PagePainting> LabelSheets::pagePainter(double dpi, double unitsPerPoint, bool) const
{
    return std::make_unique<LabelPagePainter>(*d_, *this, dpi, unitsPerPoint);
}

void LabelSheets::writePdf(const std::string& path, const std::function<void(int page, int pages)>& progress) const
{
    try {
        writePagesPdf(*this, path, progress);
    } catch (const ReportError& e) {
        throw LabelError(e.what());
    }
}

} // namespace qi
