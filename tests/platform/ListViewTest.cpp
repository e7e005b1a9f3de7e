// List views in report mode: columns that sort as what they hold, a click on a
// heading, and the windows' sizes and column widths kept between runs.

#include "ListView.h"
#include "WindowState.h"

#include "TestSupport.h"

#include <QApplication>
#include <QHeaderView>
#include <QSettings>
#include <QTreeWidget>

namespace qi {
namespace {

QApplication& app() { return test::qtApplication(); }

QStringList column(const QTreeWidget& view, int c)
{
    QStringList out;
    for (int i = 0; i < view.topLevelItemCount(); ++i)
        out << view.topLevelItem(i)->text(c);
    return out;
}

TEST(ListView, DatesSortAsDates)
{
    EXPECT_LT(compareCellTexts(QStringLiteral("31.12.2024"), QStringLiteral("01.01.2025")), 0);
    EXPECT_GT(compareCellTexts(QStringLiteral("02.03.2025"), QStringLiteral("14.02.2025")), 0);
    EXPECT_LT(compareCellTexts(QStringLiteral("14.02.2025 08:00:00"), QStringLiteral("14.02.2025 10:30:00")), 0);
    EXPECT_EQ(compareCellTexts(QStringLiteral("1.2.2025"), QStringLiteral("01.02.2025")), 0);
}

TEST(ListView, NumbersSortAsNumbers)
{
    EXPECT_LT(compareCellTexts(QStringLiteral("9"), QStringLiteral("10")), 0);
    EXPECT_LT(compareCellTexts(QStringLiteral("-3"), QStringLiteral("2")), 0);
    EXPECT_LT(compareCellTexts(QStringLiteral("2,5"), QStringLiteral("10")), 0);
}

TEST(ListView, TextsSortAlphabeticallyWithTheirNumbersInOrder)
{
    app();
    EXPECT_LT(compareCellTexts(QStringLiteral("E0.2"), QStringLiteral("E0.10")), 0);
    EXPECT_LT(compareCellTexts(QStringLiteral("alpha"), QStringLiteral("Beta")), 0);
    EXPECT_LT(compareCellTexts(QStringLiteral("Äpfel"), QStringLiteral("Birnen")), 0);
    // Empty cells first.
    EXPECT_LT(compareCellTexts(QString(), QStringLiteral("1")), 0);
    EXPECT_GT(compareCellTexts(QStringLiteral("a"), QStringLiteral(" ")), 0);
}

class ListViewTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        app();
        setUpListView(view, {QStringLiteral("Raum"), QStringLiteral("Datum"), QStringLiteral("Anzahl")});
        add("R10", "02.03.2025", "9");
        add("R9", "14.02.2025", "10");
        add("R100", "01.01.2024", "2");
    }
    void add(const char* a, const char* b, const char* c)
    {
        auto* item = new ListViewItem(&view);
        item->setText(0, QString::fromUtf8(a));
        item->setText(1, QString::fromUtf8(b));
        item->setText(2, QString::fromUtf8(c));
    }
    void click(int c) { emit view.header()->sectionClicked(c); }
    QApplication& application = app(); // before the first widget
    QTreeWidget view;
};

TEST_F(ListViewTest, KeepsItsOrderUntilAHeadingIsClicked)
{
    EXPECT_EQ(column(view, 0), (QStringList{"R10", "R9", "R100"}));
    EXPECT_EQ(sortColumn(view), -1);
    EXPECT_FALSE(view.header()->isSortIndicatorShown());
    EXPECT_EQ(view.headerItem()->text(1), QStringLiteral("Datum"));
}

TEST_F(ListViewTest, ClickOnAHeadingSortsASecondClickReverses)
{
    click(2);
    EXPECT_EQ(column(view, 2), (QStringList{"2", "9", "10"}));
    EXPECT_EQ(sortColumn(view), 2);
    EXPECT_TRUE(view.header()->isSortIndicatorShown());
    click(2);
    EXPECT_EQ(column(view, 2), (QStringList{"10", "9", "2"}));
    click(1);
    EXPECT_EQ(column(view, 1), (QStringList{"01.01.2024", "14.02.2025", "02.03.2025"}));
    click(0);
    EXPECT_EQ(column(view, 0), (QStringList{"R9", "R10", "R100"}));
}

TEST_F(ListViewTest, ListFilledAnewIsSortedAgainByTheLastHeading)
{
    click(2);
    click(2);
    add("R1", "01.01.2020", "50");
    sortAgain(view);
    EXPECT_EQ(column(view, 2), (QStringList{"50", "10", "9", "2"}));
}

TEST(WindowState, SizeAndColumnWidthsAreKeptBetweenRuns)
{
    app();
    QSettings().remove(QStringLiteral("Fenster/Probe"));
    {
        QWidget window;
        QTreeWidget list(&window);
        list.setObjectName(QStringLiteral("lvProbe"));
        list.setColumnCount(3);
        EXPECT_FALSE(restoreWindowState(window, QStringLiteral("Probe"), {&list}));
        window.resize(640, 480);
        list.setColumnWidth(0, 123);
        list.setColumnWidth(1, 45);
        saveWindowState(window, QStringLiteral("Probe"), {&list});
    }
    QWidget window;
    QTreeWidget list(&window);
    list.setObjectName(QStringLiteral("lvProbe"));
    list.setColumnCount(3);
    window.resize(200, 100);
    EXPECT_TRUE(restoreWindowState(window, QStringLiteral("Probe"), {&list}));
    EXPECT_EQ(window.size(), QSize(640, 480));
    EXPECT_EQ(list.columnWidth(0), 123);
    EXPECT_EQ(list.columnWidth(1), 45);
    // Kept in the test's own settings, not in those of the program.
    EXPECT_EQ(QCoreApplication::organizationName(), QStringLiteral("QInventur-Test"));
}

} // namespace
} // namespace qi
