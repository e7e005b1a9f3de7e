#pragma once
// The frame shared by the order database and the order register: a database
// path and open settings, explicit open and close, and the generic record
// operations. Every operation returns true on success; a failure leaves its
// German text in LastError, followed by "\r\n" and the engine's description
// when the engine raised an error.

#include "Database.h"
#include "DatabaseStructure.h"
#include "RecColl.h"
#include "RecordFields.h"

#include <exception>
#include <memory>
#include <stdexcept>
#include <string>

namespace qi {

namespace failtext {
inline constexpr const char* Save = "Der Datensatz konnte nicht gespeichert werden!";
inline constexpr const char* Update = "Der Datensatz konnte nicht aktualisiert werden!";
inline constexpr const char* Read = "Der Datensatz konnte nicht gelesen werden!";
inline constexpr const char* Delete = "Der Datensatz konnte nicht gelöscht werden!";
inline constexpr const char* ReadAll = "Die Datensätze konnten nicht in die Liste gelesen werden!";
inline constexpr const char* UpdateDb = "Die Datenbank konnte nicht aktualisiert werden!";
inline constexpr const char* InvalidDb = "Die Struktur der Datenbank ist ungültig!";
} // namespace failtext

class RecordDb {
public:
    RecordDb() = default;
    virtual ~RecordDb() { CloseDb(); }
    RecordDb(const RecordDb&) = delete;
    RecordDb& operator=(const RecordDb&) = delete;

    /// Message of the last failed operation; empty after a success.
    const std::string& LastError() const { return lastError_; }
    /// The engine's error number of the last failed operation; 0 after a success or a failure
    /// the engine did not raise.
    int LastErrorNumber() const { return lastErrorNumber_; }

    const std::string& DbPath() const { return dbPath_; }
    void setDbPath(std::string path) { dbPath_ = std::move(path); }
    /// Passed through to the open call unchanged.
    const Value& OpenOptions() const { return openOptions_; }
    void setOpenOptions(Value v) { openOptions_ = std::move(v); }
    /// Opens read-only when it holds a true value (non-zero number, non-empty text).
    const Value& OpenReadOnly() const { return openReadOnly_; }
    void setOpenReadOnly(Value v) { openReadOnly_ = std::move(v); }
    const std::string& OpenConnectInfo() const { return openConnectInfo_; }
    void setOpenConnectInfo(std::string v) { openConnectInfo_ = std::move(v); }

    /// Opens DbPath (closing first). An empty path answers false with LastError empty.
    bool OpenDb();
    /// True when the database was opened read-only (OpenReadOnly held a true value then).
    bool isReadOnly() const { return db_ && db_->readOnly(); }
    /// Closes the database; never fails.
    void CloseDb();
    /// Writes nothing (the engine writes through); true.
    bool UpdateDb();

    bool isOpen() const { return db_ != nullptr; }
    /// The open database, or null.
    Database* database() { return db_.get(); }

protected:
    /// Text written to the database holds at most its field's size (see Database::limitsText),
    /// from the next OpenDb on.
    void limitText() { limitsText_ = true; }
    /// Clears LastError (every public operation begins so).
    void begin()
    {
        lastError_.clear();
        lastErrorNumber_ = 0;
    }
    /// Sets LastError to the text (and the engine's description); returns false.
    bool fail(const std::string& text);
    bool fail(const std::string& text, const DbError& e);
    bool fail(const std::string& text, const std::exception& e);

    /// The open database; throws a marker (caught as "no database") when closed.
    Database& db();

    template <class Rec>
    bool addNewRec(Rec* rec);
    template <class Rec>
    bool editRec(Rec* rec);
    template <class Rec>
    bool readRec(Rec* rec, std::int32_t id);
    template <class Rec>
    bool delRec(std::int32_t id);
    /// Deletes the record's row; no record object fails like a missing object.
    template <class Rec>
    bool delRec(const Rec* rec);
    template <class Rec>
    bool readAllRec2Coll(CRecColl<Rec>& coll);
    /// The rows of a query over the record's table (all its columns) into the collection,
    /// in the query's order, as readAllRec2Coll reads the whole table.
    template <class Rec>
    bool readQueryRec2Coll(std::string_view sql, CRecColl<Rec>& coll);
    /// Walks the record's table in key order one record at a time, without reading it into
    /// memory: `start` once the first row is read (or the table is found empty), then `each`
    /// for every record. A failure of reading answers false with LastError set as
    /// readAllRec2Coll sets it; what `start` and `each` throw goes through unchanged.
    template <class Rec, class Start, class Each>
    bool walkAllRec(Start start, Each each);
    /// Runs an action statement; `failText` on error.
    bool executeDelete(std::string_view sql);
    /// Opens DbPath as OpenDb does and checks that the file holds every table and column of
    /// `expected`; otherwise closes it again and fails with the open message followed by
    /// "Sie ist " + `kind` + ": " and what is missing ("die Tabelle T_Raum fehlt").
    bool openChecked(const Structure& expected, const std::string& kind);

private:
    /// The read loop of the two above over the rows that `open` gives.
    template <class Rec, class OpenRows>
    bool readRowsRec2Coll(CRecColl<Rec>& coll, OpenRows open);

