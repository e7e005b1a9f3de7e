#pragma once
// The work window of one order: the rooms of the order (lvRooms) above the
// scanner data files added to it (lvDateien), the buttons of the file list and
// the room selection, and the menus "&Datei", "&Berichte" and
// "&Fehlerlisten (Auftragsbereich)". Every command is a procedure of frmWork;
// the window shows what the procedures leave in lvRooms and lvDateien.

#include "OrderWindow.h"
#include "frmWork.h"

#include <QPointer>

#include <functional>
#include <map>

class QDialog;
class QLabel;
class QMenu;
class QAction;
class QPushButton;
class QSplitter;
class QTreeWidget;

namespace qi {

/// What the work window hands the room selection of its order.
struct RoomSelectionRequest {
    CAuftragDb& db;
    QGebDb* gebDb;
    Settings& settings;
    UserInteraction& ui;
    QWidget* owner;
};

/// Loads the room selection window (not yet shown) and has it read the order's rooms.
using RoomWindowFactory = std::function<QDialog*(const RoomSelectionRequest&)>;

/// Menu indexes of the file menu "&Datei".
namespace workmenu {
inline constexpr int Raeume = 100;
inline constexpr int Archiv = 200;
inline constexpr int Separator = 444;
inline constexpr int Beenden = 500;
} // namespace workmenu

class frmWorkWindow : public OrderWindow {
    Q_OBJECT
public:
    /// The window of the order in `db` (open); `owner` is the main window.
    frmWorkWindow(CAuftragDb& db, Settings& settings, UserInteraction& ui, QWidget* owner);
    ~frmWorkWindow() override;

    bool Init() override;
    void setGebDb(QGebDb* gebDb) override;
    /// Plugs in the room selection window.
    void setRoomWindowFactory(RoomWindowFactory factory) { roomWindowFactory_ = std::move(factory); }

    /// The procedures and what the lists show.
    frmWork& form() { return form_; }

    /// Activation: Init, the headings of lvRooms, InitData.
    void Form_Activate();
    /// File menu: 100 room selection, 200 archive of the scan data, 500 close the window.
    void mnuDateiFkt_Click(int index);
    /// "&Berichte" and "&Fehlerlisten (Auftragsbereich)".
    void mnuReportFkt_Click(int index);
    void mnuFehlerFkt_Click(int index);
    /// Unloads the window: the room selection goes, the order database is closed.
    void Unload();

    /// The room selection while it is open, else null.
    QDialog* roomWindow() const { return roomWindow_.data(); }

    QLabel* lbRoomsLabel;
    QTreeWidget* lvRooms;
    QLabel* lbDateienLabel;
    QTreeWidget* lvDateien;
    QPushButton* pbAdd;
    QPushButton* pbRemove;
    QPushButton* pbNeu;
    QPushButton* pbRooms;
    QPushButton* pbOk;
    QMenu* mnuDatei;
    QMenu* mnuReport;
    QMenu* mnuFehler;
    std::map<int, QAction*> mnuDateiFkt;
    std::map<int, QAction*> mnuReportFkt;
    std::map<int, QAction*> mnuFehlerFkt;
    QLabel* lbCounts;
    /// In the status bar while the order is open read-only.
    QLabel* lbNurAnsehen = nullptr;

    /// Item data role of the list items' keys.
    static constexpr int KeyRole = Qt::UserRole;

protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildWindow();
    void buildMenus();
    /// Puts the commands that change the order out of use (an order open read-only).
    void showReadOnly();
    /// Runs a command; activations while it runs (its own dialogs closing) refill nothing.
    template <class Command>
    void run(Command&& command);
    void showDateien();
    void showRooms();
    void showCounts();
    /// The selected data file's key and text (empty when none is selected).
    std::pair<std::string, std::string> selectedDatei() const;
    void openRoomSelection();
    void Form_Unload();

    frmWork form_;
    Settings& settings_;
    UserInteraction& ui_;
    RoomWindowFactory roomWindowFactory_;
    QPointer<QDialog> roomWindow_;
    QSplitter* splitter_ = nullptr;
    int running_ = 0;
    bool filledOnShow_ = false;
    bool unloaded_ = false;
    bool columnsSized_ = false;
};

} // namespace qi
