#include "Orders.h"

#include "FileSystem.h"
#include "OrderName.h"
#include "ProjectAccess.h"
#include "ReportLinks.h"
#include "TableRecordset.h"

#include <cctype>
#include <filesystem>
#include <optional>
#include <stdexcept>

namespace qi {

namespace {

/// Where a new order's database is made before it gets its name: a name no order file,
/// journal or archive can have, so that it never meets one.
constexpr const char* kStagingFile = "~Auftrag.neu";

struct RunError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::string describe(const std::exception& e)
{
    if (const auto* db = dynamic_cast<const DbError*>(&e))
        return db->description();
    return e.what();
}

/// Removes a database file with the journal that may lie beside it; errors are ignored.
void removeDatabaseFile(const std::string& path)
{
    removeFile(path);
    removeFile(path + "-journal");
}

/// True when `file` lies directly in `folder`, after resolving every ".", ".." and link.
bool liesDirectlyIn(const std::string& file, const std::string& folder)
{
    namespace fs = std::filesystem;
    std::error_code ec1, ec2;
    // Only the folders are resolved: the file's own name is not looked up.
    const fs::path f = fs::absolute(fs::u8path(nativePath(file)));
    const fs::path parent = fs::weakly_canonical(f.parent_path(), ec1);
    const fs::path d = fs::weakly_canonical(fs::absolute(fs::u8path(nativePath(folder))), ec2);
    return !ec1 && !ec2 && parent == d && f.filename() != "." && f.filename() != "..";
}

bool endsWithMdb(const std::string& path)
{
    if (path.size() < 4)
        return false;
    std::string ext = path.substr(path.size() - 4);
    for (char& c : ext)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return ext == ".mdb";
}

std::string orderFolder(const Settings& settings) { return settings.gstProjektPfad + kOrderFolder; }

/// The file a register row names: stPfad below the project folder when it begins with a backslash.
std::string namedFile(const Settings& settings, const std::string& stPfad)
{
    if (!stPfad.empty() && stPfad.front() == '\\')
        return settings.gstProjektPfad + stPfad.substr(1);
    return stPfad;
}

/// MakeDatabase: the new order's database, made under the staging name and filled; its path.
std::string makeStagedDatabase(const Settings& settings, UserInteraction& ui, const std::string& name)
{
    const std::string folder = orderFolder(settings);
    if (!folderExists(folder) && !createFolder(folder))
        throw RunError(rterr::PathNotFound);
    if (!liesDirectlyIn(folder + "\\" + name + ".mdb", folder))
        throw RunError(rterr::BadFileName);
    const std::string source = settings.gstProjektPfad + kTemplateOrderDb;
    if (!fileExists(source))
        throw RunError(rterr::FileNotFound);

    // What a process that died here left behind goes first.
    const std::string staged = folder + "\\" + kStagingFile;
    removeDatabaseFile(staged);
    // Only an order database is copied, read in one consistent state; the new file is the
    // program's own (writable whatever the template's rights).
    CAuftragDb empty(ui);
    empty.setDbPath(source);
    empty.setOpenReadOnly(Value(std::int64_t{-1}));
    if (!empty.OpenCheckedDb())
        throw RunError(empty.LastError());
    try {
        empty.database()->copyTo(staged);
    } catch (const DbError& e) {
        removeDatabaseFile(staged);
        // A full disk or a locked template says so; any other copy that fails is an access error.
        if (e.number() == dberr::DiskFull || e.number() == dberr::DiskOrNetwork || e.number() == dberr::Locked)
            throw;
        throw RunError(rterr::PathFileAccess);
    }
    empty.CloseDb();
    try {
        auto db = Database::open(staged);
        TableRecordset rs(*db, "T_Auftrag");
        rs.addNew();
        rs.setField("stAuftrag", name);
        rs.update();
    } catch (...) {
        removeDatabaseFile(staged);
        throw;
    }
    return staged;
}

} // namespace

std::string ordermsg::deleteQuestion(const std::string& name) { return "Auftrag '" + name + "' löschen ?"; }

std::string ordermsg::outsideOrderFolder(const std::string& path)
{
    return "Die Datenbank '" + displayPath(path) +
           "' liegt nicht im Ordner Inventur des Projekts. Sie wird weder geöffnet noch gelöscht.";
}

CAuftragRec* findOrder(CAuftragRecColl& orders, const std::string& name)
{
    for (CAuftragRec& rec : orders)
        if (rec.stBezeichung == name)
            return &rec;
    return nullptr;
}

bool refuseTakenName(const CAuftragRecColl& orders, const std::string& name, UserInteraction& ui)
{
    for (const CAuftragRec& rec : orders)
        if (rec.stBezeichung == name) {
            ui.messageBox(ordermsg::Duplicate, MsgButtons::Ok, MsgIcon::Exclamation, ordermsg::DuplicateTitle);
            return true;
        }
    return false;
}

std::string orderDatabaseFile(const Settings& settings, const std::string& stPfad)
{
    const std::string path = namedFile(settings, stPfad);
    if (!endsWithMdb(path) || !liesDirectlyIn(path, orderFolder(settings)))
        return {};
    return path;
}

OrderResult CreateOrder(CInventurDb& reg, const Settings& settings, UserInteraction& ui, CAuftragRec& rec)
{
    if (RefuseProjectChange(settings, ui))
        return OrderResult::ReadOnly;
    const std::string name = rec.stBezeichung;
    if (const std::string problem = orderNameProblem(name); !problem.empty()) {
        ui.showError(mainlabel::MakeDatabase, problem);
        return OrderResult::NameRefused;
    }
    rec.erstellt = JetDate::now();
    rec.letzte_Aenderung = rec.erstellt;

    std::string staged;
    try {
        staged = makeStagedDatabase(settings, ui, name);
    } catch (const std::exception& e) {
        ui.showError(mainlabel::MakeDatabase, describe(e));
        return OrderResult::Failed;
    }
    const std::string target = orderFolder(settings) + "\\" + name + ".mdb";
    // The register names the file relative to the project folder.
    std::string path = target;
    const std::string& project = settings.gstProjektPfad;
    if (path.find(project) != std::string::npos)
        path = "\\" + path.substr(project.size());
    rec.stPfad = path;

    // The row is stored, the file takes its name, then the row is committed: a process that
    // dies in between leaves the register as before and a file no row names.
    std::optional<Database::Transaction> tx;
    try {
        if (Database* db = reg.database())
            tx.emplace(*db);
        if (!reg.AddNewAuftragRec(&rec)) {
            tx.reset();
            removeDatabaseFile(staged);
            ui.showError(mainlabel::MakeNewOrder, reg.LastError());
            return OrderResult::Failed;
        }
        // A journal left beside an earlier file of that name must not be played into the new one.
        removeFile(target + "-journal");
        if (!moveFile(staged, target))
            throw RunError(rterr::PathFileAccess);
        if (tx)
            tx->commit();
        return OrderResult::Done;
    } catch (const std::exception& e) {
        tx.reset();
        removeDatabaseFile(staged);
        rec.lID = 0;
        ui.showError(mainlabel::MakeDatabase, describe(e));
        return OrderResult::Failed;
    }
}

OrderResult DeleteOrder(CInventurDb& reg, const Settings& settings, UserInteraction& ui, const CAuftragRec& rec)
{
    if (RefuseProjectChange(settings, ui))
        return OrderResult::ReadOnly;
    const std::string file = orderDatabaseFile(settings, rec.stPfad);
    if (file.empty()) {
        ui.showError(mainlabel::DateiFkt, ordermsg::outsideOrderFolder(namedFile(settings, rec.stPfad)));
        return OrderResult::OutsideProject;
    }
    // The row goes first: a process that dies before the file is deleted leaves a file no row names.
    if (!reg.DelAuftragRec(rec.lID)) {
        ui.showError(mainlabel::DateiFkt, reg.LastError());
        return OrderResult::Failed;
    }
    removeDatabaseFile(file);
    return OrderResult::Done;
}

OrderResult OpenOrderDatabase(CInventurDb& reg, const Settings& settings, UserInteraction& ui, CAuftragRec& rec,
                              CAuftragDb& db, OrderAccess access)
{
    try {
        const std::string file = orderDatabaseFile(settings, rec.stPfad);
        if (file.empty()) {
            ui.showError(mainlabel::DblClick, ordermsg::outsideOrderFolder(namedFile(settings, rec.stPfad)));
            return OrderResult::OutsideProject;
        }
        db.setDbPath(file);
        if (access == OrderAccess::Look) {
            db.setOpenReadOnly(Value(std::int64_t{-1}));
            if (!db.OpenCheckedDb())
                throw RunError(db.LastError());
            return OrderResult::Done;
        }
        // The order's file is opened and checked before its record is stamped: a file that is
        // no order database leaves the register as it was. An order opened read-only (the
        // project or the file can't be changed) is not stamped, and the report database is
        // left to the program that may change it.
        if (!OpenOrderForWork(db, settings, ui))
            throw RunError(db.LastError());
        if (db.isReadOnly()) {
            rec.bOffen = -1;
            return OrderResult::Done;
        }
        rec.letzte_Aenderung = JetDate::now();
        rec.bOffen = -1;
        if (!reg.EditAuftragRec(&rec)) {
            db.CloseDb();
            throw RunError(reg.LastError());
        }
        CheckReportMdbLink(settings, db.DbPath(), ui);
        return OrderResult::Done;
    } catch (const std::exception& e) {
        ui.showError(mainlabel::DblClick, describe(e));
        return OrderResult::Failed;
    }
}

} // namespace qi
