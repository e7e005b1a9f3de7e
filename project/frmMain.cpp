#include "frmMain.h"

#include "CAuftragDb.h"
#include "HelpTools.h"
#include "ListView.h"
#include "ProjectAccess.h"
#include "Startup.h"
#include "WindowState.h"
#include "frmAbout.h"
#include "frmAufNeu.h"

#include <QAction>
#include <QCloseEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <stdexcept>

namespace qi {

namespace {

constexpr const char* kKeyPrefix = "A ";
constexpr const char* kHelpFile = "QInventur.html";

struct RunError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::string trim(const std::string& s)
{
    const auto b = s.find_first_not_of(' ');
    if (b == std::string::npos)
        return {};
    return s.substr(b, s.find_last_not_of(' ') - b + 1);
}

} // namespace

frmMain::frmMain(UserInteraction& ui, std::string programFolder, QWidget* parent)
    : frmMain(ui, ProgramFolders{programFolder, programFolder}, parent)
{
}

frmMain::frmMain(UserInteraction& ui, ProgramFolders folders, QWidget* parent)
    : QMainWindow(parent), ui_(ui), folders_(std::move(folders))
{
    buildWindow();
}

frmMain::~frmMain()
{
    if (!unloaded_)
        Form_Unload();
}

void frmMain::buildWindow()
{
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    lvAuftraege = new QTreeWidget(central);
    lvAuftraege->setObjectName(QStringLiteral("lvAuftraege"));
    setUpListView(*lvAuftraege, {QStringLiteral("Name"), QStringLiteral("erstellt"), QStringLiteral("geändert"),
                                 QStringLiteral("Ersteller")});
    lvAuftraege->setSelectionMode(QAbstractItemView::SingleSelection);
    lvAuftraege->setColumnWidth(0, 220);
    lvAuftraege->setColumnWidth(1, 150);
    lvAuftraege->setColumnWidth(2, 150);
    lvAuftraege->installEventFilter(this);
    Label1 = new QLabel(QStringLiteral("Öffnen mit Doppelklick"), central);
    layout->addWidget(lvAuftraege);
    layout->addWidget(Label1);
    setCentralWidget(central);

    connect(lvAuftraege, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item, int) { lvAuftraege_ItemClick(item); });
    connect(lvAuftraege, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* item, QTreeWidgetItem*) { lvAuftraege_ItemClick(item); });
    connect(lvAuftraege, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem*, int) { lvAuftraege_DblClick(); });

    mnuDatei = menuBar()->addMenu(QStringLiteral("&Datei"));
    mnuDateiFkt[menuindex::NewOrder] = mnuDatei->addAction(QStringLiteral("Auftrag &Neu"));
    mnuDateiFkt[menuindex::DeleteOrder] = mnuDatei->addAction(QStringLiteral("Auftrag &Löschen"));
    mnuDatei->addSeparator();
    mnuDateiFkt[menuindex::Quit] = mnuDatei->addAction(QStringLiteral("&Beenden"));
    for (auto& [index, action] : mnuDateiFkt)
        connect(action, &QAction::triggered, this, [this, i = index] { mnuDateiFkt_Click(i); });

    mnuHelp = menuBar()->addMenu(QStringLiteral("&?"));
    mnuHelpFkt[menuindex::HelpContents] = mnuHelp->addAction(QStringLiteral("&Hilfethemen"));
    mnuHelp->addSeparator();
    mnuHelpFkt[menuindex::About] = mnuHelp->addAction(QStringLiteral("&Info"));
    for (auto& [index, action] : mnuHelpFkt)
        connect(action, &QAction::triggered, this, [this, i = index] { mnuHelpFkt_Click(i); });

    resize(720, 460);
    restoreWindowState(*this, QStringLiteral("frmMain"), {lvAuftraege});
}

bool frmMain::eventFilter(QObject* watched, QEvent* event)
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

std::string frmMain::helpFile() const { return folders_.installation + "\\" + kHelpFile; }

void frmMain::setActiveState(bool active)
{
    // The work window is owned by this window; disabling the window itself would disable it too.
    active_ = active;
    centralWidget()->setEnabled(active);
    menuBar()->setEnabled(active);
}

void frmMain::runModal(QDialog& dialog) { dialog.exec(); }

// ------------------------------------------------------------------ start-up and list

void frmMain::Form_Load()
{
    StartupResult r = RunStartup(folders_, settings_, ui_);
    setWindowTitle(QString::fromStdString(r.caption));
    if (!r.completed)
        return;
    projectLock_ = std::move(r.lock);
    inventurDb_ = std::move(r.inventurDb);
    gebDb_ = std::move(r.gebDb);
    objektDb_ = std::move(r.objektDb);
    dbAuftrag_ = std::make_unique<CAuftragDb>(ui_);
    newCurrent();
    if (settings_.readOnly)
        showReadOnly();
    InitAuftraege();
}

