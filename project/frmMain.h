#pragma once
// The program's start window: the orders of the current project in a list,
// creating, deleting and opening orders, help and the About box. It owns the
// objects that start-up creates (order register, Quarn components), the list of
// orders, the current-order record and the database of the open order.

#include "CInventurDb.h"
#include "ProjectLock.h"
#include "QuarnHost.h"
#include "RecColl.h"
#include "Settings.h"
#include "OrderWindow.h"
#include "Orders.h"
#include "ProgramFolder.h"
#include "UserInteraction.h"

#include <QMainWindow>
#include <QPointer>

#include <map>
#include <memory>
#include <string>

class QAction;
class QDialog;
class QLabel;
class QMenu;
class QTreeWidget;
class QTreeWidgetItem;

namespace qi {

class CAuftragDb;

/// Menu indexes of the file and help menus.
namespace menuindex {
inline constexpr int NewOrder = 100;
inline constexpr int DeleteOrder = 300;
inline constexpr int Quit = 600;
inline constexpr int HelpContents = 100;
inline constexpr int About = 500;
} // namespace menuindex

class frmMain : public QMainWindow {
    Q_OBJECT
public:
    /// The window for the program folder `programFolder` (no trailing separator);
    /// everything shown to the user goes through `ui`. Form_Load runs the start-up.
    frmMain(UserInteraction& ui, std::string programFolder, QWidget* parent = nullptr);
    /// The window of a program whose writable files may lie in the user's own program folder
    /// (ProgramFolder.h); the help and the template are the installation's.
    frmMain(UserInteraction& ui, ProgramFolders folders, QWidget* parent = nullptr);
    ~frmMain() override;

    /// Start-up: caption, settings, register and Quarn components, then the order list.
    void Form_Load();
    /// Refills the order list from the register; the last order becomes the current-order record.
    void InitAuftraege();
    /// An entry was selected: its order becomes the current-order record.
    void lvAuftraege_ItemClick(QTreeWidgetItem* item);
    /// Opens the selected order in the work window; does nothing without a selection.
    void lvAuftraege_DblClick();
    /// File menu: 100 new order, 300 delete the selected order, 600 close the window.
    void mnuDateiFkt_Click(int index);
    /// Help menu: 100 help contents, 500 About box.
    void mnuHelpFkt_Click(int index);
    /// Releases the order database once the work window has finished with it.
    void Form_Paint();
    /// Writes the current order back, releases the objects and closes the work window.
    void Form_Unload();
    /// Runs the new-order dialog and creates the order with its database.
    void MakeNewOrder();

    /// False while an order is open in the work window (the window is out of use).
    bool isActiveState() const { return active_; }
    /// Switches the window in and out of use.
    void setActiveState(bool active);

    Settings& settings() { return settings_; }
    /// Every exchange with the user goes through it.
    UserInteraction& userInteraction() { return ui_; }
    CInventurDb* inventurDb() { return inventurDb_.get(); }
    CAuftragRecColl& auftraege() { return collAuftraege_; }
    /// The current-order record, or null when there is none.
    CAuftragRec* currentOrder() { return recAuftrag_; }
    /// The per-order database object, or null when released.
    CAuftragDb* orderDb() { return dbAuftrag_.get(); }
    /// The work window of the open order, or null.
    OrderWindow* workWindow() { return workWindow_.data(); }
    /// Plugs in the window that an opened order is shown in (the program's work window).
    void setOrderWindowFactory(OrderWindowFactory factory) { orderWindowFactory_ = std::move(factory); }
    QGebDb* gebDb() { return gebDb_.get(); }
    QObjektDb* objektDb() { return objektDb_.get(); }
    /// The program's help file: program folder + "\QInventur.html".
    std::string helpFile() const;

    QTreeWidget* lvAuftraege;
    QLabel* Label1;
    /// In the status bar while the project is read-only: why.
    QLabel* lbNurAnsehen = nullptr;
    QMenu* mnuDatei;
    QMenu* mnuHelp;
    std::map<int, QAction*> mnuDateiFkt;
    std::map<int, QAction*> mnuHelpFkt;

signals:
    /// The order list was filled anew from the register (also when it stayed empty).
    void ordersListed();
    /// The work window of an opened order was unloaded; this window is in use again.
    void orderWindowUnloaded();

protected:
    /// Shows a dialog modally; tests replace it to play the user.
    virtual void runModal(QDialog& dialog);
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildWindow();
    /// Name, stamps and employee of an order in its list entry.
    static void showOrder(QTreeWidgetItem& item, const CAuftragRec& rec);
    /// The list's entries anew from the register records in memory (the entries stay, with
    /// their selection and the columns others add).
    void showOrdersAgain();
    /// Order name and employee from the new-order dialog (empty name when cancelled).
    std::pair<std::string, std::string> askNewOrder();
    void deleteSelectedOrder();
    /// The record of a list entry ("A " + lID), or null.
    CAuftragRec* recordOfItem(const QTreeWidgetItem* item);
    QTreeWidgetItem* selectedItem() const;
    /// Makes the current-order record a record of its own before the list is read again.
    void detachCurrent();
    void setCurrent(CAuftragRec* rec);
    void newCurrent();
    void closeWorkWindow();
    /// Shows that the project is read-only: the commands that change it are out of use.
    void showReadOnly();

    UserInteraction& ui_;
    ProgramFolders folders_;
    Settings settings_;
    /// Held while this program works on the project (null when it may only look).
    std::shared_ptr<ProjectLock> projectLock_;
    std::unique_ptr<CInventurDb> inventurDb_;
    std::unique_ptr<QGebDb> gebDb_;
    std::unique_ptr<QObjektDb> objektDb_;
    CAuftragRecColl collAuftraege_;
    CAuftragRec* recAuftrag_ = nullptr;
    std::unique_ptr<CAuftragRec> ownRec_;
    std::unique_ptr<CAuftragDb> dbAuftrag_;
    OrderWindowFactory orderWindowFactory_;
    QPointer<OrderWindow> workWindow_;
    bool active_ = true;
    bool unloaded_ = false;
};

} // namespace qi
