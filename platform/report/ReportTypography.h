#pragma once
// The type of a report: its fonts, their measures on a given device, and word
// wrapping. Layout measures on a 1200-dpi device and decides where long texts break;
// painting measures again on the device it paints on only to cut a text that would
// overrun its column there.

#include "ReportDefinition.h"

#include <QFont>
#include <QFontMetricsF>
#include <QString>
#include <QStringList>

#include <vector>

class QPaintDevice;

namespace qi {

enum class FontRole { Body, Bold, Italic, Group, SubGroup, Title, Small, SmallBold, Count };

/// The fonts of a report in one size scale, with their measures in points.
class Typography {
public:
    /// Fonts for a device of `dpi` dots per inch on which one point is `unitsPerPoint` device
    /// units; `hinted` for screens (printers and files get unhinted outlines).
    Typography(const ReportDefinition& def, double dpi, double unitsPerPoint, bool hinted);

    const QFont& font(FontRole role) const { return fonts_[std::size_t(role)]; }
    /// Width of a text in points.
    double advance(FontRole role, const QString& text) const
    {
        return metrics_[std::size_t(role)].horizontalAdvance(text) * toPoints_;
    }
    /// Distance from one line's baseline to the next, in points.
    double lineHeight(FontRole role) const { return metrics_[std::size_t(role)].lineSpacing() * toPoints_; }
    double ascent(FontRole role) const { return metrics_[std::size_t(role)].ascent() * toPoints_; }
    /// The text cut to `width` points with an ellipsis when it is wider.
    QString elided(FontRole role, const QString& text, double width) const;
    /// The text broken into lines of at most `width` points at blanks (or, for words that are
    /// too long, anywhere), at most `maxLines` of them, the last one cut with an ellipsis.
    QStringList wrap(FontRole role, const QString& text, double width, int maxLines) const;

    /// A size in points of one of the roles.
    static double pointSize(const ReportDefinition& def, FontRole role);

private:
    std::vector<QFont> fonts_;
    std::vector<QFontMetricsF> metrics_;
    double toPoints_;
};

/// The resolution on which reports are laid out.
inline constexpr double kLayoutDpi = 1200.0;

} // namespace qi
