#include "frmWorkWindow.h"

#include "FileSystem.h"
#include "ListView.h"
#include "ReportMenus.h"
#include "RoomStatus.h"
#include "WindowState.h"

#include <QAction>
#include <QCloseEvent>
#include <QDialog>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QStatusBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace qi {

namespace {

constexpr const char* kStateKey = "frmWork";
constexpr const char* kRoomsCaption = "Auftragsräume";
constexpr const char* kDateienCaption =
    "hinzugefügte Daten (*.dat-Dateien)                       Öffnen mit Doppelklick";

QString qs(const std::string& s) { return QString::fromStdString(s); }
QString qs(std::string_view s) { return QString::fromUtf8(s.data(), qsizetype(s.size())); }

QStringList roomHeadings()
{
    return {QStringLiteral("Raum"), QStringLiteral("Status"), QStringLiteral("Datum"), QStringLiteral("Anzahl"),
            QStringLiteral("Datei")};
}

QPushButton* button(QWidget* parent, const char* name, const QString& text, const QString& hint)
{
    auto* b = new QPushButton(text, parent);
    b->setObjectName(QString::fromLatin1(name));
    b->setToolTip(hint);
    b->setAccessibleDescription(hint);
    return b;
}

/// Fills a list view from list items; the selection and the scroll position stay where they were.
void fill(QTreeWidget& view, const std::vector<ListItem>& items, int keyRole,
          const std::function<void(ListViewItem&, const ListItem&)>& decorate = {})
{
    QStringList selected;
    for (const QTreeWidgetItem* item : view.selectedItems())
        selected << item->data(0, keyRole).toString();
    const QString current = view.currentItem() ? view.currentItem()->data(0, keyRole).toString() : QString();
    const int scrolled = view.verticalScrollBar()->value();

    view.clear();
    QTreeWidgetItem* currentItem = nullptr;
    for (const ListItem& li : items) {
        auto* item = new ListViewItem(&view);
        item->setText(0, qs(li.text));
        for (std::size_t i = 0; i < li.subItems.size(); ++i)
            item->setText(int(i) + 1, qs(li.subItems[i]));
        item->setData(0, keyRole, qs(li.key));
        if (decorate)
            decorate(*item, li);
        if (qs(li.key) == current)
            currentItem = item;
    }
    sortAgain(view);
    if (currentItem)
        view.setCurrentItem(currentItem, 0, QItemSelectionModel::NoUpdate);
    for (int i = 0; i < view.topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = view.topLevelItem(i);
        item->setSelected(selected.contains(item->data(0, keyRole).toString()));
    }
    view.verticalScrollBar()->setValue(scrolled);
}

} // namespace

frmWorkWindow::frmWorkWindow(CAuftragDb& db, Settings& settings, UserInteraction& ui, QWidget* owner)
    : OrderWindow(owner), form_(db, settings, ui), settings_(settings), ui_(ui)
{
    setWindowFlag(Qt::Window);
    setObjectName(QStringLiteral("frmWork"));
    buildWindow();
    buildMenus();
    if (form_.readOnly())
        showReadOnly();
    form_.onDateienChanged = [this] { showDateien(); };
    form_.onRoomsChanged = [this] { showRooms(); };
}

frmWorkWindow::~frmWorkWindow() = default;

