#include "CInventurDb.h"
#include "QtListControl.h"
#include "TestSupport.h"

#include <QApplication>
#include <QListWidget>

using namespace qi;

TEST(QtListControl, RegisterFillsAQtListWithNamesAndIds)
{
    test::qtApplication();
    test::TempDir dir;
    test::makeRegisterDatabase(dir.file("QInventur.mdb"));
    CInventurDb reg;
    reg.setDbPath(dir.file("QInventur.mdb"));
    ASSERT_TRUE(reg.OpenDb());
    for (const char* name : {"Nord", "Süd"}) {
        CAuftragRec r;
        r.stBezeichung = name;
        ASSERT_TRUE(reg.AddNewAuftragRec(&r));
    }
    QListWidget list;
    list.addItem(QStringLiteral("schon da"));
    QtListControl ctrl(list);
    ASSERT_TRUE(reg.ReadAllAuftragRec2Ctrl(ctrl)) << reg.LastError();
    ASSERT_EQ(list.count(), 3);
    EXPECT_EQ(list.item(1)->text(), QStringLiteral("Nord"));
    EXPECT_EQ(list.item(2)->text(), QStringLiteral("Süd"));
    EXPECT_EQ(ctrl.itemData(0), 0);
    EXPECT_EQ(ctrl.itemData(1), 1);
    EXPECT_EQ(ctrl.itemData(2), 2);
    EXPECT_EQ(ctrl.itemData(7), 0);
}
