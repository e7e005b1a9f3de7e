#pragma once
// Quarn's host components as the system uses them: the building database
// component (structure tree, rooms, the objects standing in a room), the object
// component (lookup by inventory number) and the article component (lookup by
// article number). They only read Quarn's databases, never write them: every
// query runs on the local mirror of the source (see HostMirror.h), where text
// compares as Jet compares it and the joined columns are indexed. For Jet
// projects the source is a Quarn file, for ODBC projects the connection string.

#include "Database.h"
#include "HostSource.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace qi {

/// A node of the building structure (T_Gebstru).
struct GebNode {
    std::int32_t lId = 0;
    std::int32_t lParentId = 0; ///< 0 at the top
    int byTyp = 0;              ///< 1 site, 2 building, 3 floor (its rooms are listed), 4 room
    std::string stNr;
    std::string stBezeichnung;
};

/// The building structure as the tree control shows it; nodes in (parent, number) order.
struct GebStruktur {
    std::vector<GebNode> nodes;
};

/// A room object: the host id (T_Raumkern.lId, kept as lIdRB) and the room number text.
struct GebRoom {
    std::int32_t lId = 0;
    std::string stRaumNr;
    std::string stBezeichnung;
};

/// An object standing in a room, as the evaluation needs it.
struct RoomObject {
    std::string stName;         ///< inventory number
    std::string stBeschreibung; ///< description
    std::string stArtNr;        ///< the article's number
};

/// What the object component answers for an inventory number.
struct HostObject {
    std::string stArtNr;        ///< article number
    std::string stArtName;      ///< article name
    std::string stBeschreibung; ///< object description
    std::string stOrt;          ///< room number of the object's location
};

/// The building database component "QGebDb" (QGebaeude.mdb, plus the module's object tables).
class QGebDb {
public:
    QGebDb();
    ~QGebDb();
    /// Opens with the program folder and the building database (a file or a server), read-only,
    /// through the source's mirror. False with LastError set when that fails.
    bool Open(const std::string& appFolder, const HostSource& database);
    /// The same for a Quarn database file.
    bool Open(const std::string& appFolder, const std::string& file) { return Open(appFolder, HostSource::file(file)); }
    /// The object database that the per-room object query reads (the module's file or the server), and the
    /// module's table prefix. False with LastError set when it can't be opened.
    bool OpenObjects(const HostSource& database, const std::string& tablePrefix);
    /// The same for the module's object database file.
    bool OpenObjects(const std::string& file, const std::string& tablePrefix)
    {
        return OpenObjects(HostSource::file(file), tablePrefix);
    }
    const std::string& LastError() const { return lastError_; }
    /// True after a successful Open.
    bool IsOpen() const;

    /// The building structure for the tree; asked with the number 1. Empty when not open.
    std::optional<GebStruktur> GetGebStruktur(int what);
    /// All rooms of the installation, in room-number order.
    bool GetAllRooms(std::vector<GebRoom>& rooms, int flags = 0);
    /// The rooms under one node (a floor), in room-number order.
    bool GetRoomsOfNode(std::int32_t nodeId, std::vector<GebRoom>& rooms, int flags = 0);
    /// The objects standing in one room (lGebstruId = room id, byGebstruTyp = 4, variant 0), in the order of their keys.
    /// Needs OpenObjects; false with LastError when the objects are not open or the query fails.
    bool GetObjectsOfRoom(std::int32_t roomId, std::vector<RoomObject>& objects);
    /// The inventory numbers of the objects standing in every room at once (as GetObjectsOfRoom
    /// takes them, in the same order), by room id; rooms without objects have no entry. Needs
    /// OpenObjects; false with LastError when the objects are not open or the query fails.
    bool GetObjectNamesByRoom(std::map<std::int32_t, std::vector<std::string>>& names);
    /// The file of the object database (its mirror), for a connection that attaches it; throws
    /// DbError (LastError's text) when the objects are not open.
    std::string ObjectsFile();
    /// GetObjectsOfRoom as a query for a connection to which ObjectsFile() is attached as `schema`:
    /// the columns lId, stName, stBeschreibung and stArtNr (texts, empty where Null), the room id
    /// as ?1; the caller orders by lId. Throws DbError for a table prefix that is none of Quarn's.
    std::string ObjectsOfRoomQuery(const std::string& schema) const;

private:
    /// The open building database; throws DbError (LastError's text) when not open.
    Database& building();
    /// The open object database; throws DbError (LastError's text) when not open.
    Database& objectDb();
    std::unique_ptr<Database> geb_;
    std::unique_ptr<Database> obj_;
    std::string appFolder_;
    std::string prefix_;
    std::string lastError_;
};