void frmMain::showReadOnly()
{
    mnuDateiFkt[menuindex::NewOrder]->setEnabled(false);
    mnuDateiFkt[menuindex::DeleteOrder]->setEnabled(false);
    lbNurAnsehen = new QLabel(QStringLiteral("Nur zum Ansehen geöffnet"), this);
    lbNurAnsehen->setObjectName(QStringLiteral("lbNurAnsehen"));
    lbNurAnsehen->setToolTip(QString::fromStdString(settings_.readOnlyReason));
    statusBar()->addWidget(lbNurAnsehen);
}

void frmMain::detachCurrent()
{
    if (recAuftrag_ && recAuftrag_ != ownRec_.get()) {
        auto own = std::make_unique<CAuftragRec>();
        own->CopyFrom(*recAuftrag_);
        ownRec_ = std::move(own);
        recAuftrag_ = ownRec_.get();
    }
}

void frmMain::setCurrent(CAuftragRec* rec)
{
    recAuftrag_ = rec;
    if (rec != ownRec_.get())
        ownRec_.reset();
}

void frmMain::newCurrent()
{
    ownRec_ = std::make_unique<CAuftragRec>();
    recAuftrag_ = ownRec_.get();
}

void frmMain::InitAuftraege()
{
    lvAuftraege->clear();
    detachCurrent();
    if (!inventurDb_) {
        ui_.showError(mainlabel::InitAuftraege, kNoObject);
        return;
    }
    if (!inventurDb_->ReadAllAuftragRec2Coll(collAuftraege_)) {
        ui_.showError(mainlabel::InitAuftraege, inventurDb_->LastError());
        return;
    }
    if (collAuftraege_.Count() == 0) {
        setCurrent(nullptr);
        emit ordersListed();
        return;
    }
    collAuftraege_.ResetIndex();
    CAuftragRec* last = nullptr;
    collAuftraege_.GetPrev(last);
    setCurrent(last);
    for (const CAuftragRec& rec : collAuftraege_) {
        auto* item = new ListViewItem(lvAuftraege);
        item->setData(0, Qt::UserRole, QString::fromStdString(kKeyPrefix + std::to_string(rec.lID)));
        showOrder(*item, rec);
    }
    sortAgain(*lvAuftraege);
    emit ordersListed();
}

void frmMain::showOrder(QTreeWidgetItem& item, const CAuftragRec& rec)
{
    item.setText(0, QString::fromStdString(rec.stBezeichung));
    item.setText(1, QString::fromStdString(rec.erstellt.toDisplayText()));
    item.setText(2, QString::fromStdString(rec.letzte_Aenderung.toDisplayText()));
    item.setText(3, QString::fromStdString(rec.stErsteller));
}

void frmMain::showOrdersAgain()
{
    // The records hold what opening an order wrote back (its stamp "geändert").
    for (int i = 0; i < lvAuftraege->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = lvAuftraege->topLevelItem(i);
        if (const CAuftragRec* rec = recordOfItem(item))
            showOrder(*item, *rec);
    }
    sortAgain(*lvAuftraege);
}

CAuftragRec* frmMain::recordOfItem(const QTreeWidgetItem* item)
{
    if (!item)
        return nullptr;
    const std::string key = item->data(0, Qt::UserRole).toString().toStdString();
    try {
        const std::string number = trim(key.size() > 1 ? key.substr(1) : std::string());
        std::size_t used = 0;
        const long id = std::stol(number, &used);
        if (used != number.size())
            return nullptr;
        return collAuftraege_.Item(CAuftragRecColl::MakeIndex(std::int32_t(id)));
    } catch (const std::exception&) {
        return nullptr;
    }
}

QTreeWidgetItem* frmMain::selectedItem() const
{
    const auto selected = lvAuftraege->selectedItems();
    return selected.isEmpty() ? nullptr : selected.first();
}

void frmMain::lvAuftraege_ItemClick(QTreeWidgetItem* item)
{
    if (CAuftragRec* rec = recordOfItem(item))
        setCurrent(rec);
}

// ------------------------------------------------------------------ opening an order

void frmMain::lvAuftraege_DblClick()
{
    QTreeWidgetItem* item = selectedItem();
    if (!item || !active_)
        return;
    try {
        dbAuftrag_ = std::make_unique<CAuftragDb>(ui_);
        CAuftragRec* rec = recordOfItem(item);
        if (!rec)
            throw RunError(rterr::InvalidCall);
        setCurrent(rec);
        if (!inventurDb_)
            throw RunError(kNoObject);
        if (OpenOrderDatabase(*inventurDb_, settings_, ui_, *rec, *dbAuftrag_) != OrderResult::Done)
            return;

        if (!orderWindowFactory_)
            throw RunError(kNoObject);
        if (workWindow_)
            workWindow_->deleteLater();
        workWindow_ = orderWindowFactory_(OpenOrder{*dbAuftrag_, settings_, ui_, this});
        if (!workWindow_)
            throw RunError(kNoObject);
        connect(workWindow_.data(), &OrderWindow::unloaded, this, [this] {
            showOrdersAgain();
            setActiveState(true);
            update();
            emit orderWindowUnloaded();
        });
        workWindow_->Init();
        workWindow_->setGebDb(gebDb_.get());
        workWindow_->setWindowTitle(QString::fromStdString("Auftrag: " + rec->stBezeichung));
        workWindow_->show();
        workWindow_->raise();
        workWindow_->activateWindow();
        setActiveState(false);
    } catch (const std::exception& e) {
        ui_.showError(mainlabel::DblClick, e.what());
    }
}

