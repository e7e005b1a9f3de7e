#include "ReportLinks.h"

#include "FileSystem.h"
#include "HostMirror.h"
#include "LinkedDatabase.h"
#include "ReportDatabase.h"

#include <array>
#include <cerrno>
#include <exception>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace qi {

namespace {

constexpr const char* kJetPrefix = ";DATABASE=";

struct ModuleLinks {
    const char* objekt;
    const char* artikel;
    const char* file; ///< the module's object database file
};

constexpr std::array<ModuleLinks, 3> kModuleLinks = {{
    {"T_IObjekt", "T_IArtikel", "QOvInventar.mdb"},
    {"T_TObjekt", "T_TArtikel", "QOvTechnik.mdb"},
    {"T_BObjekt", "T_BArtikel", "QOvBrandschutz.mdb"},
}};

constexpr const char* kGebaeudeFile = "QGebaeude.mdb";
constexpr const char* kStammdatenFile = "QStammdaten.mdb";
constexpr const char* kMasterLinks[] = {"T_AnsprechPartner", "T_KST"};

void relink(LinkedDatabase& db, const std::string& name, const std::string& connect)
{
    db.setConnect(name, connect);
    db.refreshLink(name);
}

void rebuild(LinkedDatabase& db, const std::string& name, const std::string& connect)
{
    db.execute("DROP TABLE " + name);
    db.appendLink({name, connect, name});
}

/// Points the links of the report database `path` at the order and at the project's Quarn
/// databases; `refreshMirror` makes the local mirror of an ODBC project's server anew on the way.
void linkReportDatabase(const std::string& path, const Settings& settings, const std::string& orderDbPath,
                        bool refreshMirror)
{
    auto db = LinkedDatabase::open(path);

    std::string connect = kJetPrefix + orderDbPath;
    for (const char* name : kOrderLinks)
        relink(*db, name, connect);

    const bool jet = settings.gstProjekttyp == "ptJet";
    if (settings.gstProjekttyp == "ptODBC")
        connect = settings.gstConnectionString;
    if (jet)
        connect = kJetPrefix + settings.gstProjektPfad + kGebaeudeFile;

    const bool moduleKnown = settings.giModul >= 0 && settings.giModul <= 2;
    const ModuleLinks* module = moduleKnown ? &kModuleLinks[std::size_t(settings.giModul)] : nullptr;
    const std::string objectConnect = module ? kJetPrefix + settings.gstProjektPfad + module->file : "";
    const std::string masterConnect = kJetPrefix + settings.gstProjektPfad + kStammdatenFile;

    // The building link's connect string tells how the host links were made; it is read
    // whatever the project type (a missing link fails here, before any host link changes).
    const std::string raumkernConnect = db->connect("T_Raumkern");
    // An ODBC project's links read the server's tables from the local mirror: made anew now.
    if (refreshMirror && !jet && !settings.gstConnectionString.empty())
        HostMirror(HostMirror::defaultCacheFolder(), settings.gstAppPfad)
            .refresh(HostSource::odbc(settings.gstConnectionString));
    if (jet && raumkernConnect.find("ODBC") != std::string::npos) {
        // The links were made for an ODBC project: make them anew for the Jet files.
        rebuild(*db, "T_Raumkern", connect);
        if (module) {
            rebuild(*db, module->objekt, objectConnect);
            rebuild(*db, module->artikel, objectConnect);
        }
        for (const char* name : kMasterLinks)
            rebuild(*db, name, masterConnect);
        return;
    }

    if (module) {
        if (jet)
            connect = objectConnect;
        relink(*db, module->objekt, connect);
        relink(*db, module->artikel, connect);
    }
    if (jet)
        connect = kJetPrefix + settings.gstProjektPfad + kGebaeudeFile;
    relink(*db, "T_Raumkern", connect);
    if (jet)
        connect = masterConnect;
    for (const char* name : kMasterLinks)
        relink(*db, name, connect);
}

/// An exclusive lock of the operating system on a file, held while the object lives; other
/// programs that ask for it wait. A file that can't be opened is not locked (what is done
/// under the lock then fails on its own).
class ExclusiveFileLock {
public:
    explicit ExclusiveFileLock(const std::string& path) : fd_(::open(nativePath(path).c_str(), O_RDONLY | O_CLOEXEC))
    {
        if (fd_ < 0)
            return;
        while (::flock(fd_, LOCK_EX) != 0 && errno == EINTR) {
        }
    }
    ~ExclusiveFileLock()
    {
        if (fd_ >= 0)
            ::close(fd_);
    }
    ExclusiveFileLock(const ExclusiveFileLock&) = delete;
    ExclusiveFileLock& operator=(const ExclusiveFileLock&) = delete;

private:
    int fd_;
};

} // namespace

void createReportDatabase(const std::string& path)
{
    auto file = Database::create(path);
    LinkedDatabase::createSchema(*file);
    file.reset();
    auto db = LinkedDatabase::open(path);
    Database::Transaction tx(db->database());
    for (const char* name : kOrderLinks)
        db->storeLink({name, std::string(kJetPrefix) + "QAuftrag.mdb", name});
    db->storeLink({"T_Raumkern", std::string(kJetPrefix) + kGebaeudeFile, "T_Raumkern"});
    for (const ModuleLinks& m : kModuleLinks) {
        db->storeLink({m.objekt, std::string(kJetPrefix) + m.file, m.objekt});
        db->storeLink({m.artikel, std::string(kJetPrefix) + m.file, m.artikel});
    }
    for (const char* name : kMasterLinks)
        db->storeLink({name, std::string(kJetPrefix) + kStammdatenFile, name});
    db->storeQuery(kQueryAnzProRaum, anzProRaumQuery(0));
    db->storeQuery(kQueryDiffListe, diffListeQuery(0));
    tx.commit();
}

bool CheckReportMdbLink(const Settings& settings, const std::string& orderDbPath, UserInteraction& ui)
{
    try {
        // A report database of its own (a read-only order's reports) is the only one relinked.
        if (!settings.reportDatabaseFile.empty()) {
            linkReportDatabase(settings.reportDatabaseFile, settings, orderDbPath, true);
            return true;
        }
        const std::string shared = sharedReportDatabasePath(settings);
        PrivateReportDatabase* own = settings.privateReportDatabase.get();
        // A failure of the shared file's relinking is reported after the copy has been linked as far
        // as it can be (a server that can't be reached: the order's links and the last mirror).
        std::exception_ptr sharedFailure;
        {
            // The programs of one program folder relink the shared file one at a time, and the
            // private copy is taken before another program can relink it again.
            const ExclusiveFileLock lock(shared);
            try {
                linkReportDatabase(shared, settings, orderDbPath, true);
            } catch (const std::exception&) {
                sharedFailure = std::current_exception();
            }
            if (own) {
                try {
                    own->copyFrom(shared);
                } catch (const std::exception&) {
                    if (!sharedFailure)
                        throw;
                }
            }
        }
        // The copy is linked by this program itself, whatever the shared file held when it was taken.
        if (own) {
            try {
                linkReportDatabase(own->file(), settings, orderDbPath, false);
            } catch (const std::exception&) {
                if (!sharedFailure)
                    throw;
            }
        }
        if (sharedFailure)
            std::rethrow_exception(sharedFailure);
        return true;
    } catch (const DbError& e) {
        ui.showError(kCheckReportMdbLinkLabel, e.description());
    } catch (const std::exception& e) {
        ui.showError(kCheckReportMdbLinkLabel, e.what());
    }
    return false;
}

} // namespace qi
