#pragma once
// The project overview in the main window. After the window's own menus comes the menu
// "&Projekt" with "Projekt&übersicht…", which opens the window "Projektübersicht"; after the
// order list's own columns come columns of our own with each order's progress. They fill in
// without holding the window up: whenever the list was filled anew (and after the work window
// was unloaded) the figures are computed in a thread of their own, first as the orders hold
// them, then with the stale orders evaluated afresh.

#include "ProjectOverviewWindow.h"
#include "ProjectResultRun.h"

#include <QObject>
#include <QPointer>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

class QAction;
class QMenu;

namespace qi {

class Database;
class frmMain;
struct Settings;

/// Menu indexes of the menu "&Projekt".
namespace projektmenu {
inline constexpr int Uebersicht = 100;
} // namespace projektmenu

class MainWindowOverview : public QObject {
    Q_OBJECT
public:
    /// What computes a project result from the project's settings.
    using SourceFactory = std::function<ProjectResultSource(const Settings&)>;

    /// Adds the menu and the columns to `main` (whose child it becomes).
    explicit MainWindowOverview(frmMain& main);
    ~MainWindowOverview() override;

    /// Replaces what computes the results (tests put in their own).
    void setSourceFactory(SourceFactory factory) { sourceFactory_ = std::move(factory); }

    /// The first column of our own in the order list.
    int firstColumn() const { return firstColumn_; }
    /// Menu "&Projekt", entry 100: opens the window "Projektübersicht" (or brings it to the front) and refreshes it.
    void mnuProjektFkt_Click(int index);
    /// The overview window once it was opened, else null.
    ProjectOverviewWindow* overview() const { return overview_.data(); }
    /// The computation of the order list's figures (tests wait for it).
    ProjectResultRun& figuresRun() { return *run_; }
    /// The result whose figures the order list shows, or null.
    const std::shared_ptr<Database>& figures() const { return figures_; }
    /// Opens an order (by its register lID) as a double click in the order list does.
    void openOrder(std::int32_t lAuftragID);

    QMenu* mnuProjekt;
    std::map<int, QAction*> mnuProjektFkt;

private:
    /// The list was filled anew: the known figures go in at once, fresher ones are computed.
    void listed();
    void startFigures();
    void fillFigures();
    void takeFigures(std::shared_ptr<Database> result);

    frmMain& main_;
    int firstColumn_;
    SourceFactory sourceFactory_;
    ProjectResultRun* run_;
    std::shared_ptr<Database> figures_;
    bool startPending_ = false;
    QPointer<ProjectOverviewWindow> overview_;
};

/// Plugs the project overview into the main window (the program's wiring, before Form_Load).
MainWindowOverview* connectProjectOverview(frmMain& main);
/// The project overview plugged into `main`, or null.
MainWindowOverview* projectOverviewOf(frmMain& main);

} // namespace qi
