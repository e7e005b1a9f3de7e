#include "ListView.h"

#include <QCollator>
#include <QDateTime>
#include <QHeaderView>
#include <QLocale>
#include <QRegularExpression>

#include <optional>

namespace qi {

namespace {

constexpr const char* kSortColumn = "qiSortColumn";
constexpr const char* kSortOrder = "qiSortOrder";

/// "dd.mm.yyyy" or "dd.mm.yyyy hh:mm[:ss]" as one number (days and seconds), or nothing.
std::optional<qint64> dateValue(const QString& text)
{
    static const QRegularExpression re(
        QStringLiteral(R"(^\s*(\d{1,2})\.(\d{1,2})\.(\d{4})(?:\s+(\d{1,2}):(\d{2})(?::(\d{2}))?)?\s*$)"));
    const QRegularExpressionMatch m = re.match(text);
    if (!m.hasMatch())
        return std::nullopt;
    const QDate date(m.captured(3).toInt(), m.captured(2).toInt(), m.captured(1).toInt());
    if (!date.isValid())
        return std::nullopt;
    qint64 seconds = 0;
    if (m.lastCapturedIndex() >= 5)
        seconds = m.captured(4).toInt() * 3600 + m.captured(5).toInt() * 60 + m.captured(6).toInt();
    return date.toJulianDay() * 86400 + seconds;
}

/// A whole number or a decimal number (point or comma), or nothing.
std::optional<double> numberValue(const QString& text)
{
    static const QRegularExpression re(QStringLiteral(R"(^\s*[-+]?\d+(?:[.,]\d+)?\s*$)"));
    if (!re.match(text).hasMatch())
        return std::nullopt;
    QString s = text.trimmed();
    s.replace(QLatin1Char(','), QLatin1Char('.'));
    bool ok = false;
    const double v = s.toDouble(&ok);
    return ok ? std::optional<double>(v) : std::nullopt;
}

const QCollator& collator()
{
    static const QCollator c = [] {
        QCollator k(QLocale(QLocale::German, QLocale::Germany));
        k.setNumericMode(true);
        k.setCaseSensitivity(Qt::CaseInsensitive);
        return k;
    }();
    return c;
}

template <class T>
int threeWay(T a, T b)
{
    return a < b ? -1 : b < a ? 1 : 0;
}

} // namespace

int compareCellTexts(const QString& a, const QString& b)
{
    // Empty cells come first whatever the column holds.
    if (a.trimmed().isEmpty() || b.trimmed().isEmpty())
        return threeWay(!a.trimmed().isEmpty(), !b.trimmed().isEmpty());
    if (const auto da = dateValue(a), db = dateValue(b); da && db)
        return threeWay(*da, *db);
    if (const auto na = numberValue(a), nb = numberValue(b); na && nb)
        return threeWay(*na, *nb);
    if (const int c = collator().compare(a, b); c != 0)
        return c;
    return QString::compare(a, b);
}

bool ListViewItem::operator<(const QTreeWidgetItem& other) const
{
    const QTreeWidget* view = treeWidget();
    const int column = view ? view->sortColumn() : 0;
    const int c = compareCellTexts(text(column), other.text(column));
    if (c != 0)
        return c < 0;
    // Equal cells keep the order of the first column, so that a sort is always the same.
    return column != 0 && compareCellTexts(text(0), other.text(0)) < 0;
}

void setUpListView(QTreeWidget& view, const QStringList& headings)
{
    view.setRootIsDecorated(false);
    view.setItemsExpandable(false);
    view.setUniformRowHeights(true);
    view.setAllColumnsShowFocus(true);
    view.setAlternatingRowColors(true);
    view.setColumnCount(int(headings.size()));
    view.setHeaderLabels(headings);
    QHeaderView* header = view.header();
    header->setStretchLastSection(true);
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(false);
    QObject::connect(header, &QHeaderView::sectionClicked, &view, [&view](int column) {
        const QVariant last = view.property(kSortColumn);
        Qt::SortOrder order = Qt::AscendingOrder;
        if (last.isValid() && last.toInt() == column &&
            Qt::SortOrder(view.property(kSortOrder).toInt()) == Qt::AscendingOrder)
            order = Qt::DescendingOrder;
        view.setProperty(kSortColumn, column);
        view.setProperty(kSortOrder, int(order));
        view.header()->setSortIndicatorShown(true);
        view.header()->setSortIndicator(column, order);
        view.sortItems(column, order);
    });
}

void sortAgain(QTreeWidget& view)
{
    const QVariant column = view.property(kSortColumn);
    if (!column.isValid())
        return;
    view.sortItems(column.toInt(), Qt::SortOrder(view.property(kSortOrder).toInt()));
}

int sortColumn(const QTreeWidget& view)
{
    const QVariant column = view.property(kSortColumn);
    return column.isValid() ? column.toInt() : -1;
}

void setColumnShares(QTreeWidget& view, const std::vector<double>& shares)
{
    const int width = view.viewport()->width() > 50 ? view.viewport()->width() : view.width();
    for (std::size_t i = 0; i + 1 < shares.size() && int(i) + 1 < view.columnCount(); ++i)
        view.setColumnWidth(int(i), int(width * shares[i]));
}

} // namespace qi
