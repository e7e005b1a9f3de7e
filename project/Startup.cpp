#include "Startup.h"

#include "AtomicFile.h"
#include "Database.h"
#include "FileSystem.h"
#include "HostMirror.h"
#include "ProjectAccess.h"

#include <algorithm>
#include <cctype>
#include <exception>
#include <filesystem>

namespace qi {

namespace {

std::string upper(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return char(std::toupper(c)); });
    return s;
}

/// Runs the start-up statements with the error handling that start-up switches during its run:
/// at first an unexpected error ends start-up with the common message; once the project folder
/// has been checked, an error only skips the statement that raised it.
class Steps {
public:
    explicit Steps(UserInteraction& ui) : ui_(ui) {}

    /// From here on errors are ignored.
    void ignoreErrors() { ignore_ = true; }

    /// Runs one statement; false when start-up has to end.
    template <class F>
    bool operator()(F&& statement)
    {
        try {
            statement();
            return true;
        } catch (const std::exception& e) {
            if (ignore_)
                return true;
            ui_.showError(startupmsg::ErrorLabel, e.what());
        } catch (...) {
            if (ignore_)
                return true;
            ui_.showError(startupmsg::ErrorLabel, "Unbekannter Fehler.");
        }
        return false;
    }

private:
    UserInteraction& ui_;
    bool ignore_ = false;
};

void problem(UserInteraction& ui, const char* text)
{
    ui.messageBox(text, MsgButtons::Ok, MsgIcon::Critical, startupmsg::Title);
}

} // namespace

StartupResult RunStartup(const std::string& programFolder, Settings& settings, UserInteraction& ui)
{
    const ProfileService profile;
    return RunStartup(programFolder, settings, ui, profile);
}

StartupResult RunStartup(const std::string& programFolder, Settings& settings, UserInteraction& ui,
                         const ProfileService& profile)
{
    return RunStartup(ProgramFolders{programFolder, programFolder}, settings, ui, profile);
}

StartupResult RunStartup(const ProgramFolders& folders, Settings& settings, UserInteraction& ui)
{
    const ProfileService profile;
    return RunStartup(folders, settings, ui, profile);
}

StartupResult RunStartup(const ProgramFolders& folders, Settings& settings, UserInteraction& ui,
                         const ProfileService& profile)
{
    StartupResult result;
    Steps step(ui);
    const std::string& programFolder = folders.installation;
    // The user's own "Quarn.ini" counts when it names a project, else the installation's.
    const std::string iniFolder = quarnIniFolder(folders);

    // 1. The current project from the host's profile file.
    std::string projekt;
    if (!step([&] {
            projekt = profile.ReadProfileValue(iniFolder + "\\" + kQuarnIni, "Quarn", "Projekt", "");
        }))
        return result;
    // 2. The caption shows the value as it stands.
    result.caption = "Aufträge im Projekt: '" + projekt + "'";

    // 3. The project folder: kept only when it exists and holds at least one file.
    if (!projekt.empty()) {
        // A folder named relative to nothing lies below the folder of its "Quarn.ini", wherever that was copied.
        projekt = resolvePath(iniFolder, projekt);
        if (projekt.back() != '\\')
            projekt += '\\';
        step.ignoreErrors();
        if (!folderExists(projekt)) {
            problem(ui, startupmsg::ProjectNotFound);
            return result;
        }
        if (countFiles(projekt) > 0)
            settings.gstProjektPfad = projekt;
    }

    // 4. Project type; an empty value means Jet files.
    const std::string projektIni = settings.gstProjektPfad + "Projekt.ini";
    if (!step([&] { settings.gstProjekttyp = profile.ReadProfileValue(projektIni, "ODBC", "Projekttyp", ""); }))
        return result;
    if (settings.gstProjekttyp.empty())
        settings.gstProjekttyp = "ptJet";

    // 5. ODBC projects name their database by a connection string.
    if (!settings.isJet()) {
        if (!step([&] {
                settings.gstConnectionString =
                    profile.ReadProfileValue(projektIni, "ODBC", "ConnectionString", "");
            }))
            return result;
        if (settings.gstConnectionString.empty()) {
            problem(ui, startupmsg::NoConnectionString);
            return result;
        }
    }

    // 6. The module; a value that matches none leaves INVENTAR.
    std::string modul;
    if (!step([&] { modul = upper(profile.ReadProfileValue(projektIni, "Inventur", "Modul", "INVENTAR")); }))
        return result;
    if (modul == "INVENTAR")
        settings.giModul = 0;
    else if (modul == "TECHNIK")
        settings.giModul = 1;
    else if (modul == "BRANDSCHUTZ")
        settings.giModul = 2;

    // One program at a time changes the project; any other only looks.
    if (!step([&] { result.lock = TakeProject(settings, ui); }))
        return result;

    // 7. Seed a new project. The program folder is only stored in step 9; seeding reads the template
    // beside the program all the same. A project that is read-only for this program is not seeded.
    bool seeded = settings.readOnly;
    if (!settings.readOnly && !step([&] {
            Settings seeding = settings;
            seeding.gstAppPfad = programFolder;
            seeded = CheckDB_Reports(seeding, profile);
        }))
        return result;
    if (!seeded) {
        problem(ui, startupmsg::SeedingFailed);
        return result;
    }

    // 8. The order register. A file that can't be opened or is no register ends start-up here,
    // before anything could be written into it.
    std::string registerProblem;
    if (!step([&] {
            auto db = std::make_unique<CInventurDb>();
            std::string folder = settings.gstProjektPfad;
            if (!folder.empty() && folder.back() != '\\')
                folder += '\\';
            db->setDbPath(folder + "QInventur.mdb");
            db->setOpenReadOnly(Value(std::int64_t{settings.readOnly ? -1 : 0}));
            if (db->OpenCheckedDb())
                result.inventurDb = std::move(db);
            else
                registerProblem = db->LastError();
        }))
        return result;
    if (!registerProblem.empty()) {
        problem(ui, registerProblem.c_str());
        return result;
    }

    // 9. The program folder, and the user's own when the program's writable files lie there.
    settings.gstAppPfad = programFolder;
    settings.ownProgramFolder = folders.perUser() ? folders.own : std::string();

    // 10. Quarn's building database; on Jet projects also the module's objects for the per-room query.
    // Quarn's data are read through local mirrors, also by the report database's links; a server's
    // mirror is made anew now (a server that can't be reached leaves the last copy, if any).
    const std::string prefix = settings.tablePrefix();
    if (!step([&] {
            useHostMirrorForLinks(settings.gstAppPfad);
            if (!settings.isJet())
                refreshServerMirror(settings, ui);
            result.gebDb = openBuildingComponent(settings);
        }))
        return result;

    // 11. Quarn's object database of the module.
    if (!prefix.empty()) {
        if (!step([&] {
                auto obj = std::make_unique<QObjektDb>();
                obj->Open(settings.gstAppPfad, settings.objectDatabase());
                obj->SetTablePrefix(prefix);
                result.objektDb = std::move(obj);
            }))
            return result;
    }

    // 12. The per-order database object and the current order record are the main window's.
    result.completed = true;
    return result;
}

