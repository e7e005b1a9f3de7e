#pragma once
// List views in report mode as every window of the program shows them: columns
// sort by a click on their heading (a second click reverses the order), and each
// column sorts as what it holds: dates ("dd.mm.yyyy", with or without a time) as
// dates, numbers as numbers, texts alphabetically with the numbers inside them in
// their numeric order ("E0.2" before "E0.10"). Until the first click a list keeps
// the order in which its items were added.

#include <QTreeWidget>
#include <QTreeWidgetItem>

#include <vector>

class QString;

namespace qi {

/// Compares two cell texts as a sorted column does: negative, 0 or positive.
int compareCellTexts(const QString& a, const QString& b);

/// An item whose columns sort as described above.
class ListViewItem : public QTreeWidgetItem {
public:
    using QTreeWidgetItem::QTreeWidgetItem;
    bool operator<(const QTreeWidgetItem& other) const override;
};

/// Sets up `view` as a list in report mode: one row per item, whole rows selected,
/// headings that sort on a click.
void setUpListView(QTreeWidget& view, const QStringList& headings);
/// Sorts the list again by the heading last clicked (after it was filled anew); nothing before the first click.
void sortAgain(QTreeWidget& view);
/// The column the list is sorted by, or -1 while it keeps its order.
int sortColumn(const QTreeWidget& view);

/// Column widths as parts of the list's width (they need not add up to 1; the last
/// column fills what is left).
void setColumnShares(QTreeWidget& view, const std::vector<double>& shares);

} // namespace qi
