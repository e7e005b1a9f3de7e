#pragma once
// Stand-in for the work window of an open order: it shows the order's caption
// and can be closed. Closing it closes the order's database, marks it finished
// and tells the main window (signal unloaded).

#include <QDialog>

class QPushButton;

namespace qi {

class CAuftragDb;

class frmWorkPlaceholder : public QDialog {
    Q_OBJECT
public:
    /// Borrows the open order database for as long as the window is loaded.
    frmWorkPlaceholder(CAuftragDb& db, QWidget* owner);

    /// True once the window has been unloaded and is done with its order.
    bool bFinished = false;

    QPushButton* pbOk;

signals:
    /// The window was unloaded; the main window becomes active again.
    void unloaded();

private:
    void Form_Unload();
    CAuftragDb& db_;
};

} // namespace qi