    std::string lastError_;
    int lastErrorNumber_ = 0;
    bool limitsText_ = false;
    std::string dbPath_;
    Value openOptions_;
    Value openReadOnly_;
    std::string openConnectInfo_;
    std::unique_ptr<Database> db_;
};

/// Raised inside an operation that needs an open database when none is open.
struct NoDatabase {};

/// The engine's description of a missing object (a record or database not there).
inline constexpr const char* kNoObject = "Objektvariable oder With-Blockvariable nicht festgelegt";

// ---------------------------------------------------------------- templates

template <class Rec>
bool RecordDb::addNewRec(Rec* rec)
{
    begin();
    if (!rec)
        return false;
    try {
        TableRecordset rs(db(), RecordTable<Rec>::name);
        rec->lID = static_cast<std::int32_t>(rs.addNew());
        writeFields<Rec>(rs, *rec, RecordTable<Rec>::write);
        rs.update();
        return true;
    } catch (const NoDatabase&) {
        // A record that was not stored keeps no key, whatever it held before.
        rec->lID = 0;
        return fail(failtext::Save);
    } catch (const DbError& e) {
        rec->lID = 0;
        return fail(failtext::Save, e);
    } catch (const std::exception& e) {
        rec->lID = 0;
        return fail(failtext::Save, e);
    }
}

template <class Rec>
bool RecordDb::editRec(Rec* rec)
{
    begin();
    if (!rec)
        return false;
    try {
        TableRecordset rs(db(), RecordTable<Rec>::name);
        rs.setIndex("PrimaryKey");
        if (!rs.seek(rec->lID))
            return fail(failtext::Update);
        rs.edit();
        writeFields<Rec>(rs, *rec, RecordTable<Rec>::write);
        rs.update();
        return true;
    } catch (const NoDatabase&) {
        return fail(failtext::Update);
    } catch (const DbError& e) {
        return fail(failtext::Update, e);
    } catch (const std::exception& e) {
        return fail(failtext::Update, e);
    }
}

template <class Rec>
bool RecordDb::readRec(Rec* rec, std::int32_t id)
{
    begin();
    if (!rec)
        return false;
    try {
        TableRecordset rs(db(), RecordTable<Rec>::name);
        rs.setIndex("PrimaryKey");
        if (!rs.seek(id))
            return fail(failtext::Read);
        readFields<Rec>(rs, *rec, RecordTable<Rec>::read);
        return true;
    } catch (const NoDatabase&) {
        return fail(failtext::Read);
    } catch (const DbError& e) {
        return fail(failtext::Read, e);
    } catch (const std::exception& e) {
        return fail(failtext::Read, e);
    }
}

template <class Rec>
bool RecordDb::delRec(const Rec* rec)
{
    if (!rec) {
        begin();
        return fail(failtext::Delete, std::runtime_error(kNoObject));
    }
    return delRec<Rec>(rec->lID);
}

template <class Rec>
bool RecordDb::delRec(std::int32_t id)
{
    begin();
    try {
        TableRecordset rs(db(), RecordTable<Rec>::name);
        rs.setIndex("PrimaryKey");
        if (!rs.seek(id))
            return fail(failtext::Delete);
        rs.remove();
        return true;
    } catch (const NoDatabase&) {
        return fail(failtext::Delete);
    } catch (const DbError& e) {
        return fail(failtext::Delete, e);
    } catch (const std::exception& e) {
        return fail(failtext::Delete, e);
    }
}

template <class Rec>
bool RecordDb::readAllRec2Coll(CRecColl<Rec>& coll)
{
    return readRowsRec2Coll(coll, [this] { return TableRecordset(db(), RecordTable<Rec>::name); });
}

template <class Rec>
bool RecordDb::readQueryRec2Coll(std::string_view sql, CRecColl<Rec>& coll)
{
    return readRowsRec2Coll(coll, [this, sql] { return db().query(sql); });
}

template <class Rec, class Start, class Each>
bool RecordDb::walkAllRec(Start start, Each each)
{
    begin();
    // What the caller's steps throw is carried past the handlers of the reading.
    struct Passed {};
    std::exception_ptr passed;
    const auto call = [&](auto&& step) {
        try {
            step();
        } catch (...) {
            passed = std::current_exception();
            throw Passed{};
        }
    };
    try {
        TableRecordset rows(db(), RecordTable<Rec>::name);
        rows.moveFirst();
        call([&] { start(); });
        Rec rec;
        for (; !rows.eof(); rows.moveNext()) {
            rec.Init();
            readFields<Rec>(rows, rec, RecordTable<Rec>::read);
            call([&] { each(rec); });
        }
        return true;
    } catch (const Passed&) {
        std::rethrow_exception(passed);
    } catch (const NoDatabase&) {
        return fail(failtext::ReadAll);
    } catch (const DbError& e) {
        return fail(failtext::ReadAll, e);
    } catch (const std::exception& e) {
        return fail(failtext::ReadAll, e);
    }
}

template <class Rec, class OpenRows>
bool RecordDb::readRowsRec2Coll(CRecColl<Rec>& coll, OpenRows open)
{
    begin();
    coll.Clear();
    try {
        auto rows = open();
        Rec rec;
        for (rows.moveFirst(); !rows.eof(); rows.moveNext()) {
            rec.Init();
            readFields<Rec>(rows, rec, RecordTable<Rec>::read);
            if (!coll.Append(&rec))
                return fail(failtext::ReadAll);
        }
        return true;
    } catch (const NoDatabase&) {
        return fail(failtext::ReadAll);
    } catch (const DbError& e) {
        return fail(failtext::ReadAll, e);
    } catch (const std::exception& e) {
        return fail(failtext::ReadAll, e);
    }
}

} // namespace qi
