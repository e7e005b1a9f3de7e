#include "Orders.h"

#include "FileSystem.h"
#include "JetCollation.h"
#include "KeptOrders.h"
#include "OrderName.h"
#include "ProjectAccess.h"
#include "ReportLinks.h"
#include "RolledBackCopy.h"
#include "TableRecordset.h"

#include <cctype>
#include <filesystem>
#include <memory>
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

/// MakeDatabase: the new order's database, made under the staging name from `source` (an order
/// database: the project's empty one, or for `restore` a kept one) and naming the order `name` in
/// its T_Auftrag; its path.
std::string makeStagedDatabase(const Settings& settings, UserInteraction& ui, const std::string& name,
                               const std::string& source, bool restore)
{
    const std::string folder = orderFolder(settings);
    if (!folderExists(folder) && !createFolder(folder))
        throw RunError(rterr::PathNotFound);
    if (!liesDirectlyIn(folder + "\\" + name + ".mdb", folder))
        throw RunError(rterr::BadFileName);
    if (!fileExists(source))
        throw RunError(rterr::FileNotFound);

    // What a process that died here left behind goes first.
    const std::string staged = folder + "\\" + kStagingFile;
    removeDatabaseFile(staged);
    // Only an order database is copied, read in one consistent state (a file that a change
    // was cut off in, as it was before that change); the new file is the program's own
    // (writable whatever the source's rights).
    std::unique_ptr<RolledBackCopy> putBack;
    if (hasJournal(source))
        putBack = std::make_unique<RolledBackCopy>(source);
    CAuftragDb from(ui);
    from.setDbPath(putBack ? putBack->path() : source);
    from.setOpenReadOnly(Value(std::int64_t{-1}));
    if (!from.OpenCheckedDb())
        throw RunError(from.LastError());
    try {
        from.database()->copyTo(staged);
    } catch (const DbError& e) {
        removeDatabaseFile(staged);
        // A full disk or a locked source says so; any other copy that fails is an access error.
        if (e.number() == dberr::DiskFull || e.number() == dberr::DiskOrNetwork || e.number() == dberr::Locked)
            throw;
        throw RunError(rterr::PathFileAccess);
    }
    from.CloseDb();
    try {
        auto db = Database::open(staged);
        // A new order gets its row; a kept one is renamed (and gets a row when it has none).
        if (!restore || db->execute("UPDATE T_Auftrag SET stAuftrag = ?1", {name}) == 0) {
            TableRecordset rs(*db, "T_Auftrag");
            rs.addNew();
            rs.setField("stAuftrag", name);
            rs.update();
        }
    } catch (...) {
        removeDatabaseFile(staged);
        throw;
    }
    return staged;
}

/// The files in the order folder that an order database `target` replaces: the target itself when
/// it is there, and a file of the same name in another letter case that no register row names
/// (where the file system tells letter cases apart, and so would leave it beside the new order).
std::vector<std::string> filesReplacedBy(CInventurDb& reg, const Settings& settings, const std::string& target)
{
    namespace fs = std::filesystem;
    std::vector<std::string> replaced;
    if (fileExists(target))
        replaced.push_back(target);
    const fs::path targetPath = fs::u8path(nativePath(target));
    const std::string targetName = fileNamePart(target);
    std::error_code ec;
    CAuftragRecColl rows;
    bool rowsRead = false;
    for (fs::directory_iterator it(fs::u8path(nativePath(orderFolder(settings))), ec), end; !ec && it != end;
         it.increment(ec)) {
        const std::string fileName = it->path().filename().string();
        std::error_code same;
        if (fileName == targetName || !endsWithMdb(fileName) || !jetEqual(fileName, targetName) ||
            fs::equivalent(it->path(), targetPath, same))
            continue;
        if (!rowsRead && !(rowsRead = reg.ReadAllAuftragRec2Coll(rows)))
            return replaced; // which rows name it is unknown: it is left as it is
        bool named = false;
        for (const CAuftragRec& row : rows) {
            const std::string file = orderDatabaseFile(settings, row.stPfad);
            std::error_code eq;
            named = named || (!file.empty() && fs::equivalent(fs::u8path(nativePath(file)), it->path(), eq));
        }
        if (!named)
            replaced.push_back(orderFolder(settings) + "\\" + fileName);
    }
    return replaced;
}

/// Puts the staged database `staged` in its place as the order `rec` of the register. The files it
/// replaces are kept first (their paths are added to `kept`). The row is stored, the file takes its
/// name, then the row is committed: a process that dies in between leaves the register as before,
/// the old file where it was or kept, and at most a file no row names.
OrderResult installOrder(CInventurDb& reg, const Settings& settings, UserInteraction& ui, CAuftragRec& rec,
                         const std::string& staged, std::vector<std::string>* kept)
{
    const std::string target = orderFolder(settings) + "\\" + rec.stBezeichung + ".mdb";
    // The register names the file relative to the project folder.
    std::string path = target;
    const std::string& project = settings.gstProjektPfad;
    if (path.find(project) != std::string::npos)
        path = "\\" + path.substr(project.size());
    rec.stPfad = path;

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
        // No order database is ever lost: what the new one replaces is kept first.
        for (const std::string& old : filesReplacedBy(reg, settings, target)) {
            const std::string copy = keepOrderDatabase(settings, old);
            if (copy.empty())
                throw RunError(ordermsg::notKept(old));
            if (kept)
                kept->push_back(copy);
            if (old != target)
                removeDatabaseFile(old);
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
        ui.showError(mainlabel::MakeDatabase, e.what());
        return OrderResult::Failed;
    }
}

} // namespace