void frmWorkWindow::buildWindow()
{
    auto* central = new QWidget(this);

    // The rooms of the order.
    auto* roomsPane = new QWidget(central);
    lvRooms = new QTreeWidget(roomsPane);
    lvRooms->setObjectName(QStringLiteral("lvRooms"));
    lvRooms->setAccessibleName(qs(std::string_view(kRoomsCaption)));
    setUpListView(*lvRooms, roomHeadings());
    lvRooms->setSelectionMode(QAbstractItemView::SingleSelection);
    lbRoomsLabel = new QLabel(qs(std::string_view(kRoomsCaption)), roomsPane);
    lbRoomsLabel->setObjectName(QStringLiteral("lbRoomsLabel"));
    lbRoomsLabel->setBuddy(lvRooms);
    pbRooms = button(roomsPane, "pbRooms", QStringLiteral("&Auswahl"),
                     QStringLiteral("Die Räume des Auftrags aus der Gebäudestruktur auswählen"));
    auto* roomsGrid = new QGridLayout(roomsPane);
    roomsGrid->setContentsMargins(0, 0, 0, 0);
    roomsGrid->addWidget(lbRoomsLabel, 0, 0);
    roomsGrid->addWidget(lvRooms, 1, 0);
    auto* roomButtons = new QVBoxLayout;
    roomButtons->addWidget(pbRooms);
    roomButtons->addStretch();
    roomsGrid->addLayout(roomButtons, 1, 1);

    // The scanner data files of the order.
    auto* filesPane = new QWidget(central);
    lvDateien = new QTreeWidget(filesPane);
    lvDateien->setObjectName(QStringLiteral("lvDateien"));
    lvDateien->setAccessibleName(QStringLiteral("hinzugefügte Daten"));
    lbDateienLabel = new QLabel(filesPane);
    lbDateienLabel->setObjectName(QStringLiteral("lbDateienLabel"));
    lbDateienLabel->setTextFormat(Qt::PlainText);
    lbDateienLabel->setText(qs(std::string_view(kDateienCaption)));
    lbDateienLabel->setBuddy(lvDateien);
    // Load: the headings of the file list.
    setUpListView(*lvDateien, {QStringLiteral("Name"), QStringLiteral("Erf.-datum"), QStringLiteral("Pfad")});
    lvDateien->setSelectionMode(QAbstractItemView::SingleSelection);
    lvDateien->installEventFilter(this);
    pbAdd = button(filesPane, "pbAdd", QStringLiteral("&Hinzufügen"),
                   QStringLiteral("Eine Scannerdatei (*.dat) zum Auftrag hinzufügen und einlesen"));
    pbRemove = button(filesPane, "pbRemove", QStringLiteral("&Entfernen"),
                      QStringLiteral("Die ausgewählte Datei entfernen und die Scandaten aus den übrigen neu aufbauen"));
    pbNeu = button(filesPane, "pbNeu", QStringLiteral("&Auswertung aktualisieren"),
                   QStringLiteral("Alle Scandaten aus den Dateien des Auftrags neu einlesen"));
    pbRemove->setEnabled(false);
    auto* filesGrid = new QGridLayout(filesPane);
    filesGrid->setContentsMargins(0, 0, 0, 0);
    filesGrid->addWidget(lbDateienLabel, 0, 0);
    filesGrid->addWidget(lvDateien, 1, 0);
    auto* fileButtons = new QVBoxLayout;
    fileButtons->addWidget(pbAdd);
    fileButtons->addWidget(pbRemove);
    fileButtons->addSpacing(12);
    fileButtons->addWidget(pbNeu);
    fileButtons->addStretch();
    filesGrid->addLayout(fileButtons, 1, 1);

    splitter_ = new QSplitter(Qt::Vertical, central);
    splitter_->addWidget(roomsPane);
    splitter_->addWidget(filesPane);
    splitter_->setStretchFactor(0, 3);
    splitter_->setStretchFactor(1, 2);
    splitter_->setChildrenCollapsible(false);

    pbOk = button(central, "pbOk", QStringLiteral("&OK"), QStringLiteral("Das Fenster des Auftrags schließen"));
    auto* bottom = new QHBoxLayout;
    bottom->addStretch();
    bottom->addWidget(pbOk);

    auto* layout = new QVBoxLayout(central);
    layout->addWidget(splitter_, 1);
    layout->addLayout(bottom);
    setCentralWidget(central);

    lbCounts = new QLabel(this);
    statusBar()->addPermanentWidget(lbCounts);

    // The buttons of the file list and the room list stay as wide as the widest of them.
    const int width = std::max({pbAdd->sizeHint().width(), pbRemove->sizeHint().width(), pbNeu->sizeHint().width(),
                                pbRooms->sizeHint().width()});
    for (QPushButton* b : {pbAdd, pbRemove, pbNeu, pbRooms})
        b->setMinimumWidth(width);

    connect(pbAdd, &QPushButton::clicked, this, [this] { run([this] { form_.pbAdd_Click(); }); });
    connect(pbRemove, &QPushButton::clicked, this, [this] {
        run([this] {
            const auto [key, text] = selectedDatei();
            form_.pbRemove_Click(key, text);
        });
    });
    connect(pbNeu, &QPushButton::clicked, this, [this] { run([this] { form_.pbNeu_Click(); }); });
    connect(pbRooms, &QPushButton::clicked, this, [this] { mnuDateiFkt_Click(workmenu::Raeume); });
    connect(pbOk, &QPushButton::clicked, this, [this] { Unload(); });
    connect(lvDateien, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item, int) {
        const std::string key = item->data(0, KeyRole).toString().toStdString();
        run([this, key] { form_.lvDateien_DblClick(key); });
    });

    resize(900, 640);
    columnsSized_ = restoreWindowState(*this, QString::fromLatin1(kStateKey), {lvRooms, lvDateien});
}

