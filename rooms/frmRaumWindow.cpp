#include "frmRaumWindow.h"

#include "ListView.h"
#include "QTreeGebStruCtrl.h"
#include "WindowState.h"

#include <QApplication>
#include <QCheckBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <unordered_map>

namespace qi {

namespace {

constexpr const char* kStateKey = "frmRaum";

QString qs(const std::string& s) { return QString::fromStdString(s); }

QPushButton* button(QWidget* parent, const char* name, const QString& text, const QString& hint)
{
    auto* b = new QPushButton(text, parent);
    b->setObjectName(QString::fromLatin1(name));
    b->setToolTip(hint);
    b->setAccessibleDescription(hint);
    b->setAutoDefault(false);
    return b;
}

} // namespace

frmRaumWindow::frmRaumWindow(CAuftragDb& db, QGebDb* gebDb, Settings& settings, UserInteraction& ui, QWidget* owner)
    : QDialog(owner), form_(db, gebDb, settings, ui)
{
    buildWindow();
    form_.onTreeChanged = [this] { showTree(); };
    form_.onRoomLinesChanged = [this] { showRoomLines(); };
    form_.onOrderRoomsChanged = [this] { showOrderRooms(); };
    form_.onAllRoomsChanged = [this] { showAllRooms(); };
    form_.onUnloadRequested = [this] { Unload(); };
    form_.Form_Load();
    if (form_.readOnly()) {
        // The rooms of an order that is open read-only are only shown.
        for (QPushButton* b : {pbIn, pbAllIn, pbOut, pbAllOut})
            b->setEnabled(false);
        lbHint->setText(QStringLiteral("Nur zum Ansehen geöffnet: die Räume können nicht geändert werden."));
        pbFertig->setToolTip(QStringLiteral("Das Fenster schließen"));
    }
}

frmRaumWindow::~frmRaumWindow() = default;

void frmRaumWindow::buildWindow()
{
    setObjectName(QStringLiteral("frmRaum"));
    setWindowTitle(QStringLiteral("Raumauswahl"));
    setModal(true);
    setSizeGripEnabled(true);

    // Left: the building tree above the rooms of the node picked.
    auto* treePane = new QWidget(this);
    tvGeb = new QTreeGebStruCtrl(treePane);
    tvGeb->setObjectName(QStringLiteral("tvGeb"));
    tvGeb->setAccessibleName(QStringLiteral("Gebäudestruktur"));
    lbGebLabel = new QLabel(QStringLiteral("&Gebäudestruktur"), treePane);
    lbGebLabel->setBuddy(tvGeb);
    auto* treeLayout = new QVBoxLayout(treePane);
    treeLayout->setContentsMargins(0, 0, 0, 0);
    treeLayout->addWidget(lbGebLabel);
    treeLayout->addWidget(tvGeb);

    auto* roomsPane = new QWidget(this);
    lbRooms = new QListWidget(roomsPane);
    lbRooms->setObjectName(QStringLiteral("lbRooms"));
    lbRooms->setSelectionMode(QAbstractItemView::ExtendedSelection);
    lbRooms->setAccessibleName(QStringLiteral("Räume"));
    lbRoomsLabel = new QLabel(QStringLiteral("&Räume"), roomsPane);
    lbRoomsLabel->setBuddy(lbRooms);
    cbAllRooms = new QCheckBox(QString::fromUtf8(raumtext::AllRooms), roomsPane);
    cbAllRooms->setObjectName(QStringLiteral("cbAllRooms"));
    auto* roomsLayout = new QVBoxLayout(roomsPane);
    roomsLayout->setContentsMargins(0, 0, 0, 0);
    roomsLayout->addWidget(lbRoomsLabel);
    roomsLayout->addWidget(lbRooms);
    roomsLayout->addWidget(cbAllRooms);

    splitter_ = new QSplitter(Qt::Vertical, this);
    splitter_->addWidget(treePane);
    splitter_->addWidget(roomsPane);
    splitter_->setStretchFactor(0, 3);
    splitter_->setStretchFactor(1, 2);
    splitter_->setChildrenCollapsible(false);

    // Middle: the buttons between the lists.
    pbIn = button(this, "pbIn", QStringLiteral("&Hinzufügen >"),
                  QStringLiteral("Die ausgewählten Räume in den Auftrag übernehmen"));
    pbAllIn = button(this, "pbAllIn", QStringLiteral("&Alle hinzufügen >>"),
                     QStringLiteral("Alle aufgelisteten Räume in den Auftrag übernehmen"));
    pbOut = button(this, "pbOut", QStringLiteral("< &Entfernen"),
                   QStringLiteral("Die ausgewählten Räume aus dem Auftrag nehmen"));
    pbAllOut = button(this, "pbAllOut", QStringLiteral("<< Alle e&ntfernen"),
                      QStringLiteral("Alle Räume aus dem Auftrag nehmen"));
    auto* middle = new QVBoxLayout;
    middle->addStretch();
    middle->addWidget(pbIn);
    middle->addWidget(pbAllIn);
    middle->addSpacing(24);
    middle->addWidget(pbOut);
    middle->addWidget(pbAllOut);
    middle->addStretch();

    // Right: the rooms of the order.
    lvRooms = new QTreeWidget(this);
    lvRooms->setObjectName(QStringLiteral("lvRooms"));
    lvRooms->setAccessibleName(QStringLiteral("Räume des Auftrags"));
    setUpListView(*lvRooms, {QString::fromUtf8(raumtext::Raum), QString::fromUtf8(raumtext::Status)});
    lvRooms->setSelectionMode(QAbstractItemView::ExtendedSelection);
    lvRooms->setColumnWidth(0, 160);
    lvRooms->installEventFilter(this);
    lvRoomsLabel = new QLabel(QStringLiteral("Räume des A&uftrags"), this);
    lvRoomsLabel->setBuddy(lvRooms);
    lbHint = new QLabel(QStringLiteral("Doppelklick oder Eingabetaste: Status N ↔ L"), this);
    lbHint->setEnabled(false);
    pbFertig = button(this, "pbFertig", QString::fromUtf8(raumtext::Fertig),
                      QStringLiteral("Die Räume speichern und das Fenster schließen"));
    auto* right = new QVBoxLayout;
    right->addWidget(lvRoomsLabel);
    right->addWidget(lvRooms, 1);
    right->addWidget(lbHint);
    auto* bottom = new QHBoxLayout;
    bottom->addStretch();
    bottom->addWidget(pbFertig);
    right->addLayout(bottom);

    auto* layout = new QHBoxLayout(this);
    layout->addWidget(splitter_, 5);
    layout->addLayout(middle);
    layout->addLayout(right, 4);

    connect(tvGeb, &QTreeGebStruCtrl::Click, this, [this] { run([this] { form_.tvGeb_Click(); }); });
    // Walking the tree with the keyboard picks the node as a click does; a node reached by
    // the mouse waits for the click (the current node changes while the button is down).
    connect(tvGeb, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item, QTreeWidgetItem*) {
        if (item && tvGeb->hasFocus() && !treePressed_)
            run([this] { form_.tvGeb_Click(); });
    });
    tvGeb->viewport()->installEventFilter(this);
    connect(cbAllRooms, &QCheckBox::clicked, this, [this] { run([this] { form_.cbAllRooms_Click(); }); });
    connect(pbIn, &QPushButton::clicked, this, [this] { run([this] { form_.pbIn_Click(); }); });
    connect(lbRooms, &QListWidget::itemDoubleClicked, this, [this] { run([this] { form_.pbIn_Click(); }); });
    connect(pbAllIn, &QPushButton::clicked, this, [this] { run([this] { form_.pbAllIn_Click(); }); });
    connect(pbOut, &QPushButton::clicked, this, [this] { run([this] { form_.pbOut_Click(); }); });
    connect(pbAllOut, &QPushButton::clicked, this, [this] { run([this] { form_.pbAllOut_Click(); }); });
    connect(pbFertig, &QPushButton::clicked, this, [this] { run([this] { form_.pbFertig_Click(); }); });
    connect(lvRooms, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item, int) {
        lvRooms->setCurrentItem(item);
        run([this] { form_.lvRooms_DblClick(); });
    });

    resize(880, 600);
    if (!restoreWindowState(*this, QString::fromLatin1(kStateKey), {lvRooms}))
        lvRooms->setColumnWidth(0, 200);
}

