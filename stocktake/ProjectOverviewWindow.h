#pragma once
// The window "Projektübersicht": the whole stocktake at one glance. The tab "Aufträge"
// lists the orders with their progress; the order selected there shows its rooms, the room
// selected shows its objects (its rows of the difference list). Each list across orders has
// a tab of its own. Every list sorts by a click on its heading and keeps only the rows that
// contain what its filter field holds. The result is computed in a thread of its own: first
// as the orders hold it, then with the stale orders evaluated afresh; the window stays in use,
// shows the progress and may stop the computation.

#include "CorrectionListWindow.h"
#include "OverviewTables.h"
#include "ProjectResultRun.h"
#include "Settings.h"

#include <QMainWindow>
#include <QPointer>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

class QAction;
class QLabel;
class QLineEdit;
class QMenu;
class QProgressBar;
class QPushButton;
class QTabWidget;
class QTreeWidget;

namespace qi {

class Database;
class UserInteraction;
struct ProjectReport;

class ProjectOverviewWindow : public QMainWindow {
    Q_OBJECT
public:
    /// The window over the results of `source`; every message goes through `ui`.
    ProjectOverviewWindow(UserInteraction& ui, ProjectResultSource source, QWidget* parent = nullptr);
    ~ProjectOverviewWindow() override;

    /// Opens an order (by its register lID) as the main window's double click does.
    void setOpenOrder(std::function<void(std::int32_t)> openOrder) { openOrder_ = std::move(openOrder); }
    /// Replaces what computes the result from the next computation on (the project's settings may have changed).
    void setSource(ProjectResultSource source);

    /// The settings the reports are printed with (their report files, the project folder).
    void setSettings(const Settings& settings);
    /// Shows a report of the project (projectReports()) over the result shown, in the preview window.
    void showReport(const ProjectReport& report);

    /// Computes the result anew (the orders as they hold it, then fresh); one still running is replaced.
    void refresh();
    /// Shows `result` in every list (the selections stay where they can).
    void showResult(std::shared_ptr<Database> result);
    /// The result shown, or null.
    const std::shared_ptr<Database>& result() const { return result_; }
    /// The computation of this window (tests wait for it).
    ProjectResultRun& run() { return *run_; }

    /// Opens the window "Korrekturliste" over the result shown (or brings it to the front);
    /// it follows every result shown after.
    void openCorrectionList();
    /// The window "Korrekturliste" while it is open, else null.
    CorrectionListWindow* correctionList() const { return correctionList_.data(); }

    /// Double click on an order (or the return key): it is opened in the main window.
    void lvAuftraege_DblClick();

    QTabWidget* tabs;
    QLabel* lbSumme;
    QLineEdit* txFilterAuftraege;
    QTreeWidget* lvAuftraege;
    QTreeWidget* lvRaeume;
    QTreeWidget* lvObjekte;
    QLabel* lbRaeume;
    QLabel* lbObjekte;
    /// One tab per list across orders, in the order of overviewLists().
    struct ListTab {
        std::string table;
        QString title;
        QLineEdit* filter;
        QTreeWidget* list;
    };
    std::vector<ListTab> listTabs;
    QPushButton* pbAktualisieren;
    QPushButton* pbAbbrechen;
    QProgressBar* pgBerechnung;
    QLabel* lbStand;
    /// The report buttons, in the order of projectReports().
    std::vector<QPushButton*> pbBerichte;
    QMenu* mnuDatei;
    QMenu* mnuBerichte;
    std::vector<QAction*> mnuBerichteFkt;
    QAction* mnuAktualisieren;
    QAction* mnuSchliessen;
    /// "&Korrekturliste…", as a button and in the menu "&Datei"; in use once a result is shown.
    QPushButton* pbKorrekturliste;
    QAction* mnuKorrekturliste;

signals:
    /// A result was shown (its figures may serve others).
    void resultShown(std::shared_ptr<qi::Database> result);

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildWindow();
    QWidget* filteredList(QTreeWidget*& list, QLineEdit*& filter, const QStringList& headings);
    /// Shows `table` in `list` as far as `filter` lets it, and keeps it for a change of the filter.
    void showTable(QTreeWidget& list, ShownTable table, const QString& filter);
    /// Shows the kept table of `list` anew under `filter`; the selected row stays where it can.
    void refilter(QTreeWidget& list, const QString& filter);
    void showRooms();
    void showObjects();
    void onProgress(int done, int total, const QString& step);
    void onFinished(std::shared_ptr<Database> result, bool fresh);
    void onEnded(const QString& status);

    UserInteraction& ui_;
    ProjectResultRun* run_;
    std::shared_ptr<Database> result_;
    /// What each filtered list shows, before its filter.
    std::map<const QTreeWidget*, ShownTable> tables_;
    Settings settings_;
    std::function<void(std::int32_t)> openOrder_;
    QPointer<CorrectionListWindow> correctionList_;
};

/// The caption of a tab: its title and the number of rows ("Verschoben (3)").
QString tabCaption(const QString& title, int rows);
/// Whether a row shows under a list's filter: one of its cells contains the filter's text
/// (blanks around it ignored, letter case too); every row does under an empty filter.
bool rowMatches(const std::vector<std::string>& cells, const QString& filter);

} // namespace qi
