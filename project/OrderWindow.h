#pragma once
// The window an opened order is handed to, as the main window sees it: the main
// window creates it through a factory (the program plugs in the work window),
// initialises it, shows it modelessly as its owner and waits, out of use, until
// the window was unloaded.

#include <QMainWindow>

#include <functional>

namespace qi {

class CAuftragDb;
class QGebDb;
struct Settings;
class UserInteraction;

class OrderWindow : public QMainWindow {
    Q_OBJECT
public:
    using QMainWindow::QMainWindow;

    /// Fills the window's lists from the order database; false when that failed (it said so).
    virtual bool Init() = 0;
    /// Hands the window Quarn's building component of the program (may be null).
    virtual void setGebDb(QGebDb* gebDb) = 0;

    /// True once the window was unloaded and is done with its order (its database is closed).
    bool f_bReload = false;

signals:
    /// The window was unloaded; its owner comes back into use.
    void unloaded();
};

/// What the main window hands over when it opens an order.
struct OpenOrder {
    CAuftragDb& db;          ///< the order's open database, borrowed while the window lives
    Settings& settings;      ///< the program-wide settings
    UserInteraction& ui;     ///< every exchange with the user
    QWidget* owner;          ///< the main window
};

/// Makes the window of an opened order (not yet shown).
using OrderWindowFactory = std::function<OrderWindow*(const OpenOrder&)>;

} // namespace qi