void frmMain::Form_Paint()
{
    if (workWindow_ && workWindow_->f_bReload && dbAuftrag_) {
        // The finished window goes with the database it borrowed.
        workWindow_->deleteLater();
        workWindow_ = nullptr;
        dbAuftrag_.reset();
    }
}

void frmMain::paintEvent(QPaintEvent* event)
{
    QMainWindow::paintEvent(event);
    Form_Paint();
}

// ------------------------------------------------------------------ menus

void frmMain::mnuDateiFkt_Click(int index)
{
    switch (index) {
    case menuindex::NewOrder: MakeNewOrder(); break;
    case menuindex::DeleteOrder: deleteSelectedOrder(); break;
    case menuindex::Quit: close(); break;
    default: break;
    }
}

void frmMain::mnuHelpFkt_Click(int index)
{
    switch (index) {
    case menuindex::HelpContents: WinHelpA(ui_, helpFile(), HELP_CONTENTS, 0); break;
    case menuindex::About: {
        frmAbout about(this);
        runModal(about);
        break;
    }
    default: break;
    }
}

// ------------------------------------------------------------------ new and deleted orders

std::pair<std::string, std::string> frmMain::askNewOrder()
{
    frmAufNeu dialog(this);
    runModal(dialog);
    return {dialog.stName, dialog.stPerson};
}

void frmMain::MakeNewOrder()
{
    if (RefuseProjectChange(settings_, ui_))
        return;
    if (!inventurDb_) {
        ui_.showError(mainlabel::MakeNewOrder, kNoObject);
        return;
    }
    std::string name, person;
    do
        std::tie(name, person) = askNewOrder();
    while (refuseTakenName(collAuftraege_, name, ui_));

    detachCurrent();
    newCurrent();
    if (name.empty()) {
        InitAuftraege();
        return;
    }
    CAuftragRec& rec = *recAuftrag_;
    rec.Init();
    rec.stBezeichung = name;
    rec.stErsteller = person;
    CreateOrder(*inventurDb_, settings_, ui_, rec);
    InitAuftraege();
}

void frmMain::closeWorkWindow()
{
    if (workWindow_) {
        // Its unload closes the order database and the room selection; the window itself
        // goes once control is back in the event loop.
        workWindow_->close();
        workWindow_->deleteLater();
        workWindow_ = nullptr;
    }
}

void frmMain::deleteSelectedOrder()
{
    if (RefuseProjectChange(settings_, ui_))
        return;
    QTreeWidgetItem* item = selectedItem();
    if (!item) {
        ui_.messageBox(ordermsg::SelectFirst, MsgButtons::Ok, MsgIcon::Exclamation, ordermsg::SelectFirstTitle);
        return;
    }
    const std::string text = item->text(0).toStdString();
    if (!ui_.askYesNo(ordermsg::deleteQuestion(text), ordermsg::DeleteTitle))
        return;
    try {
        CAuftragRec* rec = recordOfItem(item);
        if (!rec)
            throw RunError(rterr::InvalidCall);

        // The window goes with the order's database, which must be released before its file is deleted.
        closeWorkWindow();
        dbAuftrag_.reset();
        if (!inventurDb_)
            throw RunError(kNoObject);
        if (DeleteOrder(*inventurDb_, settings_, ui_, *rec) != OrderResult::Done)
            return;
        InitAuftraege();
        closeWorkWindow();
    } catch (const std::exception& e) {
        ui_.showError(mainlabel::DateiFkt, e.what());
    }
}

// ------------------------------------------------------------------ closing

void frmMain::closeEvent(QCloseEvent* event)
{
    saveWindowState(*this, QStringLiteral("frmMain"), {lvAuftraege});
    Form_Unload();
    event->accept();
}

void frmMain::Form_Unload()
{
    if (unloaded_)
        return;
    unloaded_ = true;
    if (recAuftrag_) {
        recAuftrag_->bOffen = 0;
        // A read-only project's register is not written.
        if (recAuftrag_->lID > 0 && !settings_.readOnly) {
            const bool saved = inventurDb_ && inventurDb_->EditAuftragRec(recAuftrag_);
            if (!saved) {
                ui_.showError(mainlabel::Unload, inventurDb_ ? inventurDb_->LastError() : kNoObject);
                return;
            }
        }
    }
    closeWorkWindow();
    dbAuftrag_.reset();
    inventurDb_.reset();
    objektDb_.reset();
    gebDb_.reset();
    projectLock_.reset();
}

} // namespace qi