void frmWorkWindow::buildMenus()
{
    mnuDatei = menuBar()->addMenu(QStringLiteral("&Datei"));
    mnuDatei->setObjectName(QStringLiteral("mnuDatei"));
    mnuDateiFkt[workmenu::Raeume] = mnuDatei->addAction(QStringLiteral("&Räume"));
    mnuDateiFkt[workmenu::Archiv] = mnuDatei->addAction(QStringLiteral("&Scandaten zusammenfassen"));
    mnuDateiFkt[workmenu::Separator] = mnuDatei->addSeparator();
    mnuDateiFkt[workmenu::Beenden] = mnuDatei->addAction(QStringLiteral("&Beenden"));
    for (const int index : {workmenu::Raeume, workmenu::Archiv, workmenu::Beenden})
        connect(mnuDateiFkt[index], &QAction::triggered, this, [this, index] { mnuDateiFkt_Click(index); });

    mnuReport = menuBar()->addMenu(qs(kReportMenuCaption));
    mnuReport->setObjectName(QStringLiteral("mnuReport"));
    for (const ReportMenuEntry& e : kReportMenu) {
        QAction* action = mnuReport->addAction(qs(e.caption));
        mnuReportFkt[e.index] = action;
        connect(action, &QAction::triggered, this, [this, i = e.index] { mnuReportFkt_Click(i); });
    }
    mnuFehler = menuBar()->addMenu(qs(kFehlerMenuCaption));
    mnuFehler->setObjectName(QStringLiteral("mnuFehler"));
    for (const ReportMenuEntry& e : kFehlerMenu) {
        QAction* action = mnuFehler->addAction(qs(e.caption));
        mnuFehlerFkt[e.index] = action;
        connect(action, &QAction::triggered, this, [this, i = e.index] { mnuFehlerFkt_Click(i); });
    }
}

void frmWorkWindow::showReadOnly()
{
    // Looking is all: the commands that would change the order are out of use; the room
    // selection shows the rooms, and the reports are made in a private copy.
    for (QPushButton* b : {pbAdd, pbRemove, pbNeu})
        b->setEnabled(false);
    mnuDateiFkt[workmenu::Archiv]->setEnabled(false);
    lbNurAnsehen = new QLabel(QStringLiteral("Nur zum Ansehen geöffnet"), this);
    lbNurAnsehen->setObjectName(QStringLiteral("lbNurAnsehen"));
    lbNurAnsehen->setToolTip(QStringLiteral("Der Auftrag kann nicht geändert werden. Berichte werden in einer "
                                            "eigenen Kopie des Auftrags erstellt."));
    statusBar()->addWidget(lbNurAnsehen);
}

// ---------------------------------------------------------------- what the lists show

void frmWorkWindow::showDateien()
{
    fill(*lvDateien, form_.lvDateien, KeyRole, [](ListViewItem& item, const ListItem& li) {
        // The stored path, as a person reads paths.
        if (li.subItems.size() > 1) {
            item.setText(2, qs(displayPath(li.subItems[1])));
            item.setToolTip(2, item.text(2));
        }
    });
    pbRemove->setEnabled(form_.pbRemoveEnabled);
    showCounts();
}

void frmWorkWindow::showRooms()
{
    fill(*lvRooms, form_.lvRooms, KeyRole, [](ListViewItem& item, const ListItem& li) {
        if (!li.subItems.empty())
            item.setToolTip(1, qs(roomstatus::hint(li.subItems[0])));
        item.setTextAlignment(3, Qt::AlignRight | Qt::AlignVCenter);
    });
    showCounts();
}

void frmWorkWindow::showCounts()
{
    const auto rooms = form_.lvRooms.size(), files = form_.lvDateien.size();
    lbCounts->setText(QStringLiteral("%1 %2, %3 %4")
                          .arg(rooms)
                          .arg(rooms == 1 ? QStringLiteral("Raum") : QStringLiteral("Räume"))
                          .arg(files)
                          .arg(files == 1 ? QStringLiteral("Datei") : QStringLiteral("Dateien")));
}

std::pair<std::string, std::string> frmWorkWindow::selectedDatei() const
{
    // Only a file the list shows selected; the current item alone is no choice.
    const auto selected = lvDateien->selectedItems();
    if (selected.isEmpty())
        return {};
    const QTreeWidgetItem* item = selected.first();
    return {item->data(0, KeyRole).toString().toStdString(), item->text(0).toStdString()};
}

