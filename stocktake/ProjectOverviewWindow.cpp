#include "ProjectOverviewWindow.h"

#include "CorrectionListWindow.h"
#include "Database.h"
#include "ListView.h"
#include "OverviewTables.h"
#include "ProjectReports.h"
#include "QtTexts.h"
#include "ReportPreview.h"
#include "UserInteraction.h"
#include "WindowState.h"

#include <QAction>
#include <QCloseEvent>
#include <QDateTime>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace qi {

namespace {

constexpr const char* kWindowKey = "ProjectOverviewWindow";
/// The widest a column becomes when it is fitted to what it shows.
constexpr int kWidestColumn = 220;

/// Puts the rows of `table` that contain `filter` into `list` (keys in the first column's data)
/// and sorts them again.
void fill(QTreeWidget& list, const ShownTable& table, const QString& filter)
{
    list.clear();
    QList<QTreeWidgetItem*> items;
    items.reserve(qsizetype(table.rows.size()));
    for (std::size_t r = 0; r < table.rows.size(); ++r) {
        if (!rowMatches(table.rows[r], filter))
            continue;
        auto* item = new ListViewItem(qtTexts(table.rows[r]));
        for (int c = 0; c < item->columnCount(); ++c)
            if (item->text(c).size() > 30)
                item->setToolTip(c, item->text(c));
        item->setData(0, Qt::UserRole, QString::fromStdString(table.keys[r]));
        items << item;
    }
    list.addTopLevelItems(items);
    sortAgain(list);
    // The columns fit what the list first shows; later the widths stay as the user left them.
    if (!items.isEmpty() && !list.property("qiSized").toBool()) {
        for (int c = 0; c + 1 < list.columnCount(); ++c) {
            list.resizeColumnToContents(c);
            // A long text (a category, a hint) is read in full in the last column or in its tooltip.
            list.setColumnWidth(c, std::min(list.columnWidth(c), kWidestColumn));
        }
        list.setProperty("qiSized", true);
    }
}

QTreeWidgetItem* itemWithKey(QTreeWidget& list, const QString& key)
{
    for (int i = 0; i < list.topLevelItemCount(); ++i)
        if (list.topLevelItem(i)->data(0, Qt::UserRole).toString() == key)
            return list.topLevelItem(i);
    return nullptr;
}

QString currentKey(const QTreeWidget& list)
{
    const QTreeWidgetItem* item = list.currentItem();
    return item ? item->data(0, Qt::UserRole).toString() : QString();
}

} // namespace

QString tabCaption(const QString& title, int rows) { return title + QStringLiteral(" (%1)").arg(rows); }

bool rowMatches(const std::vector<std::string>& cells, const QString& filter)
{
    const QString wanted = filter.trimmed();
    if (wanted.isEmpty())
        return true;
    for (const std::string& cell : cells)
        if (QString::fromStdString(cell).contains(wanted, Qt::CaseInsensitive))
            return true;
    return false;
}

ProjectOverviewWindow::ProjectOverviewWindow(UserInteraction& ui, ProjectResultSource source, QWidget* parent)
    : QMainWindow(parent), ui_(ui), run_(new ProjectResultRun(std::move(source), this))
{
    setWindowFlag(Qt::Window);
    buildWindow();
    connect(run_, &ProjectResultRun::progressed, this, &ProjectOverviewWindow::onProgress);
    connect(run_, &ProjectResultRun::finished, this, &ProjectOverviewWindow::onFinished);
    connect(run_, &ProjectResultRun::cancelled, this, [this] { onEnded(QStringLiteral("Berechnung abgebrochen.")); });
    connect(run_, &ProjectResultRun::failed, this, [this](const QString& text) {
        onEnded(QStringLiteral("Berechnung fehlgeschlagen."));
        ui_.showError("ProjectOverviewWindow.refresh", text.toStdString());
    });
}

ProjectOverviewWindow::~ProjectOverviewWindow() = default;

void ProjectOverviewWindow::setSource(ProjectResultSource source) { run_->setSource(std::move(source)); }

QWidget* ProjectOverviewWindow::filteredList(QTreeWidget*& list, QLineEdit*& filter, const QStringList& headings)
{
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(4, 4, 4, 4);
    filter = new QLineEdit(page);
    filter->setPlaceholderText(QStringLiteral("Filter"));
    filter->setClearButtonEnabled(true);
    list = new QTreeWidget(page);
    setUpListView(*list, headings);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    layout->addWidget(filter);
    layout->addWidget(list);
    connect(filter, &QLineEdit::textChanged, list, [this, list](const QString& text) { refilter(*list, text); });
    return page;
}

