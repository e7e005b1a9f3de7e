#include "ReportTypography.h"

#include <QImage>

#include <cmath>

namespace qi {

namespace {

QImage deviceOf(double dpi)
{
    QImage image(1, 1, QImage::Format_ARGB32);
    const int dotsPerMeter = int(std::lround(dpi / 0.0254));
    image.setDotsPerMeterX(dotsPerMeter);
    image.setDotsPerMeterY(dotsPerMeter);
    return image;
}

bool isBreakChar(QChar c) { return c == QLatin1Char(' ') || c == QLatin1Char('\t'); }

} // namespace

double Typography::pointSize(const ReportDefinition& def, FontRole role)
{
    const double body = def.fontSize;
    switch (role) {
    case FontRole::Group:
        return body + 1.5;
    case FontRole::SubGroup:
        return body + 0.5;
    case FontRole::Title:
        return body * 2.0;
    case FontRole::Small:
    case FontRole::SmallBold:
        return body - 1.0;
    default:
        return body;
    }
}

Typography::Typography(const ReportDefinition& def, double dpi, double unitsPerPoint, bool hinted)
    : toPoints_(1.0 / unitsPerPoint)
{
    const QImage device = deviceOf(dpi);
    const double toFontPoints = unitsPerPoint * 72.0 / double(device.logicalDpiY());
    for (std::size_t r = 0; r < std::size_t(FontRole::Count); ++r) {
        const auto role = FontRole(r);
        QFont f;
        f.setFamilies({QStringLiteral("Liberation Sans"), QStringLiteral("Arial"), QStringLiteral("Helvetica"),
                       QStringLiteral("DejaVu Sans")});
        f.setStyleHint(QFont::SansSerif);
        f.setPointSizeF(pointSize(def, role) * toFontPoints);
        // Screens hint only vertically: texts keep the widths they were laid out with.
        f.setHintingPreference(hinted ? QFont::PreferVerticalHinting : QFont::PreferNoHinting);
        f.setKerning(false);
        // Latin text needs no shaping: glyphs are placed by their advances, which is also much faster.
        f.setStyleStrategy(QFont::PreferNoShaping);
        f.setBold(role == FontRole::Bold || role == FontRole::Group || role == FontRole::SubGroup ||
                  role == FontRole::Title || role == FontRole::SmallBold);
        f.setItalic(role == FontRole::Italic);
        fonts_.push_back(f);
        metrics_.emplace_back(f, &device);
    }
}

QString Typography::elided(FontRole role, const QString& text, double width) const
{
    if (advance(role, text) <= width)
        return text;
    return metrics_[std::size_t(role)].elidedText(text, Qt::ElideRight, std::max(0.0, width / toPoints_));
}

QStringList Typography::wrap(FontRole role, const QString& text, double width, int maxLines) const
{
    QStringList lines;
    const QFontMetricsF& fm = metrics_[std::size_t(role)];
    const double limit = width / toPoints_;
    for (const QString& paragraph : text.split(QLatin1Char('\n'))) {
        QString line;
        double lineWidth = 0;
        auto push = [&] {
            while (line.endsWith(QLatin1Char(' ')))
                line.chop(1);
            lines.push_back(line);
            line.clear();
            lineWidth = 0;
        };
        // A word wider than a line: as many characters as fit on each line; the last
        // piece stays on the line being filled.
        auto breakWord = [&](const QString& word) {
            for (qsizetype k = 0; k < word.size();) {
                qsizetype take = 1;
                while (k + take < word.size() && fm.horizontalAdvance(word.mid(k, take + 1)) <= limit)
                    ++take;
                line = word.mid(k, take);
                lineWidth = fm.horizontalAdvance(line);
                k += take;
                if (k < word.size())
                    push();
            }
        };
        const qsizetype n = paragraph.size();
        qsizetype i = 0;
        while (i < n) {
            const qsizetype start = i;
            while (i < n && isBreakChar(paragraph[i]))
                ++i;
            const qsizetype wordStart = i;
            while (i < n && !isBreakChar(paragraph[i]))
                ++i;
            if (wordStart == i)
                break; // blanks at the end
            const QString word = paragraph.mid(wordStart, i - wordStart);
            const double wordWidth = fm.horizontalAdvance(word);
            if (!line.isEmpty()) {
                const QString spaces = paragraph.mid(start, wordStart - start);
                const double spaceWidth = fm.horizontalAdvance(spaces);
                if (lineWidth + spaceWidth + wordWidth <= limit) {
                    line += spaces + word;
                    lineWidth += spaceWidth + wordWidth;
                    continue;
                }
                push();
            }
            if (wordWidth <= limit) {
                line = word;
                lineWidth = wordWidth;
            } else {
                breakWord(word);
            }
        }
        push();
    }
    if (maxLines > 0 && lines.size() > maxLines) {
        const QString rest = lines.mid(maxLines - 1).join(QLatin1Char(' '));
        lines.resize(maxLines - 1);
        lines.push_back(fm.elidedText(rest, Qt::ElideRight, limit));
    }
    return lines;
}

} // namespace qi