std::string ordermsg::deleteQuestion(const std::string& name) { return "Auftrag '" + name + "' löschen ?"; }

std::string ordermsg::notKept(const std::string& file)
{
    return "Die bisherige Datenbank '" + displayPath(file) +
           "' kann nicht gesichert werden. Sie bleibt, wie sie ist; der Auftrag wird nicht angelegt.";
}

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

namespace {

/// A new order `rec` whose database is a copy of `source`: the empty order database, or a kept
/// one taken back (`restore`).
OrderResult newOrderFrom(CInventurDb& reg, const Settings& settings, UserInteraction& ui, CAuftragRec& rec,
                         const std::string& source, bool restore, std::vector<std::string>* kept)
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
        staged = makeStagedDatabase(settings, ui, name, source, restore);
    } catch (const std::exception& e) {
        ui.showError(mainlabel::MakeDatabase, e.what());
        return OrderResult::Failed;
    }
    return installOrder(reg, settings, ui, rec, staged, kept);
}

} // namespace

OrderResult CreateOrder(CInventurDb& reg, const Settings& settings, UserInteraction& ui, CAuftragRec& rec,
                        std::vector<std::string>* kept)
{
    return newOrderFrom(reg, settings, ui, rec, settings.gstProjektPfad + kTemplateOrderDb, false, kept);
}

OrderResult RestoreOrder(CInventurDb& reg, const Settings& settings, UserInteraction& ui, const std::string& keptFile,
                         CAuftragRec& rec, std::vector<std::string>* kept)
{
    return newOrderFrom(reg, settings, ui, rec, keptFile, true, kept);
}

OrderResult DeleteOrder(CInventurDb& reg, const Settings& settings, UserInteraction& ui, const CAuftragRec& rec,
                        std::string* kept)
{
    if (RefuseProjectChange(settings, ui))
        return OrderResult::ReadOnly;
    const std::string file = orderDatabaseFile(settings, rec.stPfad);
    if (file.empty()) {
        ui.showError(mainlabel::DateiFkt, ordermsg::outsideOrderFolder(namedFile(settings, rec.stPfad)));
        return OrderResult::OutsideProject;
    }
    // The row goes first: a process that dies before the file is kept leaves a file no row names.
    if (!reg.DelAuftragRec(rec.lID)) {
        ui.showError(mainlabel::DateiFkt, reg.LastError());
        return OrderResult::Failed;
    }
    // The file is kept rather than deleted; one that can't be kept stays where it is.
    if (fileExists(file)) {
        const std::string copy = keepOrderDatabase(settings, file);
        if (copy.empty())
            return OrderResult::Done;
        if (kept)
            *kept = copy;
    }
    removeDatabaseFile(file);
    return OrderResult::Done;
}

OrderResult OpenOrderDatabase(CInventurDb& reg, const Settings& settings, UserInteraction& ui, CAuftragRec& rec,
                              CAuftragDb& db, OrderAccess access, std::unique_ptr<RolledBackCopy>* putBack)
{
    try {
        const std::string file = orderDatabaseFile(settings, rec.stPfad);
        if (file.empty()) {
            ui.showError(mainlabel::DblClick, ordermsg::outsideOrderFolder(namedFile(settings, rec.stPfad)));
            return OrderResult::OutsideProject;
        }
        db.setDbPath(file);
        // A file that a change was cut off in is only put back by a program that may change it;
        // a program that may only read it reads a private copy put back instead.
        const auto openPutBack = [&] {
            if (!putBack || !hasJournal(file))
                throw RunError(db.LastError());
            *putBack = std::make_unique<RolledBackCopy>(file);
            db.setDbPath((*putBack)->path());
            if (!db.OpenCheckedDb()) {
                putBack->reset();
                throw RunError(db.LastError());
            }
        };
        if (access == OrderAccess::Look) {
            db.setOpenReadOnly(Value(std::int64_t{-1}));
            if (!db.OpenCheckedDb())
                openPutBack();
            return OrderResult::Done;
        }
        // The order's file is opened and checked before its record is stamped: a file that is
        // no order database leaves the register as it was. An order opened read-only (the
        // project or the file can't be changed) is not stamped, and the report database is
        // left to the program that may change it.
        if (!OpenOrderForWork(db, settings, ui)) {
            if (toLong(db.OpenReadOnly()) == 0)
                throw RunError(db.LastError());
            openPutBack();
        }
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
        ui.showError(mainlabel::DblClick, e.what());
        return OrderResult::Failed;
    }
}

} // namespace qi
