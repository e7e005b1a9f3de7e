#include "frmMain.h"

#include "CAuftragDb.h"
#include "FileSystem.h"
#include "HelpTools.h"
#include "ListView.h"
#include "ProjectAccess.h"
#include "ReportLinks.h"
#include "Startup.h"
#include "TableRecordset.h"
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

#include <filesystem>
#include <stdexcept>

namespace qi {

namespace {

/// Run-time errors of the window's own steps, with the system's descriptions.
namespace rterr {
inline constexpr const char* NoObject = "Objektvariable oder With-Blockvariable nicht festgelegt";
inline constexpr const char* InvalidCall = "Ungültiger Prozeduraufruf oder ungültiges Argument";
inline constexpr const char* BadFileName = "Dateiname oder -nummer falsch";
inline constexpr const char* FileNotFound = "Datei nicht gefunden";
inline constexpr const char* PathFileAccess = "Fehler beim Zugriff auf Pfad/Datei";
inline constexpr const char* PathNotFound = "Pfad nicht gefunden";
} // namespace rterr

constexpr const char* kKeyPrefix = "A ";
constexpr const char* kOrderFolder = "Inventur";
constexpr const char* kTemplateOrderDb = "QAuftrag.mdb";
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

/// True when the name can be a file name inside the order folder: no path
/// separators, drive or parent-folder steps, none of the characters that file
/// names cannot hold on the systems the projects live on.
bool isPlainFileName(const std::string& name)
{
    if (name.empty() || name.find("..") != std::string::npos)
        return false;
    for (unsigned char c : name)
        if (c < 0x20 || std::string_view("<>:\"/\\|?*").find(char(c)) != std::string_view::npos)
            return false;
    return true;
}

/// True when `file` lies directly in `folder`, after resolving every "." and "..".
bool liesDirectlyIn(const std::string& file, const std::string& folder)
{
    namespace fs = std::filesystem;
    std::error_code ec1, ec2;
    // Only the folders are resolved: the file's own name is not looked up (a name too long
    // for the file system fails later, in the copy).
    const fs::path f = fs::absolute(fs::u8path(nativePath(file)));
    const fs::path parent = fs::weakly_canonical(f.parent_path(), ec1);
    const fs::path d = fs::weakly_canonical(fs::absolute(fs::u8path(nativePath(folder))), ec2);
    return !ec1 && !ec2 && parent == d && f.filename() != "." && f.filename() != "..";
}

} // namespace

std::string ordermsg::deleteQuestion(const std::string& name) { return "Auftrag '" + name + "' löschen ?"; }

frmMain::frmMain(UserInteraction& ui, std::string programFolder, QWidget* parent)
    : QMainWindow(parent), ui_(ui), programFolder_(std::move(programFolder))
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

std::string frmMain::helpFile() const { return programFolder_ + "\\" + kHelpFile; }

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
    StartupResult r = RunStartup(programFolder_, settings_, ui_);
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
        ui_.showError(mainlabel::InitAuftraege, rterr::NoObject);
        return;
    }
    if (!inventurDb_->ReadAllAuftragRec2Coll(collAuftraege_)) {
        ui_.showError(mainlabel::InitAuftraege, inventurDb_->LastError());
        return;
    }
    if (collAuftraege_.Count() == 0) {
        setCurrent(nullptr);
        return;
    }
    collAuftraege_.ResetIndex();
    CAuftragRec* last = nullptr;
    collAuftraege_.GetPrev(last);
    setCurrent(last);
    for (const CAuftragRec& rec : collAuftraege_) {
        auto* item = new ListViewItem(lvAuftraege);
        item->setData(0, Qt::UserRole, QString::fromStdString(kKeyPrefix + std::to_string(rec.lID)));
        item->setText(0, QString::fromStdString(rec.stBezeichung));
        item->setText(1, QString::fromStdString(rec.erstellt.toDisplayText()));
        item->setText(2, QString::fromStdString(rec.letzte_Aenderung.toDisplayText()));
        item->setText(3, QString::fromStdString(rec.stErsteller));
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

        std::string path = rec->stPfad;
        if (!path.empty() && path.front() == '\\')
            path = settings_.gstProjektPfad + path.substr(1);
        dbAuftrag_->setDbPath(path);
        if (!inventurDb_)
            throw RunError(rterr::NoObject);

        // The order's file is opened and checked before its record is stamped: a file that is
        // no order database leaves the register as it was. An order opened read-only is not
        // stamped, and the program's report database is left to the program that may change it.
        if (!OpenOrderForWork(*dbAuftrag_, settings_, ui_))
            throw RunError(dbAuftrag_->LastError());
        rec->bOffen = -1;
        if (!dbAuftrag_->isReadOnly()) {
            rec->letzte_Aenderung = JetDate::now();
            if (!inventurDb_->EditAuftragRec(rec)) {
                dbAuftrag_->CloseDb();
                throw RunError(inventurDb_->LastError());
            }
            CheckReportMdbLink(settings_, dbAuftrag_->DbPath(), ui_);
        }

        if (!orderWindowFactory_)
            throw RunError(rterr::NoObject);
        if (workWindow_)
            workWindow_->deleteLater();
        workWindow_ = orderWindowFactory_(OpenOrder{*dbAuftrag_, settings_, ui_, this});
        if (!workWindow_)
            throw RunError(rterr::NoObject);
        connect(workWindow_.data(), &OrderWindow::unloaded, this, [this] {
            setActiveState(true);
            update();
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
    if (settings_.readOnly) {
        ui_.messageBox(accessmsg::ProjectReadOnly, MsgButtons::Ok, MsgIcon::Exclamation, accessmsg::Title);
        return;
    }
    if (!inventurDb_) {
        ui_.showError(mainlabel::MakeNewOrder, rterr::NoObject);
        return;
    }
    std::string name, person;
    for (;;) {
        std::tie(name, person) = askNewOrder();
        bool duplicate = false;
        for (int i = 0; i < lvAuftraege->topLevelItemCount(); ++i)
            if (lvAuftraege->topLevelItem(i)->text(0).toStdString() == name) {
                ui_.messageBox(ordermsg::Duplicate, MsgButtons::Ok, MsgIcon::Exclamation, ordermsg::DuplicateTitle);
                duplicate = true;
                break;
            }
        if (!duplicate)
            break;
    }

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
    rec.erstellt = JetDate::now();
    rec.letzte_Aenderung = rec.erstellt;

    std::string path;
    if (!MakeDatabase(path)) {
        // Without its database the order is not registered.
        InitAuftraege();
        return;
    }
    const std::string made = path;
    const std::string& project = settings_.gstProjektPfad;
    if (path.find(project) != std::string::npos)
        path = "\\" + path.substr(project.size());
    rec.stPfad = path;

    if (!inventurDb_->AddNewAuftragRec(&rec)) {
        // An order the register does not know would stay behind unseen: its new file goes again.
        removeFile(made);
        ui_.showError(mainlabel::MakeNewOrder, inventurDb_->LastError());
    }
    InitAuftraege();
}

bool frmMain::MakeDatabase(std::string& path)
{
    try {
        const std::string name = recAuftrag_ ? recAuftrag_->stBezeichung : std::string();
        const std::string folder = settings_.gstProjektPfad + kOrderFolder;
        if (!folderExists(folder) && !createFolder(folder))
            throw RunError(rterr::PathNotFound);
        if (!isPlainFileName(name))
            throw RunError(rterr::BadFileName);
        const std::string target = folder + "\\" + name + ".mdb";
        if (!liesDirectlyIn(target, folder))
            throw RunError(rterr::BadFileName);

        const std::string source = settings_.gstProjektPfad + kTemplateOrderDb;
        if (!fileExists(source))
            throw RunError(rterr::FileNotFound);
        // Only an order database is copied, read in one consistent state; the new file is the
        // program's own (writable whatever the template's rights) and goes again if it can't be completed.
        CAuftragDb empty(ui_);
        empty.setDbPath(source);
        empty.setOpenReadOnly(Value(std::int64_t{-1}));
        if (!empty.OpenCheckedDb())
            throw RunError(empty.LastError());
        try {
            empty.database()->copyTo(target);
        } catch (const DbError& e) {
            // A full disk or a locked template says so; any other copy that fails is an access error.
            if (e.number() == dberr::DiskFull || e.number() == dberr::DiskOrNetwork || e.number() == dberr::Locked)
                throw;
            throw RunError(rterr::PathFileAccess);
        }
        empty.CloseDb();
        try {
            auto db = Database::open(target);
            TableRecordset rs(*db, "T_Auftrag");
            rs.addNew();
            rs.setField("stAuftrag", name);
            rs.update();
        } catch (const std::exception&) {
            removeFile(target);
            throw;
        }
        path = target;
        return true;
    } catch (const std::exception& e) {
        ui_.showError(mainlabel::MakeDatabase, e.what());
        return false;
    }
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
    if (settings_.readOnly) {
        ui_.messageBox(accessmsg::ProjectReadOnly, MsgButtons::Ok, MsgIcon::Exclamation, accessmsg::Title);
        return;
    }
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
        const std::int32_t id = rec->lID;

        // Closing the window, releasing the database and deleting the file may fail unnoticed.
        closeWorkWindow();
        dbAuftrag_.reset();
        std::string relative = rec->stPfad;
        if (!relative.empty() && relative.front() == '\\')
            relative.erase(0, 1);
        removeFile(settings_.gstProjektPfad + relative);

        if (!inventurDb_)
            throw RunError(rterr::NoObject);
        if (!inventurDb_->DelAuftragRec(id))
            throw RunError(inventurDb_->LastError());
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
                ui_.showError(mainlabel::Unload, inventurDb_ ? inventurDb_->LastError() : rterr::NoObject);
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