void ProjectOverviewWindow::buildWindow()
{
    setWindowTitle(QStringLiteral("Projektübersicht"));
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);

    auto* top = new QHBoxLayout;
    pbAktualisieren = new QPushButton(QStringLiteral("&Aktualisieren"), central);
    pbAbbrechen = new QPushButton(QStringLiteral("Abb&rechen"), central);
    pbAbbrechen->setEnabled(false);
    pgBerechnung = new QProgressBar(central);
    pgBerechnung->setVisible(false);
    lbStand = new QLabel(central);
    lbStand->setObjectName(QStringLiteral("lbStand"));
    top->addWidget(pbAktualisieren);
    top->addWidget(pbAbbrechen);
    for (const ProjectReport& report : projectReports()) {
        auto* button = new QPushButton(QStringLiteral("&") + QString::fromUtf8(report.title.data(), qsizetype(report.title.size())), central);
        connect(button, &QPushButton::clicked, this, [this, &report] { showReport(report); });
        top->addWidget(button);
        button->setEnabled(false);
        pbBerichte.push_back(button);
    }
    pbKorrekturliste = new QPushButton(QStringLiteral("&Korrekturliste…"), central);
    pbKorrekturliste->setEnabled(false);
    top->addWidget(pbKorrekturliste);
    top->addWidget(pgBerechnung, 1);
    top->addWidget(lbStand, 2);
    layout->addLayout(top);

    lbSumme = new QLabel(central);
    lbSumme->setObjectName(QStringLiteral("lbSumme"));
    lbSumme->setWordWrap(true);
    layout->addWidget(lbSumme);

    tabs = new QTabWidget(central);
    layout->addWidget(tabs, 1);
    setCentralWidget(central);

    // The orders above, the rooms of the selected order and the objects of the selected room below.
    auto* orders = new QSplitter(Qt::Vertical, tabs);
    orders->addWidget(filteredList(lvAuftraege, txFilterAuftraege, qtTexts(orderHeadings())));
    auto* below = new QSplitter(Qt::Horizontal, orders);
    const auto titled = [this](QLabel*& label, QTreeWidget*& list, const QStringList& headings) {
        auto* pane = new QWidget(this);
        auto* paneLayout = new QVBoxLayout(pane);
        paneLayout->setContentsMargins(4, 4, 4, 4);
        label = new QLabel(pane);
        list = new QTreeWidget(pane);
        setUpListView(*list, headings);
        list->setSelectionMode(QAbstractItemView::SingleSelection);
        paneLayout->addWidget(label);
        paneLayout->addWidget(list);
        return pane;
    };
    below->addWidget(titled(lbRaeume, lvRaeume, qtTexts(roomHeadings())));
    below->addWidget(titled(lbObjekte, lvObjekte, qtTexts(objectHeadings())));
    orders->addWidget(below);
    orders->setStretchFactor(0, 3);
    orders->setStretchFactor(1, 2);
    lvAuftraege->setObjectName(QStringLiteral("lvAuftraege"));
    lvRaeume->setObjectName(QStringLiteral("lvRaeume"));
    lvObjekte->setObjectName(QStringLiteral("lvObjekte"));
    lbRaeume->setText(QStringLiteral("Räume"));
    lbObjekte->setText(QStringLiteral("Objekte"));
    tabs->addTab(orders, QStringLiteral("Aufträge"));
    for (const OverviewList& l : overviewLists()) {
        ListTab tab{l.table, QString::fromUtf8(l.title), nullptr, nullptr};
        tabs->addTab(filteredList(tab.list, tab.filter, qtTexts(listHeadings(l.table))), tab.title);
        tab.list->setObjectName(QString::fromUtf8(l.table));
        listTabs.push_back(tab);
    }

    mnuDatei = menuBar()->addMenu(QStringLiteral("&Datei"));
    mnuAktualisieren = mnuDatei->addAction(QStringLiteral("&Aktualisieren"));
    mnuAktualisieren->setShortcut(QKeySequence(Qt::Key_F5));
    mnuKorrekturliste = mnuDatei->addAction(QStringLiteral("&Korrekturliste…"));
    mnuKorrekturliste->setEnabled(false);
    mnuDatei->addSeparator();
    mnuSchliessen = mnuDatei->addAction(QStringLiteral("&Schließen"));
    mnuBerichte = menuBar()->addMenu(QStringLiteral("&Berichte"));
    for (const ProjectReport& report : projectReports()) {
        QAction* action = mnuBerichte->addAction(QStringLiteral("&") +
                                                 QString::fromUtf8(report.title.data(), qsizetype(report.title.size())));
        connect(action, &QAction::triggered, this, [this, &report] { showReport(report); });
        action->setEnabled(false);
        mnuBerichteFkt.push_back(action);
    }

    connect(pbAktualisieren, &QPushButton::clicked, this, &ProjectOverviewWindow::refresh);
    connect(mnuAktualisieren, &QAction::triggered, this, &ProjectOverviewWindow::refresh);
    connect(pbAbbrechen, &QPushButton::clicked, this, [this] { run_->cancel(); });
    connect(mnuSchliessen, &QAction::triggered, this, &QWidget::close);
    connect(pbKorrekturliste, &QPushButton::clicked, this, &ProjectOverviewWindow::openCorrectionList);
    connect(mnuKorrekturliste, &QAction::triggered, this, &ProjectOverviewWindow::openCorrectionList);
    connect(lvAuftraege, &QTreeWidget::currentItemChanged, this, [this] { showRooms(); });
    connect(lvRaeume, &QTreeWidget::currentItemChanged, this, [this] { showObjects(); });
    connect(lvAuftraege, &QTreeWidget::itemDoubleClicked, this, [this] { lvAuftraege_DblClick(); });
    lvAuftraege->installEventFilter(this);
    lvAuftraege->setToolTip(QStringLiteral("Öffnen mit Doppelklick"));
    resize(1000, 680);
    restoreWindowState(*this, kWindowKey);
}

