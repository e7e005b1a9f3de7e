#pragma once
// The room selection window, modal to the work window of its order: Quarn's
// building tree (tvGeb) and the rooms of the node picked (lbRooms) on the left,
// the rooms of the order with their status (lvRooms) on the right, and the
// buttons that move rooms between them. Every procedure is frmRaum's; the window
// copies the user's selection into it before a procedure runs and shows what
// the procedure changed.

#include "frmRaum.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QListWidget;
class QPushButton;
class QSplitter;
class QTreeWidget;
class QTreeWidgetItem;

namespace qi {

class QTreeGebStruCtrl;

class frmRaumWindow : public QDialog {
    Q_OBJECT
public:
    /// The window over the order database `db` and Quarn's building component `gebDb`
    /// (may be null); `owner` is the work window. The window is loaded (Form_Load).
    frmRaumWindow(CAuftragDb& db, QGebDb* gebDb, Settings& settings, UserInteraction& ui, QWidget* owner);
    ~frmRaumWindow() override;

    /// The procedures and what the controls show.
    frmRaum& form() { return form_; }
    /// Has the window read the order's rooms (the opener calls it before showing the window).
    void InitData();
    /// Unloads the window: the rooms are saved, the window closes.
    void Unload();
    /// True once the window was unloaded.
    bool isUnloaded() const { return unloaded_; }

    QTreeGebStruCtrl* tvGeb;
    QListWidget* lbRooms;
    QTreeWidget* lvRooms;
    QPushButton* pbIn;
    QPushButton* pbAllIn;
    QPushButton* pbOut;
    QPushButton* pbAllOut;
    QPushButton* pbFertig;
    QCheckBox* cbAllRooms;
    QLabel* lbGebLabel;
    QLabel* lbRoomsLabel;
    QLabel* lvRoomsLabel;
    QLabel* lbHint;

    /// Item data role of lbRooms lines (the host room id) and of lvRooms keys.
    static constexpr int KeyRole = Qt::UserRole;

public slots:
    void done(int result) override;

protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildWindow();
    /// Copies the user's part (selected node, selected lines and rows, the rows' order
    /// after a sort, the check box) into the procedures' state.
    void takeSelection();
    /// Runs a procedure with the user's selection taken over first.
    template <class Procedure>
    void run(Procedure&& procedure);
    void showTree();
    void showRoomLines();
    void showOrderRooms();
    void showAllRooms();
    /// True when `window` is this window or one of the windows it opened (message boxes ...).
    bool isOwnWindow(const QWidget* window) const;

    frmRaum form_;
    QSplitter* splitter_ = nullptr;
    bool unloaded_ = false;
    int running_ = 0;
    /// The mouse button is down on the building tree, and the node it went down on.
    bool treePressed_ = false;
    QTreeWidgetItem* pressedNode_ = nullptr;
};

} // namespace qi
