#include "MainWindowOverview.h"

#include "Database.h"
#include "ListView.h"
#include "OverviewTables.h"
#include "ProjectOverviewWindow.h"
#include "WindowState.h"
#include "frmMain.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>
#include <QTreeWidget>

#include <algorithm>
#include <optional>

namespace qi {

namespace {

constexpr const char* kKeyPrefix = "A ";

/// The register lID of an order list item ("A " + lID), or nothing.
std::optional<std::int32_t> orderIdOf(const QTreeWidgetItem& item)
{
    const QString key = item.data(0, Qt::UserRole).toString();
    if (!key.startsWith(QLatin1String(kKeyPrefix)))
        return std::nullopt;
    bool ok = false;
    const int id = key.mid(2).trimmed().toInt(&ok);
    return ok ? std::optional<std::int32_t>(id) : std::nullopt;
}

} // namespace

MainWindowOverview::MainWindowOverview(frmMain& main)
    : QObject(&main), main_(main), firstColumn_(main.lvAuftraege->columnCount()),
      sourceFactory_([](const Settings& settings) { return projectResultOf(settings); }),
      run_(new ProjectResultRun({}, this))
{
    setObjectName(QStringLiteral("MainWindowOverview"));
    QTreeWidget& list = *main.lvAuftraege;
    QStringList headings;
    for (int i = 0; i < firstColumn_; ++i)
        headings << list.headerItem()->text(i);
    for (const std::string& h : orderListHeadings())
        headings << QString::fromStdString(h);
    list.setHeaderLabels(headings);
    const int widths[] = {90, 70, 80, 140};
    for (int i = 0; i < int(std::size(widths)); ++i)
        list.setColumnWidth(firstColumn_ + i, widths[i]);
    // The widths kept from the last run cover these columns too; the first time the window is
    // made wide enough to show them.
    if (!restoreWindowState(main, QStringLiteral("frmMain"), {&list})) {
        int wanted = 0;
        for (int c = 0; c + 1 < list.columnCount(); ++c)
            wanted += list.columnWidth(c);
        wanted += 110 + 40; // the last column and the frame around the list
        main.resize(std::max(main.width(), wanted), main.height());
    }

    mnuProjekt = main.menuBar()->addMenu(QStringLiteral("&Projekt"));
    mnuProjektFkt[projektmenu::Uebersicht] = mnuProjekt->addAction(QStringLiteral("Projekt&übersicht…"));
    for (auto& [index, action] : mnuProjektFkt)
        connect(action, &QAction::triggered, this, [this, i = index] { mnuProjektFkt_Click(i); });

    connect(&main, &frmMain::ordersListed, this, &MainWindowOverview::listed);
    connect(&main, &frmMain::orderWindowUnloaded, this, [this] {
        // An open overview computes for both: its results fill the columns too.
        if (overview_ && overview_->isVisible())
            overview_->refresh();
        else
            startFigures();
    });
    connect(run_, &ProjectResultRun::finished, this, [this](std::shared_ptr<Database> result, bool fresh) {
        takeFigures(std::move(result));
        if (!fresh)
            run_->start(true);
    });
}

MainWindowOverview::~MainWindowOverview() = default;

void MainWindowOverview::listed()
{
    fillFigures();
    startFigures();
}

void MainWindowOverview::startFigures()
{
    // Started from the event loop, once the window is on the screen; several refills in a row start one computation.
    if (startPending_)
        return;
    startPending_ = true;
    QTimer::singleShot(0, this, [this] {
        startPending_ = false;
        if (!main_.inventurDb())
            return;
        run_->setSource(sourceFactory_(main_.settings()));
        run_->start(false);
    });
}

void MainWindowOverview::takeFigures(std::shared_ptr<Database> result)
{
    figures_ = std::move(result);
    fillFigures();
}

void MainWindowOverview::fillFigures()
{
    QTreeWidget& list = *main_.lvAuftraege;
    const auto figures = figures_ ? orderListFigures(*figures_) : std::map<std::int32_t, std::vector<std::string>>{};
    const int count = int(orderListHeadings().size());
    for (int i = 0; i < list.topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = list.topLevelItem(i);
        const auto id = orderIdOf(*item);
        const auto found = id ? figures.find(*id) : figures.end();
        for (int c = 0; c < count; ++c)
            item->setText(firstColumn_ + c, found == figures.end() ? QString()
                                                                    : QString::fromStdString(found->second[c]));
    }
    if (sortColumn(list) >= firstColumn_)
        sortAgain(list);
}

void MainWindowOverview::mnuProjektFkt_Click(int index)
{
    if (index != projektmenu::Uebersicht)
        return;
    if (!overview_) {
        overview_ = new ProjectOverviewWindow(main_.userInteraction(), sourceFactory_(main_.settings()), &main_);
        overview_->setOpenOrder([this](std::int32_t id) { openOrder(id); });
        connect(overview_, &ProjectOverviewWindow::resultShown, this, &MainWindowOverview::takeFigures);
        if (figures_)
            overview_->showResult(figures_);
    } else {
        overview_->setSource(sourceFactory_(main_.settings()));
    }
    overview_->setSettings(main_.settings());
    overview_->show();
    overview_->raise();
    overview_->activateWindow();
    overview_->refresh();
}

void MainWindowOverview::openOrder(std::int32_t lAuftragID)
{
    if (!main_.isActiveState()) {
        // An order is open: its window comes to the front, as nothing else may be opened meanwhile.
        if (OrderWindow* work = main_.workWindow()) {
            work->raise();
            work->activateWindow();
        }
        return;
    }
    QTreeWidget& list = *main_.lvAuftraege;
    for (int i = 0; i < list.topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = list.topLevelItem(i);
        if (orderIdOf(*item) != lAuftragID)
            continue;
        list.setCurrentItem(item);
        item->setSelected(true);
        main_.lvAuftraege_ItemClick(item);
        main_.lvAuftraege_DblClick();
        return;
    }
}

MainWindowOverview* connectProjectOverview(frmMain& main) { return new MainWindowOverview(main); }

MainWindowOverview* projectOverviewOf(frmMain& main)
{
    return main.findChild<MainWindowOverview*>(QStringLiteral("MainWindowOverview"), Qt::FindDirectChildrenOnly);
}

} // namespace qi
