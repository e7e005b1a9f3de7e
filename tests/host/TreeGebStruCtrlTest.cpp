// The building-structure tree: what it shows, the selected node and the click.

#include "DemoInstallation.h"
#include "QTreeGebStruCtrl.h"

#include <gtest/gtest.h>

#include "TestSupport.h"

#include <QApplication>
#include <QMouseEvent>

namespace qi {
namespace {

QApplication& app() { return test::qtApplication(); }

class TreeTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        app();
        const auto inst = demo::buildInstallation(demo::smallSizes());
        for (const auto& n : inst.nodes)
            structure.nodes.push_back(GebNode{n.id, n.parentId, n.typ, n.nr, n.name});
        for (const auto& n : inst.nodes)
            if (n.typ == 3 && floorId == 0)
                floorId = n.id;
    }
    GebStruktur structure;
    std::int32_t floorId = 0;
};

TEST_F(TreeTest, ShowsSitesBuildingsAndFloorsButNoRooms)
{
    QTreeGebStruCtrl tree;
    tree.SetGebStruktur(structure);
    int shown = 0, rooms = 0;
    for (QTreeWidgetItemIterator it(&tree); *it; ++it) {
        ++shown;
        rooms += QTreeGebStruCtrl::NodeOfItem(*it).byTyp == 4;
    }
    int expected = 0;
    for (const auto& n : structure.nodes)
        expected += n.byTyp != 4;
    EXPECT_EQ(shown, expected);
    EXPECT_EQ(rooms, 0);
    ASSERT_EQ(tree.topLevelItemCount(), 1);
    EXPECT_EQ(tree.topLevelItem(0)->text(0).toStdString(), "L1 Verwaltungszentrum Nord");
    // A floor hangs under its building, which hangs under its site.
    const auto* floor = tree.ItemOfNode(floorId);
    ASSERT_NE(floor, nullptr);
    EXPECT_EQ(floor->text(0).toStdString(), "EG Erdgeschoss");
    EXPECT_EQ(QTreeGebStruCtrl::NodeOfItem(floor->parent()).byTyp, 2);
    EXPECT_EQ(floor->parent()->parent(), tree.topLevelItem(0));
}

TEST_F(TreeTest, SitesAndBuildingsAreOpenSoThatTheFloorsAreInView)
{
    QTreeGebStruCtrl tree;
    tree.SetGebStruktur(structure);
    int floors = 0;
    for (QTreeWidgetItemIterator it(&tree); *it; ++it) {
        const int typ = QTreeGebStruCtrl::NodeOfItem(*it).byTyp;
        if (typ == 1 || typ == 2) {
            EXPECT_TRUE((*it)->isExpanded()) << (*it)->text(0).toStdString();
        }
        if (typ == 3) {
            ++floors;
            // Every ancestor of a floor is open.
            for (const QTreeWidgetItem* p = (*it)->parent(); p; p = p->parent())
                EXPECT_TRUE(p->isExpanded());
        }
    }
    EXPECT_GT(floors, 1);
}

TEST_F(TreeTest, RoomsCanBeShownToo)
{
    QTreeGebStruCtrl tree;
    tree.SetShowRooms(true);
    tree.SetGebStruktur(structure);
    const auto* floor = tree.ItemOfNode(floorId);
    ASSERT_NE(floor, nullptr);
    EXPECT_EQ(floor->childCount(), demo::smallSizes().roomsPerFloor);
}

TEST_F(TreeTest, NothingSelectedAnswersNone)
{
    QTreeGebStruCtrl tree;
    EXPECT_FALSE(tree.SelectedNode().has_value());
    tree.SetGebStruktur(structure);
    tree.clearSelection();
    EXPECT_FALSE(tree.SelectedNode().has_value());
}

TEST_F(TreeTest, SelectedNodeAnswersTypeAndId)
{
    QTreeGebStruCtrl tree;
    tree.SetGebStruktur(structure);
    ASSERT_TRUE(tree.SelectNode(floorId));
    const auto node = tree.SelectedNode();
    ASSERT_TRUE(node.has_value());
    EXPECT_EQ(node->lId, floorId);
    EXPECT_EQ(node->byTyp, 3);
    EXPECT_EQ(node->stNr, "EG");
    EXPECT_FALSE(tree.SelectNode(987654));
}

TEST_F(TreeTest, ClickOnAnItemSignalsClickWithTheItemSelected)
{
    QTreeGebStruCtrl tree;
    tree.resize(400, 600);
    tree.SetGebStruktur(structure);
    tree.show();
    int clicks = 0;
    QObject::connect(&tree, &QTreeGebStruCtrl::Click, [&] { ++clicks; });
    auto* item = tree.ItemOfNode(floorId);
    ASSERT_NE(item, nullptr);
    tree.scrollToItem(item);
    const QPointF pos = tree.visualItemRect(item).center();
    const QPointF global = tree.viewport()->mapToGlobal(pos);
    QMouseEvent press(QEvent::MouseButtonPress, pos, global, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QMouseEvent release(QEvent::MouseButtonRelease, pos, global, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(tree.viewport(), &press);
    QApplication::sendEvent(tree.viewport(), &release);
    EXPECT_EQ(clicks, 1);
    ASSERT_TRUE(tree.SelectedNode().has_value());
    EXPECT_EQ(tree.SelectedNode()->lId, floorId);
}

TEST_F(TreeTest, NewStructureReplacesTheOld)
{
    QTreeGebStruCtrl tree;
    tree.SetGebStruktur(structure);
    tree.SetGebStruktur(GebStruktur{{GebNode{1, 0, 1, "X", "Nur eine"}}});
    EXPECT_EQ(tree.topLevelItemCount(), 1);
    EXPECT_EQ(tree.topLevelItem(0)->childCount(), 0);
    tree.SetGebStruktur(GebStruktur{});
    EXPECT_EQ(tree.topLevelItemCount(), 0);
    EXPECT_FALSE(tree.SelectedNode().has_value());
}

TEST_F(TreeTest, BrokenStructuresAreShownWithoutHanging)
{
    QTreeGebStruCtrl tree;
    // Unknown parent, a node that is its own parent, a circle of two and a doubled id.
    tree.SetGebStruktur(GebStruktur{{GebNode{1, 99, 1, "A", "verwaist"}, GebNode{2, 2, 2, "B", "selbst"},
                                     GebNode{3, 4, 3, "C", "Kreis"}, GebNode{4, 3, 3, "D", "Kreis"},
                                     GebNode{5, 1, 2, "E", "Kind"}, GebNode{5, 1, 2, "E2", "doppelt"}}});
    int shown = 0;
    for (QTreeWidgetItemIterator it(&tree); *it; ++it)
        ++shown;
    EXPECT_EQ(shown, 5);
    EXPECT_EQ(tree.ItemOfNode(5)->parent(), tree.ItemOfNode(1));
    EXPECT_EQ(tree.ItemOfNode(2)->parent(), nullptr);
    EXPECT_TRUE(tree.ItemOfNode(3)->parent() == nullptr || tree.ItemOfNode(4)->parent() == nullptr);
}

} // namespace
} // namespace qi