void ProjectOverviewWindow::setSettings(const Settings& settings) { settings_ = settings; }

void ProjectOverviewWindow::showReport(const ProjectReport& report)
{
    if (!result_)
        return;
    try {
        ui_.setBusy(true);
        auto* preview = new ReportPreview(openProjectReport(settings_, *result_, report), ui_, this);
        ui_.setBusy(false);
        preview->show();
        preview->raise();
        preview->activateWindow();
    } catch (const std::exception& e) {
        ui_.setBusy(false);
        ui_.showError("ProjectOverviewWindow.showReport", e.what());
    }
}

void ProjectOverviewWindow::openCorrectionList()
{
    if (!result_)
        return;
    if (!correctionList_) {
        correctionList_ = new CorrectionListWindow(ui_, settings_, this);
        correctionList_->setAttribute(Qt::WA_DeleteOnClose);
        correctionList_->showResult(result_);
    }
    correctionList_->show();
    correctionList_->raise();
    correctionList_->activateWindow();
}

bool ProjectOverviewWindow::eventFilter(QObject* watched, QEvent* event)
{
    // The return key opens the selected order as a double click does.
    if (watched == lvAuftraege && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            lvAuftraege_DblClick();
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void ProjectOverviewWindow::closeEvent(QCloseEvent* event)
{
    run_->cancel();
    saveWindowState(*this, kWindowKey);
    event->accept();
}

void ProjectOverviewWindow::refresh()
{
    // A computation still running is replaced: what changed meanwhile is read too.
    pbAktualisieren->setEnabled(false);
    mnuAktualisieren->setEnabled(false);
    pbAbbrechen->setEnabled(true);
    pgBerechnung->setRange(0, 0);
    pgBerechnung->setVisible(true);
    lbStand->setText(QStringLiteral("Wird berechnet …"));
    run_->start(false);
}

void ProjectOverviewWindow::onProgress(int done, int total, const QString& step)
{
    pgBerechnung->setRange(0, total);
    pgBerechnung->setValue(done);
    lbStand->setText(step);
}

void ProjectOverviewWindow::onFinished(std::shared_ptr<Database> result, bool fresh)
{
    showResult(std::move(result));
    if (!fresh) {
        // The figures as the orders hold them are there; the stale orders are evaluated afresh next.
        run_->start(true);
        return;
    }
    onEnded(QStringLiteral("Stand: ") + QDateTime::currentDateTime().toString(QStringLiteral("dd.MM.yyyy hh:mm:ss")));
}

void ProjectOverviewWindow::onEnded(const QString& status)
{
    pbAktualisieren->setEnabled(true);
    mnuAktualisieren->setEnabled(true);
    pbAbbrechen->setEnabled(false);
    pgBerechnung->setVisible(false);
    lbStand->setText(status);
}

void ProjectOverviewWindow::showTable(QTreeWidget& list, ShownTable table, const QString& filter)
{
    fill(list, table, filter);
    tables_[&list] = std::move(table);
}

void ProjectOverviewWindow::refilter(QTreeWidget& list, const QString& filter)
{
    const auto shown = tables_.find(&list);
    if (shown == tables_.end())
        return;
    const QString current = currentKey(list);
    {
        const QSignalBlocker quiet(&list);
        fill(list, shown->second, filter);
        if (QTreeWidgetItem* again = itemWithKey(list, current))
            list.setCurrentItem(again);
    }
    // An order that the filter leaves out takes its rooms along.
    if (&list == lvAuftraege && currentKey(list) != current)
        showRooms();
}

void ProjectOverviewWindow::showResult(std::shared_ptr<Database> result)
{
    result_ = std::move(result);
    if (!result_)
        return;
    const QString order = currentKey(*lvAuftraege);
    const QString room = currentKey(*lvRaeume);
    lbSumme->setText(QString::fromStdString(projectTotalsText(*result_)));
    {
        const QSignalBlocker quiet(lvAuftraege);
        showTable(*lvAuftraege, orderTable(*result_), txFilterAuftraege->text());
        if (QTreeWidgetItem* again = itemWithKey(*lvAuftraege, order))
            lvAuftraege->setCurrentItem(again);
    }
    tabs->setTabText(0, tabCaption(QStringLiteral("Aufträge"), int(tables_[lvAuftraege].rows.size())));
    showRooms();
    if (QTreeWidgetItem* again = itemWithKey(*lvRaeume, room))
        lvRaeume->setCurrentItem(again);
    for (std::size_t i = 0; i < listTabs.size(); ++i) {
        ListTab& tab = listTabs[i];
        showTable(*tab.list, listTable(*result_, tab.table), tab.filter->text());
        tabs->setTabText(int(i) + 1, tabCaption(tab.title, int(tables_[tab.list].rows.size())));
    }
    // The reports print what the window shows.
    for (QPushButton* button : pbBerichte)
        button->setEnabled(true);
    for (QAction* action : mnuBerichteFkt)
        action->setEnabled(true);
    pbKorrekturliste->setEnabled(true);
    mnuKorrekturliste->setEnabled(true);
    if (correctionList_)
        correctionList_->showResult(result_);
    emit resultShown(result_);
}

void ProjectOverviewWindow::showRooms()
{
    const QTreeWidgetItem* order = lvAuftraege->currentItem();
    lvObjekte->clear();
    if (!result_ || !order) {
        lvRaeume->clear();
        lbRaeume->setText(QStringLiteral("Räume"));
        lbObjekte->setText(QStringLiteral("Objekte"));
        return;
    }
    const QSignalBlocker quiet(lvRaeume);
    fill(*lvRaeume, roomTable(*result_, order->text(0).toStdString()), {});
    lbRaeume->setText(QStringLiteral("Räume des Auftrags %1").arg(order->text(0)));
    lbObjekte->setText(QStringLiteral("Objekte"));
}

void ProjectOverviewWindow::showObjects()
{
    const QTreeWidgetItem* order = lvAuftraege->currentItem();
    const QTreeWidgetItem* room = lvRaeume->currentItem();
    if (!result_ || !order || !room) {
        lvObjekte->clear();
        lbObjekte->setText(QStringLiteral("Objekte"));
        return;
    }
    fill(*lvObjekte, objectTable(*result_, order->text(0).toStdString(), room->text(0).toStdString()), {});
    lbObjekte->setText(QStringLiteral("Objekte im Raum %1").arg(room->text(0)));
}

void ProjectOverviewWindow::lvAuftraege_DblClick()
{
    const QTreeWidgetItem* item = lvAuftraege->currentItem();
    if (!item || !openOrder_)
        return;
    bool ok = false;
    const int id = item->data(0, Qt::UserRole).toString().toInt(&ok);
    if (ok)
        openOrder_(id);
}

} // namespace qi