// ---------------------------------------------------------------- procedures

bool frmWorkWindow::Init()
{
    bool ok = false;
    run([this, &ok] { ok = form_.Init(); });
    return ok;
}

void frmWorkWindow::setGebDb(QGebDb* gebDb) { form_.f_QGebDb = gebDb; }

template <class Command>
void frmWorkWindow::run(Command&& command)
{
    if (unloaded_)
        return;
    // What the status bar said belongs to the command before.
    if (running_ == 0)
        statusBar()->clearMessage();
    ++running_;
    command();
    --running_;
}

void frmWorkWindow::Form_Activate()
{
    if (unloaded_)
        return;
    run([this] {
        form_.Init();
        lvRooms->setHeaderLabels(roomHeadings());
        form_.InitData();
    });
}

void frmWorkWindow::mnuDateiFkt_Click(int index)
{
    switch (index) {
    case workmenu::Raeume:
        openRoomSelection();
        break;
    case workmenu::Archiv:
        run([this] {
            ui_.setBusy(true);
            const std::string archive = form_.MakeArchive();
            ui_.setBusy(false);
            if (!archive.empty())
                statusBar()->showMessage(QStringLiteral("Scandaten zusammengefasst in ") + qs(displayPath(archive)));
        });
        break;
    case workmenu::Beenden:
        Unload();
        break;
    default:
        break;
    }
}

void frmWorkWindow::mnuReportFkt_Click(int index)
{
    run([this, index] { form_.mnuReportFkt_Click(index); });
}

void frmWorkWindow::mnuFehlerFkt_Click(int index)
{
    run([this, index] { form_.mnuFehlerFkt_Click(index); });
}

void frmWorkWindow::openRoomSelection()
{
    if (!roomWindowFactory_ || roomWindow_ || unloaded_)
        return;
    run([this] {
        ui_.setBusy(true);
        roomWindow_ = roomWindowFactory_(RoomSelectionRequest{form_.f_DBAuftrag, form_.f_QGebDb, settings_, ui_, this});
        ui_.setBusy(false);
        if (!roomWindow_)
            return;
        roomWindow_->exec();
        delete roomWindow_.data();
    });
    // Back from the modal room selection this window is active again: both lists are refilled.
    Form_Activate();
}

// ---------------------------------------------------------------- window events

void frmWorkWindow::showEvent(QShowEvent* event)
{
    OrderWindow::showEvent(event);
    if (!columnsSized_) {
        columnsSized_ = true;
        setColumnShares(*lvRooms, {0.22, 0.10, 0.18, 0.12});
        setColumnShares(*lvDateien, {0.28, 0.16});
    }
    // The lists are filled when the window is shown, also where the window system does
    // not report its activation; the activation that follows refills nothing.
    Form_Activate();
    filledOnShow_ = true;
}

void frmWorkWindow::changeEvent(QEvent* event)
{
    OrderWindow::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || !isActiveWindow() || running_ > 0 || unloaded_)
        return;
    if (filledOnShow_) {
        filledOnShow_ = false;
        return;
    }
    Form_Activate();
}

bool frmWorkWindow::eventFilter(QObject* watched, QEvent* event)
{
    // The return key opens the selected data file as a double click does.
    if (watched == lvDateien && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if ((key == Qt::Key_Return || key == Qt::Key_Enter) && lvDateien->currentItem()) {
            const std::string itemKey = lvDateien->currentItem()->data(0, KeyRole).toString().toStdString();
            run([this, itemKey] { form_.lvDateien_DblClick(itemKey); });
            return true;
        }
    }
    return OrderWindow::eventFilter(watched, event);
}

void frmWorkWindow::Unload() { close(); }

void frmWorkWindow::closeEvent(QCloseEvent* event)
{
    // While a command works in the order (the window paints on meanwhile), the window stays.
    if (running_ > 0) {
        event->ignore();
        return;
    }
    Form_Unload();
    OrderWindow::closeEvent(event);
}

void frmWorkWindow::Form_Unload()
{
    if (unloaded_)
        return;
    // The room selection first: its unload writes the rooms back into the still open order.
    if (roomWindow_)
        roomWindow_->done(QDialog::Rejected);
    unloaded_ = true;
    saveWindowState(*this, QString::fromLatin1(kStateKey), {lvRooms, lvDateien});
    form_.f_DBAuftrag.CloseDb();
    f_bReload = true;
    hide();
    emit unloaded();
}

} // namespace qi