/// The object component: lookup of an object by its inventory number.
class QObjektDb {
public:
    QObjektDb();
    ~QObjektDb();
    /// Opens the module's object database (a file or a server) through its mirror; false with LastError set.
    bool Open(const std::string& appFolder, const HostSource& database);
    /// The same for the module's object database file.
    bool Open(const std::string& appFolder, const std::string& file) { return Open(appFolder, HostSource::file(file)); }
    /// "T_I", "T_T" or "T_B".
    void SetTablePrefix(const std::string& prefix) { prefix_ = prefix; }
    const std::string& LastError() const { return lastError_; }
    /// True after a successful Open.
    bool IsOpen() const { return db_ != nullptr; }
    /// The object with that inventory number (compared like Jet text: case and trailing blanks ignored),
    /// or nothing. Throws DbError when not open (with the open's failure text) or when the query fails.
    /// Inside LookupBatches, past their first few thousand lookups, the answer comes from a map of all
    /// of the module's objects, read then and kept while the object database stays as it was.
    std::optional<HostObject> FindByInvNr(const std::string& invNr);
    /// The connection to Quarn's object database (null while it is not open).
    Database* database() { return db_.get(); }

    /// Many lookups in a row (a whole scanner file): while the object lives, the
    /// object database is read as of one moment and is not locked anew for each lookup,
    /// and the lookups are answered from memory.
    class LookupBatch {
    public:
        explicit LookupBatch(QObjektDb& objects);
        ~LookupBatch();
        LookupBatch(const LookupBatch&) = delete;
        LookupBatch& operator=(const LookupBatch&) = delete;

    private:
        QObjektDb& objects_;
        std::unique_ptr<Database::Transaction> tx_;
    };

private:
    /// Reads every object of the module into byKey_ (the first of equal numbers, as the query finds it).
    void readAllObjects();
    std::unique_ptr<Database> db_;
    std::string prefix_ = "T_I";
    std::string lastError_;
    /// Open LookupBatch objects.
    int batches_ = 0;
    /// True when this lookup inside a batch is to be answered from the map (read now if need be).
    bool lookupFromMap();
    /// Lookups inside batches answered by a query; the map is read once they are more than
    /// kLookupsBeforeMap and more than an eighth of the module's objects: reading the map
    /// costs about as much per object as an eighth of a lookup through the number's index.
    static constexpr int kLookupsBeforeMap = 2000;
    static constexpr std::int64_t kObjectsPerLookup = 8;
    int batchLookups_ = 0;
    /// The lookups before the map for the prefix in lookupsPrefix_; -1 before it is known.
    std::int64_t lookupsBeforeMap_ = -1;
    std::string lookupsPrefix_;
    /// The module's objects by jetFoldKey of their number; valid while mapped_ is true.
    std::unordered_map<std::string, HostObject> byKey_;
    bool mapped_ = false;
    /// Prefix and data version of the database when byKey_ was read.
    std::string mappedPrefix_;
    std::int64_t mappedVersion_ = -1;
};

/// The article component: lookup of an article by its number.
class QArtikelDb {
public:
    QArtikelDb();
    ~QArtikelDb();
    /// Opens the module's object database (a file or a server) through its mirror; false with LastError set.
    bool Open(const std::string& appFolder, const HostSource& database);
    /// The same for the module's object database file.
    bool Open(const std::string& appFolder, const std::string& file) { return Open(appFolder, HostSource::file(file)); }
    void SetTablePrefix(const std::string& prefix) { prefix_ = prefix; }
    const std::string& LastError() const { return lastError_; }
    /// True after a successful Open.
    bool IsOpen() const { return db_ != nullptr; }
    /// The article's name as its description, or nothing. Throws DbError when not open or when the query fails.
    std::optional<std::string> FindDescription(const std::string& artNr);

private:
    std::unique_ptr<Database> db_;
    std::string prefix_ = "T_I";
    std::string lastError_;
};

} // namespace qi