// ---------------------------------------------------------------- from the widgets to the procedures

void frmRaumWindow::takeSelection()
{
    form_.tvGebSelected = tvGeb->SelectedNode();
    form_.cbAllRooms = cbAllRooms->isChecked();
    for (int i = 0; i < lbRooms->count() && i < int(form_.lbRooms.size()); ++i)
        form_.lbRooms[std::size_t(i)].selected = lbRooms->item(i)->isSelected();

    // The rows in the order the list shows them (a click on a heading sorts them).
    std::unordered_map<std::string, RoomRow> byKey;
    for (RoomRow& row : form_.lvRooms)
        byKey.emplace(row.key, std::move(row));
    std::vector<RoomRow> rows;
    rows.reserve(byKey.size());
    for (int i = 0; i < lvRooms->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = lvRooms->topLevelItem(i);
        const auto it = byKey.find(item->data(0, KeyRole).toString().toStdString());
        if (it == byKey.end())
            continue;
        it->second.selected = item->isSelected();
        rows.push_back(std::move(it->second));
        byKey.erase(it);
    }
    form_.lvRooms = std::move(rows);
    const QTreeWidgetItem* current = lvRooms->currentItem();
    form_.lvRoomsSelectedKey = current ? current->data(0, KeyRole).toString().toStdString() : std::string();
}

