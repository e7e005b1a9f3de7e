#include "QTreeGebStruCtrl.h"

#include <QHeaderView>

#include <unordered_map>
#include <unordered_set>

namespace qi {

namespace {
enum Role { IdRole = Qt::UserRole, ParentRole, TypeRole, NrRole, NameRole };
}

QTreeGebStruCtrl::QTreeGebStruCtrl(QWidget* parent) : QTreeWidget(parent)
{
    setColumnCount(1);
    header()->hide();
    setSelectionMode(QAbstractItemView::SingleSelection);
    connect(this, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem*, int) { emit Click(); });
}

void QTreeGebStruCtrl::SetGebStruktur(const GebStruktur& structure)
{
    clear();
    std::unordered_map<std::int32_t, const GebNode*> nodes;
    for (const GebNode& n : structure.nodes)
        if (showRooms_ || n.byTyp != 4)
            nodes.emplace(n.lId, &n); // the first node of an id counts
    std::unordered_map<std::int32_t, QTreeWidgetItem*> items;
    for (const GebNode& n : structure.nodes) {
        if (nodes.count(n.lId) == 0 || nodes.at(n.lId) != &n)
            continue;
        auto* item = new QTreeWidgetItem;
        const QString nr = QString::fromStdString(n.stNr).trimmed();
        const QString name = QString::fromStdString(n.stBezeichnung).trimmed();
        item->setText(0, nr.isEmpty() ? name : name.isEmpty() ? nr : nr + QStringLiteral(" ") + name);
        item->setData(0, IdRole, n.lId);
        item->setData(0, ParentRole, n.lParentId);
        item->setData(0, TypeRole, n.byTyp);
        item->setData(0, NrRole, QString::fromStdString(n.stNr));
        item->setData(0, NameRole, QString::fromStdString(n.stBezeichnung));
        items.emplace(n.lId, item);
    }
    // A node goes under its parent unless the parent is unknown or the chain of parents runs in a circle.
    const auto hangsInACircle = [&](std::int32_t id) {
        std::unordered_set<std::int32_t> seen{id};
        for (auto it = nodes.find(nodes.at(id)->lParentId); it != nodes.end(); it = nodes.find(it->second->lParentId))
            if (!seen.insert(it->first).second)
                return true;
        return false;
    };
    for (const GebNode& n : structure.nodes) {
        const auto own = items.find(n.lId);
        if (own == items.end() || nodes.at(n.lId) != &n)
            continue;
        const auto parent = items.find(n.lParentId);
        if (parent != items.end() && n.lParentId != n.lId && !hangsInACircle(n.lId))
            parent->second->addChild(own->second);
        else
            addTopLevelItem(own->second);
    }
    // Sites and buildings open, so that the floors are in view.
    expandToDepth(1);
}

std::optional<GebNode> QTreeGebStruCtrl::SelectedNode() const
{
    const auto selected = selectedItems();
    if (selected.isEmpty())
        return std::nullopt;
    return NodeOfItem(selected.front());
}

QTreeWidgetItem* QTreeGebStruCtrl::ItemOfNode(std::int32_t nodeId) const
{
    for (QTreeWidgetItemIterator it(const_cast<QTreeGebStruCtrl*>(this)); *it; ++it)
        if ((*it)->data(0, IdRole).toInt() == nodeId)
            return *it;
    return nullptr;
}

bool QTreeGebStruCtrl::SelectNode(std::int32_t nodeId)
{
    QTreeWidgetItem* item = ItemOfNode(nodeId);
    if (!item)
        return false;
    clearSelection();
    setCurrentItem(item);
    item->setSelected(true);
    scrollToItem(item);
    return true;
}

GebNode QTreeGebStruCtrl::NodeOfItem(const QTreeWidgetItem* item)
{
    GebNode n;
    if (!item)
        return n;
    n.lId = item->data(0, IdRole).toInt();
    n.lParentId = item->data(0, ParentRole).toInt();
    n.byTyp = item->data(0, TypeRole).toInt();
    n.stNr = item->data(0, NrRole).toString().toStdString();
    n.stBezeichnung = item->data(0, NameRole).toString().toStdString();
    return n;
}

} // namespace qi