std::unique_ptr<QGebDb> openBuildingComponent(const Settings& settings, std::string* error)
{
    auto geb = std::make_unique<QGebDb>();
    const std::string prefix = settings.tablePrefix();
    std::string failure;
    if (!geb->Open(settings.gstAppPfad, settings.buildingDatabase()))
        failure = geb->LastError();
    if (!prefix.empty() && !geb->OpenObjects(settings.objectDatabase(), prefix) && failure.empty())
        failure = geb->LastError();
    if (error)
        *error = failure;
    return geb;
}

bool refreshServerMirror(const Settings& settings, UserInteraction& ui)
{
    try {
        HostMirror(HostMirror::defaultCacheFolder(), settings.gstAppPfad)
            .refresh(HostSource::odbc(settings.gstConnectionString));
        return true;
    } catch (const DbError& e) {
        problem(ui, e.description().c_str());
    }
    return false;
}

bool CheckDB_Reports(const Settings& settings)
{
    const ProfileService profile;
    return CheckDB_Reports(settings, profile);
}

namespace {

/// True for a database file that is empty, cut short or no database at all, as a copy left
/// it that stopped half-way.
bool damagedDatabase(const std::string& path)
{
    if (!fileExists(path))
        return false;
    try {
        Database::open(path, true);
        return false;
    } catch (const DbError& e) {
        return e.number() == dberr::UnrecognizedFormat;
    }
}

/// True when the folder holds the database of an order.
bool holdsOrders(const std::string& folder)
{
    namespace fs = std::filesystem;
    std::error_code ec;
    for (fs::directory_iterator it(fs::u8path(nativePath(folder)), ec), end; !ec && it != end; it.increment(ec)) {
        std::error_code fe;
        if (it->is_regular_file(fe) && upper(it->path().extension().string()) == ".MDB")
            return true;
    }
    return false;
}

} // namespace

bool CheckDB_Reports(const Settings& settings, const ProfileService& profile)
{
    try {
        const std::string tpl = settings.gstAppPfad + "\\Leeres Projekt\\";
        const std::string& project = settings.gstProjektPfad;
        // A project with its register is left alone, unless an earlier seeding stopped half-way
        // and left the register or the order template damaged, before any order was made.
        if (profile.FileExists(project + "QInventur.mdb") &&
            !((damagedDatabase(project + "QInventur.mdb") || damagedDatabase(project + "QAuftrag.mdb")) &&
              !holdsOrders(project + "Inventur\\")))
            return true;
        // Every file is copied whole under a hidden name and then takes its own. The register is
        // copied first but takes its name last: a start that dies on the way leaves no register,
        // and the next start seeds again. After a failure the files copied so far take their names.
        AtomicFile registerFile(project + "QInventur.mdb");
        const auto copy = [&] {
            registerFile.copyFrom(tpl + "QInventur.mdb");
            copyFileWhole(tpl + "QAuftrag.mdb", project + "QAuftrag.mdb");
            for (const char* report : kReportFiles)
                copyFileWhole(tpl + "Report\\" + report, project + "Report" + report);
        };
        try {
            copy();
        } catch (const FileError&) {
            registerFile.commit();
            return false;
        }
        registerFile.commit();
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace qi