template <class Procedure>
void frmRaumWindow::run(Procedure&& procedure)
{
    if (unloaded_)
        return;
    ++running_;
    takeSelection();
    procedure();
    --running_;
}

void frmRaumWindow::InitData() { run([this] { form_.InitData(); }); }

// ---------------------------------------------------------------- from the procedures to the widgets

void frmRaumWindow::showTree()
{
    if (form_.tvGebStruktur)
        tvGeb->SetGebStruktur(*form_.tvGebStruktur);
    else
        tvGeb->clear();
}

void frmRaumWindow::showRoomLines()
{
    lbRooms->clear();
    for (const RoomLine& line : form_.lbRooms) {
        auto* item = new QListWidgetItem(qs(line.text), lbRooms);
        item->setData(KeyRole, line.itemData);
        if (!line.description.empty())
            item->setToolTip(qs(line.description));
        item->setSelected(line.selected);
    }
}

void frmRaumWindow::showOrderRooms()
{
    const int scrolled = lvRooms->verticalScrollBar()->value();
    lvRooms->clear();
    QTreeWidgetItem* current = nullptr;
    for (const RoomRow& row : form_.lvRooms) {
        auto* item = new ListViewItem(lvRooms);
        item->setText(0, qs(row.text));
        item->setText(1, qs(row.status));
        item->setToolTip(1, qs(roomstatus::hint(row.status)));
        item->setData(0, KeyRole, qs(row.key));
        if (row.key == form_.lvRoomsSelectedKey)
            current = item;
    }
    sortAgain(*lvRooms);
    if (current)
        lvRooms->setCurrentItem(current, 0, QItemSelectionModel::NoUpdate);
    for (int i = 0; i < lvRooms->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = lvRooms->topLevelItem(i);
        if (const RoomRow* row = form_.rowByKey(item->data(0, KeyRole).toString().toStdString()))
            item->setSelected(row->selected);
    }
    lvRooms->verticalScrollBar()->setValue(scrolled);
}

void frmRaumWindow::showAllRooms() { cbAllRooms->setChecked(form_.cbAllRooms); }

// ---------------------------------------------------------------- window events

bool frmRaumWindow::isOwnWindow(const QWidget* window) const
{
    for (const QWidget* w = window; w; w = w->parentWidget())
        if (w == this)
            return true;
    return false;
}

void frmRaumWindow::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    // The first activation fills the tree and the list even where the window system
    // does not report the activation of a window that was just shown.
    if (form_.bFirstActivation)
        run([this] { form_.Form_Activate(); });
}

void frmRaumWindow::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || unloaded_)
        return;
    if (isActiveWindow()) {
        run([this] { form_.Form_Activate(); });
        return;
    }
    // Only another window of the program counts: not another application, not the
    // message boxes this window opens itself.
    const QWidget* now = QApplication::activeWindow();
    if (!now || isOwnWindow(now) || running_ > 0)
        return;
    run([this] { form_.Form_Deactivate(); });
}

bool frmRaumWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (tvGeb && watched == tvGeb->viewport()) {
        if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick) {
            treePressed_ = true;
            pressedNode_ = tvGeb->itemAt(static_cast<QMouseEvent*>(event)->position().toPoint());
        } else if (event->type() == QEvent::MouseButtonRelease && treePressed_) {
            treePressed_ = false;
            // Released on another node than pressed (dragged): there is no click, the node reached counts.
            QTreeWidgetItem* at = tvGeb->itemAt(static_cast<QMouseEvent*>(event)->position().toPoint());
            if (at != pressedNode_ && tvGeb->currentItem() && tvGeb->currentItem() == at)
                run([this] { form_.tvGeb_Click(); });
        }
    }
    if (watched == lvRooms && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if ((key == Qt::Key_Return || key == Qt::Key_Enter) && lvRooms->currentItem()) {
            run([this] { form_.lvRooms_DblClick(); });
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmRaumWindow::Unload() { done(QDialog::Accepted); }

void frmRaumWindow::done(int result)
{
    if (!unloaded_) {
        takeSelection();
        ++running_;
        form_.Form_Unload();
        --running_;
        unloaded_ = true;
        saveWindowState(*this, QString::fromLatin1(kStateKey), {lvRooms});
    }
    QDialog::done(result);
}

} // namespace qi
