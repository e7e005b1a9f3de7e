#include "QuarnHost.h"

#include "Database.h"
#include "HostMirror.h"
#include "JetCollation.h"
#include "SqlName.h"

#include <algorithm>

namespace qi {

namespace {

/// Failure text of an open; the engine's description follows after a line break.
constexpr const char* kOpenFailed = "Die Quarn-Datenbank konnte nicht geöffnet werden!";
/// Asked before a successful open.
constexpr const char* kNotOpen = "Die Quarn-Datenbank ist nicht geöffnet.";

/// Opens the mirror of a Quarn source read-only (made first when there is none or the file
/// changed); on failure sets `error` and answers null.
std::unique_ptr<Database> openHost(const std::string& appFolder, const HostSource& source, std::string& error)
{
    error.clear();
    try {
        HostMirror mirror(HostMirror::defaultCacheFolder(), appFolder);
        return Database::open(mirror.mirrorFor(source), true);
    } catch (const DbError& e) {
        error = std::string(kOpenFailed) + "\r\n" + e.description();
    }
    return nullptr;
}

/// The objects (alias o) that stand in a room: attached to the room node itself, variant 0.
const std::string kStandingInRoom = "o.byGebstruTyp = 4 AND o.iVariante = 0";

/// Index 0, 1 or 2 of the module's table prefix; only the three known prefixes become part of a statement.
int prefixIndex(const std::string& prefix)
{
    if (prefix == "T_I")
        return 0;
    if (prefix == "T_T")
        return 1;
    if (prefix == "T_B")
        return 2;
    throw DbError(dberr::InputTableNotFound, "Unbekannter Tabellenpräfix '" + prefix + "'.");
}

/// The statement text for each module, built once: `make` gets the prefix.
template <class Make>
const std::string& moduleSql(const std::string& prefix, Make make)
{
    static const std::string texts[3] = {make("T_I"), make("T_T"), make("T_B")};
    return texts[prefixIndex(prefix)];
}

std::string text(const Statement& st, int column) { return toText(st.column(column)); }

std::int32_t int32(const Statement& st, int column) { return static_cast<std::int32_t>(toLong(st.column(column))); }

/// Runs a room query (columns lId, stRaumNr, stBezeichnung) into `rooms`.
void readRooms(Statement& st, std::vector<GebRoom>& rooms)
{
    while (st.step())
        rooms.push_back(GebRoom{int32(st, 0), text(st, 1), text(st, 2)});
    st.reset();
}

} // namespace

// ---------------------------------------------------------------- QGebDb

QGebDb::QGebDb() = default;
QGebDb::~QGebDb() = default;

bool QGebDb::Open(const std::string& appFolder, const HostSource& database)
{
    appFolder_ = appFolder;
    geb_ = openHost(appFolder, database, lastError_);
    return geb_ != nullptr;
}

bool QGebDb::OpenObjects(const HostSource& database, const std::string& tablePrefix)
{
    obj_ = openHost(appFolder_, database, lastError_);
    prefix_ = tablePrefix;
    return obj_ != nullptr;
}

Database& QGebDb::building()
{
    if (!geb_)
        throw DbError(dberr::General, lastError_.empty() ? kNotOpen : lastError_);
    return *geb_;
}

Database& QGebDb::objectDb()
{
    if (!obj_)
        throw DbError(dberr::General, lastError_.empty() ? kNotOpen : lastError_);
    return *obj_;
}

bool QGebDb::IsOpen() const { return geb_ != nullptr; }

std::optional<GebStruktur> QGebDb::GetGebStruktur(int /*what*/)
{
    if (!geb_)
        return std::nullopt;
    try {
        Statement& st = geb_->prepare(
            "SELECT lId, lParentId, byTyp, stNr, stBezeichnung FROM T_Gebstru ORDER BY lParentId, stNr, lId");
        st.bindAll({});
        GebStruktur s;
        while (st.step())
            s.nodes.push_back(GebNode{int32(st, 0), int32(st, 1), int(toLong(st.column(2))), text(st, 3), text(st, 4)});
        st.reset();
        lastError_.clear();
        return s;
    } catch (const DbError& e) {
        lastError_ = e.description();
    }
    return std::nullopt;
}

bool QGebDb::GetAllRooms(std::vector<GebRoom>& rooms, int /*flags*/)
{
    rooms.clear();
    try {
        Statement& st = building().prepare("SELECT lId, stRaumNr, stBezeichnung FROM T_Raumkern ORDER BY stRaumNr, lId");
        st.bindAll({});
        readRooms(st, rooms);
        lastError_.clear();
        return true;
    } catch (const DbError& e) {
        lastError_ = e.description();
    }
    return false;
}

bool QGebDb::GetRoomsOfNode(std::int32_t nodeId, std::vector<GebRoom>& rooms, int /*flags*/)
{
    rooms.clear();
    try {
        // Every room below the node: for a floor its rooms, for a building or site those of all its floors.
        Statement& st = building().prepare(
            "WITH RECURSIVE below(id) AS (SELECT lId FROM T_Gebstru WHERE lParentId = ?1 "
            "UNION SELECT g.lId FROM T_Gebstru g JOIN below b ON g.lParentId = b.id) "
            "SELECT r.lId, r.stRaumNr, r.stBezeichnung FROM T_Raumkern r WHERE r.lId IN (SELECT id FROM below) "
            "ORDER BY r.stRaumNr, r.lId");
        st.bindAll({std::int64_t{nodeId}});
        readRooms(st, rooms);
        lastError_.clear();
        return true;
    } catch (const DbError& e) {
        lastError_ = e.description();
    }
    return false;
}

bool QGebDb::GetObjectsOfRoom(std::int32_t roomId, std::vector<RoomObject>& objects)
{
    objects.clear();
    try {
        Statement& st = objectDb().prepare(moduleSql(prefix_, [](const std::string& p) {
            return "SELECT o.stName, o.stBeschreibung, a.stArtNr FROM " + p + "Objekt o LEFT JOIN " + p +
                   "Artikel a ON a.lId = o.lArtikelId "
                   "WHERE o.lGebstruId = ?1 AND " +
                   kStandingInRoom + " ORDER BY o.lId";
        }));
        st.bindAll({std::int64_t{roomId}});
        while (st.step())
            objects.push_back(RoomObject{text(st, 0), text(st, 1), text(st, 2)});
        st.reset();
        lastError_.clear();
        return true;
    } catch (const DbError& e) {
        lastError_ = e.description();
    }
    objects.clear();
    return false;
}

bool QGebDb::GetObjectNamesByRoom(std::map<std::int32_t, std::vector<std::string>>& names)
{
    names.clear();
    try {
        // One walk over the table in storage order, sorted here: ordered by the engine, the walk
        // would follow the index of the rooms and fetch every object on its own.
        Statement& st = objectDb().prepare(moduleSql(prefix_, [](const std::string& p) {
            return "SELECT o.lGebstruId, o.lId, o.stName FROM " + p + "Objekt o WHERE " + kStandingInRoom;
        }));
        struct Standing {
            std::int32_t room;
            std::int64_t key;
            std::string name;
        };
        std::vector<Standing> standing;
        st.bindAll({});
        while (st.step())
            standing.push_back(Standing{std::int32_t(int32(st, 0)), st.columnInt(1), std::string(st.columnText(2))});
        st.reset();
        std::sort(standing.begin(), standing.end(), [](const Standing& a, const Standing& b) {
            return a.room != b.room ? a.room < b.room : a.key < b.key;
        });
        for (Standing& o : standing)
            names[o.room].push_back(std::move(o.name));
        lastError_.clear();
        return true;
    } catch (const DbError& e) {
        lastError_ = e.description();
    }
    names.clear();
    return false;
}

std::string QGebDb::ObjectsFile()
{
    return objectDb().path();
}

std::string QGebDb::ObjectsOfRoomQuery(const std::string& schema) const
{
    const std::string p = sqlName(schema) + "." + std::string(moduleSql(prefix_, [](const std::string& t) {
                              return t;
                          }));
    return "SELECT o.lId AS lId, coalesce(o.stName, '') AS stName, coalesce(o.stBeschreibung, '') AS stBeschreibung, "
           "coalesce(a.stArtNr, '') AS stArtNr FROM " +
           p + "Objekt o LEFT JOIN " + p + "Artikel a ON a.lId = o.lArtikelId WHERE o.lGebstruId = ?1 AND " +
           kStandingInRoom;
}

// ---------------------------------------------------------------- QObjektDb

QObjektDb::QObjektDb() = default;
QObjektDb::~QObjektDb() = default;

bool QObjektDb::Open(const std::string& appFolder, const HostSource& database)
{
    db_ = openHost(appFolder, database, lastError_);
    return db_ != nullptr;
}

std::optional<HostObject> QObjektDb::FindByInvNr(const std::string& invNr)
{
    if (!db_)
        throw DbError(dberr::General, lastError_.empty() ? kNotOpen : lastError_);
    // A batch of a few lookups (the evaluation completing its surplus rows) asks the number's
    // index; the map of all objects pays only for the many lookups of a scanner file.
    if (batches_ > 0 && lookupFromMap()) {
        const auto found = byKey_.find(jetFoldKey(invNr));
        if (found == byKey_.end())
            return std::nullopt;
        return found->second;
    }
    // stName is unique in Quarn's object tables: at most one row.
    Statement& st = db_->prepare(moduleSql(prefix_, [](const std::string& p) {
        return "SELECT a.stArtNr, a.stName, o.stBeschreibung, o.stOrt FROM " + p + "Objekt o LEFT JOIN " + p +
               "Artikel a ON a.lId = o.lArtikelId WHERE o.stName = ?1";
    }));
    st.bindAll({invNr});
    std::optional<HostObject> found;
    if (st.step())
        found = HostObject{text(st, 0), text(st, 1), text(st, 2), text(st, 3)};
    st.reset();
    return found;
}

bool QObjektDb::lookupFromMap()
{
    if (mapped_ && mappedPrefix_ == prefix_)
        return true;
    if (++batchLookups_ <= kLookupsBeforeMap)
        return false;
    if (lookupsBeforeMap_ < 0 || lookupsPrefix_ != prefix_) {
        const std::int64_t objects = toLong(db_->scalar(moduleSql(prefix_, [](const std::string& p) {
            return "SELECT count(*) FROM " + p + "Objekt";
        })));
        lookupsBeforeMap_ = std::max<std::int64_t>(kLookupsBeforeMap, objects / kObjectsPerLookup);
        lookupsPrefix_ = prefix_;
    }
    if (batchLookups_ <= lookupsBeforeMap_)
        return false;
    readAllObjects();
    return true;
}

void QObjektDb::readAllObjects()
{
    mapped_ = false;
    byKey_.clear();
    // What the single lookup's join answers, read as two walks in the order of the rows: the
    // articles by their key (of equal keys the first, as the join meets them), then the objects
    // with their article; of numbers that compare equal the first object stands, as the lookup
    // through the number's index finds it.
    struct Article {
        std::string stArtNr, stName;
    };
    std::unordered_map<std::int64_t, Article> articles;
    Statement& a = db_->prepare(moduleSql(prefix_, [](const std::string& p) {
        return "SELECT lId, stArtNr, stName FROM " + p + "Artikel WHERE lId IS NOT NULL ORDER BY rowid";
    }));
    Statement& o = db_->prepare(moduleSql(prefix_, [](const std::string& p) {
        return "SELECT stName, lArtikelId, stBeschreibung, stOrt FROM " + p +
               "Objekt WHERE stName IS NOT NULL ORDER BY rowid";
    }));
    const auto readText = [](const Statement& st, int column) { return std::string(st.columnText(column)); };
    try {
        a.bindAll({});
        while (a.step())
            articles.try_emplace(a.columnInt(0), Article{readText(a, 1), readText(a, 2)});
        a.reset();
        o.bindAll({});
        while (o.step()) {
            const Article* article = nullptr;
            if (!isNull(o.column(1))) {
                const auto found = articles.find(o.columnInt(1));
                if (found != articles.end())
                    article = &found->second;
            }
            byKey_.try_emplace(jetFoldKey(o.columnText(0)),
                               HostObject{article ? article->stArtNr : std::string(), article ? article->stName : std::string(),
                                          readText(o, 2), readText(o, 3)});
        }
        o.reset();
    } catch (...) {
        byKey_.clear();
        a.reset();
        o.reset();
        throw;
    }
    mapped_ = true;
    mappedPrefix_ = prefix_;
}

QObjektDb::LookupBatch::LookupBatch(QObjektDb& objects) : objects_(objects)
{
    if (!objects.db_)
        return;
    tx_ = std::make_unique<Database::Transaction>(*objects.db_);
    // The map of a batch before stands while no one changed the database since.
    const std::int64_t version = toLong(objects.db_->scalar("PRAGMA data_version"));
    if (version != objects.mappedVersion_) {
        objects.mapped_ = false;
        objects.byKey_.clear();
        objects.mappedVersion_ = version;
        objects.lookupsBeforeMap_ = -1;
    }
    ++objects.batches_;
}

QObjektDb::LookupBatch::~LookupBatch()
{
    if (tx_)
        --objects_.batches_;
    try {
        if (tx_)
            tx_->commit();
    } catch (...) {
        // Ending a read changes nothing; the destructor of the transaction cleans up.
    }
}

// ---------------------------------------------------------------- QArtikelDb

QArtikelDb::QArtikelDb() = default;
QArtikelDb::~QArtikelDb() = default;

bool QArtikelDb::Open(const std::string& appFolder, const HostSource& database)
{
    db_ = openHost(appFolder, database, lastError_);
    return db_ != nullptr;
}

std::optional<std::string> QArtikelDb::FindDescription(const std::string& artNr)
{
    if (!db_)
        throw DbError(dberr::General, lastError_.empty() ? kNotOpen : lastError_);
    // Several articles may share a number; the first one counts.
    Statement& st = db_->prepare(moduleSql(prefix_, [](const std::string& p) {
        return "SELECT stName FROM " + p + "Artikel WHERE stArtNr = ?1 ORDER BY lId LIMIT 1";
    }));
    st.bindAll({artNr});
    std::optional<std::string> found;
    if (st.step())
        found = text(st, 0);
    st.reset();
    return found;
}

} // namespace qi
