#pragma once
// The building-structure tree of Quarn: sites, buildings and floors of a
// GebStruktur as a tree (rooms are listed beside it, not in it, unless asked for).
// Each item carries its node's id and type; the tree answers the selected node
// and signals a click on an item.

#include "QuarnHost.h"

#include <QTreeWidget>

#include <cstdint>
#include <optional>

namespace qi {

class QTreeGebStruCtrl : public QTreeWidget {
    Q_OBJECT
public:
    explicit QTreeGebStruCtrl(QWidget* parent = nullptr);

    /// Room nodes (type 4) appear in the tree too; off by default. Takes effect with the next SetGebStruktur.
    void SetShowRooms(bool show) { showRooms_ = show; }
    /// Shows the structure, replacing what was shown; sites and buildings are expanded.
    /// A node whose parent is unknown (or that would be its own ancestor) is shown at the top.
    void SetGebStruktur(const GebStruktur& structure);
    /// The node of the selected item, or nothing when none is selected.
    std::optional<GebNode> SelectedNode() const;
    /// Selects the item of the node; false when the node is not shown.
    bool SelectNode(std::int32_t nodeId);
    /// The item of a node, or null.
    QTreeWidgetItem* ItemOfNode(std::int32_t nodeId) const;
    /// The node an item stands for.
    static GebNode NodeOfItem(const QTreeWidgetItem* item);

signals:
    /// The user clicked an item (the selection is already updated).
    void Click();

private:
    bool showRooms_ = false;
};

} // namespace qi
