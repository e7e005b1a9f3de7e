#include "Database.h"

#include "FileSystem.h"
#include "JetCollation.h"
#include "SqlName.h"
#include "SystemError.h"

#include <algorithm>
#include <cstdlib>
#include <cctype>
#include <filesystem>
#include <malloc.h>
#include <sqlite3.h>

namespace qi {

namespace {

char asciiLower(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }

std::string lower(std::string_view s)
{
    std::string r(s);
    std::transform(r.begin(), r.end(), r.begin(), asciiLower);
    return r;
}

bool startsWithKeyword(std::string_view sql, std::string_view keyword)
{
    while (!sql.empty() && std::isspace(static_cast<unsigned char>(sql.front())))
        sql.remove_prefix(1);
    return sql.size() >= keyword.size() && sameName(sql.substr(0, keyword.size()), keyword);
}

/// Counts the ends of a connection's transactions.
int onCommit(void* epoch)
{
    ++*static_cast<std::int64_t*>(epoch);
    return 0;
}

void onRollback(void* epoch) { ++*static_cast<std::int64_t*>(epoch); }

/// Settings of the engine itself, made before its first connection: without memory
/// statistics its allocator needs no lock.
void startEngine()
{
    static const int once = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    (void)once;
}

/// What every connection gets: the Jet comparison, extended error codes, a wait for a
/// lock held by someone else, and a page cache (16 MB) that keeps an order's tables and
/// Quarn's object table in memory while a run works through them.
///
/// Changes go through a rollback journal beside the file, written through to the disk
/// before a transaction counts as done: a process that dies leaves the journal, and the
/// next connection puts the file back as it was before the transaction. (A write-ahead log
/// would need memory shared between the processes of one machine, which files on a network
/// share do not offer.)
void configure(sqlite3* raw)
{
    registerJetCollation(raw);
    sqlite3_extended_result_codes(raw, 1);
    // Set before the wait: a file another program keeps locked keeps the engine's own journal
    // setting (the same) rather than making the user wait twice.
    sqlite3_exec(raw, "PRAGMA cache_size = -16384; PRAGMA synchronous = FULL; PRAGMA journal_mode = DELETE", nullptr,
                 nullptr, nullptr);
    sqlite3_busy_timeout(raw, 2000);
}

Value parseDefault(const unsigned char* text)
{
    if (!text)
        return {};
    std::string s(reinterpret_cast<const char*>(text));
    if (s.size() >= 2 && s.front() == '\'' && s.back() == '\'')
        return s.substr(1, s.size() - 2);
    if (lower(s) == "null")
        return {};
    try {
        std::size_t used = 0;
        const long long n = std::stoll(s, &used);
        if (used == s.size())
            return std::int64_t{n};
    } catch (...) {
    }
    return s;
}

/// "no such table: X" → X
std::string missingTableName(const std::string& message)
{
    const auto colon = message.find(": ");
    return colon == std::string::npos ? message : message.substr(colon + 2);
}

/// What kind of failure an SQLite result code stands for, in German words.
std::string engineFailure(int rc)
{
    switch (rc & 0xff) {
    case SQLITE_ERROR:
        return "Die Anweisung kann nicht ausgeführt werden";
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return "Zugriff verweigert";
    case SQLITE_ABORT:
    case SQLITE_INTERRUPT:
        return "Der Vorgang wurde abgebrochen";
    case SQLITE_NOMEM:
        return "Nicht genügend Arbeitsspeicher";
    case SQLITE_PROTOCOL:
        return "Die Datei kann nicht gesperrt werden";
    case SQLITE_SCHEMA:
        return "Der Aufbau der Datenbank hat sich geändert";
    case SQLITE_TOOBIG:
        return "Der Wert ist zu groß";
    case SQLITE_CONSTRAINT:
        return "Der Wert verletzt eine Bedingung der Tabelle";
    case SQLITE_MISMATCH:
        return "Datentypen unverträglich";
    case SQLITE_NOLFS:
        return "Die Datei ist zu groß";
    case SQLITE_RANGE:
        return "Die Werte passen nicht zur Anweisung";
    default:
        return "Fehler des Datenbankmoduls";
    }
}

} // namespace

// ---------------------------------------------------------------- Statement

Statement::Statement(Database& db, sqlite3_stmt* stmt) : db_(db), stmt_(stmt) {}

Statement::~Statement() { sqlite3_finalize(stmt_); }

void Statement::reset()
{
    sqlite3_reset(stmt_);
    sqlite3_clear_bindings(stmt_);
}

void Statement::bind(int index, const Value& v)
{
    int rc = SQLITE_OK;
    if (const auto* s = std::get_if<std::string>(&v))
        rc = sqlite3_bind_text(stmt_, index, s->data(), int(s->size()), SQLITE_TRANSIENT);
    else if (const auto* n = std::get_if<std::int64_t>(&v))
        rc = sqlite3_bind_int64(stmt_, index, *n);
    else if (const auto* d = std::get_if<double>(&v))
        rc = sqlite3_bind_double(stmt_, index, *d);
    else
        rc = sqlite3_bind_null(stmt_, index);
    if (rc != SQLITE_OK)
        throw db_.errorFor(rc);
}

void Statement::bindColumn(int index, const Statement& source, int column)
{
    const int rc = sqlite3_bind_value(stmt_, index, sqlite3_column_value(source.stmt_, column));
    if (rc != SQLITE_OK)
        throw db_.errorFor(rc);
}

void Statement::bindText(int index, std::string_view text)
{
    const int rc = sqlite3_bind_text(stmt_, index, text.data(), int(text.size()), SQLITE_TRANSIENT);
    if (rc != SQLITE_OK)
        throw db_.errorFor(rc);
}

void Statement::bindAll(const std::vector<Value>& params)
{
    reset();
    for (std::size_t i = 0; i < params.size(); ++i)
        bind(int(i + 1), params[i]);
}

bool Statement::step()
{
    if (!sqlite3_stmt_readonly(stmt_))
        db_.refuseAfterStorageFailure();
    const int rc = sqlite3_step(stmt_);
    if (rc == SQLITE_ROW)
        return true;
    if (rc == SQLITE_DONE)
        return false;
    DbError e = db_.errorFor(rc, sqlite3_sql(stmt_));
    sqlite3_reset(stmt_);
    db_.noteFailure(rc, e);
    throw e;
}

int Statement::columnCount() const { return sqlite3_column_count(stmt_); }

std::string Statement::columnName(int i) const
{
    const char* n = sqlite3_column_name(stmt_, i);
    return n ? n : "";
}

Value Statement::column(int i) const
{
    switch (sqlite3_column_type(stmt_, i)) {
    case SQLITE_INTEGER:
        return std::int64_t{sqlite3_column_int64(stmt_, i)};
    case SQLITE_FLOAT:
        return sqlite3_column_double(stmt_, i);
    case SQLITE_NULL:
        return {};
    default: {
        const auto* t = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, i));
        return std::string(t ? t : "", std::size_t(sqlite3_column_bytes(stmt_, i)));
    }
    }
}

std::string_view Statement::columnText(int i) const
{
    const auto* t = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, i));
    return t ? std::string_view(t, std::size_t(sqlite3_column_bytes(stmt_, i))) : std::string_view();
}

std::int64_t Statement::columnInt(int i) const { return sqlite3_column_int64(stmt_, i); }

// ---------------------------------------------------------------- Recordset

Recordset::Recordset(std::vector<std::string> names, std::vector<std::vector<Value>> rows)
    : names_(std::move(names)), rows_(std::move(rows))
{
}

std::size_t Recordset::columnIndex(std::string_view name) const
{
    for (std::size_t i = 0; i < names_.size(); ++i)
        if (jetEqual(names_[i], name))
            return i;
    throw DbError(dberr::ItemNotFound, "Element in dieser Auflistung nicht gefunden.");
}

const Value& Recordset::field(std::string_view name) const { return field(columnIndex(name)); }

const Value& Recordset::field(std::size_t column) const
{
    if (eof())
        throw DbError(dberr::NoCurrentRecord, "Kein aktueller Datensatz.");
    if (column >= names_.size())
        throw DbError(dberr::ItemNotFound, "Element in dieser Auflistung nicht gefunden.");
    return rows_[pos_][column];
}

namespace {
/// Jet's size of a text field that names none.
constexpr std::size_t kJetTextSize = 255;

/// The most characters a column of the declared type holds (see ColumnInfo::textSize).
std::size_t textSizeOf(const std::string& declared)
{
    const std::string type = lower(declared);
    const std::size_t open = type.find('(');
    std::string name = type.substr(0, open);
    while (!name.empty() && name.back() == ' ')
        name.pop_back();
    if (name != "text" && name != "varchar" && name != "char" && name != "nvarchar" && name != "nchar")
        return 0;
    if (open == std::string::npos)
        return kJetTextSize;
    const unsigned long size = std::strtoul(type.c_str() + open + 1, nullptr, 10);
    return size > 0 ? std::size_t(size) : kJetTextSize;
}
} // namespace

// ---------------------------------------------------------------- names

bool NameLess::operator()(std::string_view a, std::string_view b) const
{
    const std::size_t n = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        const char x = asciiLower(a[i]), y = asciiLower(b[i]);
        if (x != y)
            return static_cast<unsigned char>(x) < static_cast<unsigned char>(y);
    }
    return a.size() < b.size();
}

bool sameName(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (asciiLower(a[i]) != asciiLower(b[i]))
            return false;
    return true;
}

// ---------------------------------------------------------------- TableInfo

int TableInfo::column(std::string_view n) const
{
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (sameName(columns[i].name, n))
            return int(i);
    return -1;
}

// ---------------------------------------------------------------- Database

Database::Database(sqlite3* db, std::string path, bool readOnly)
    : db_(db), path_(std::move(path)), readOnly_(readOnly)
{
    if (db_) {
        sqlite3_commit_hook(db_, onCommit, &epoch_);
        sqlite3_rollback_hook(db_, onRollback, &epoch_);
    }
}

Database::~Database()
{
    statements_.clear();
    sqlite3_close_v2(db_);
}

std::unique_ptr<Database> Database::open(const std::string& path, bool readOnly)
{
    const std::string native = nativePath(path);
    if (path.empty() || !fileExists(path))
        throw DbError(dberr::FileNotFound, "Die Datei '" + displayPath(path) + "' konnte nicht gefunden werden.");
    // The engine would take an empty file for a new database and write one into it.
    std::error_code ec;
    if (std::filesystem::file_size(std::filesystem::u8path(native), ec) == 0 && !ec)
        throw DbError(dberr::UnrecognizedFormat, emptyFileMessage(path));
    startEngine();
    sqlite3* raw = nullptr;
    const int flags = (readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) | SQLITE_OPEN_NOMUTEX;
    const int rc = sqlite3_open_v2(native.c_str(), &raw, flags, nullptr);
    std::unique_ptr<Database> db(new Database(raw, path, readOnly));
    if (rc != SQLITE_OK)
        throw DbError(dberr::FileNotFound, "Die Datei '" + displayPath(path) + "' konnte nicht geöffnet werden.");
    configure(raw);
    // Reading the schema tells a database file from any other file (and puts back what a
    // program that died while changing the file left half-written).
    const int check = sqlite3_exec(raw, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr);
    if (check != SQLITE_OK) {
        const int primary = check & 0xff;
        if (primary == SQLITE_BUSY || primary == SQLITE_LOCKED || primary == SQLITE_READONLY ||
            primary == SQLITE_IOERR || primary == SQLITE_CANTOPEN)
            throw db->errorFor(check);
        // A file that was cut short says so rather than being taken for no database at all.
        db->checkComplete();
        throw DbError(dberr::UnrecognizedFormat, "Nicht erkanntes Datenbankformat '" + displayPath(path) + "'.");
    }
    db->checkComplete();
    return db;
}

void Database::checkComplete()
{
    // A file shorter than its header says was cut off (a copy that stopped, a full disk). The
    // header is read through the engine's own handle of the file: a handle of our own, closed
    // again, would drop the locks the engine holds on it. Both are read while the file is read
    // by this connection, so that no program extends it meanwhile.
    sqlite3_file* file = nullptr;
    if (sqlite3_file_control(db_, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK || !file || !file->pMethods)
        return;
    const int rc = sqlite3_exec(db_, "BEGIN; SELECT 1 FROM sqlite_master LIMIT 1", nullptr, nullptr, nullptr);
    const bool reading = rc == SQLITE_OK;
    if ((rc & 0xff) == SQLITE_BUSY || (rc & 0xff) == SQLITE_LOCKED) {
        // Another program is writing the file right now: its size says nothing.
        if (!sqlite3_get_autocommit(db_))
            sqlite3_exec(db_, "COMMIT", nullptr, nullptr, nullptr);
        return;
    }
    unsigned char header[100] = {};
    sqlite3_int64 bytes = 0;
    const bool read = file->pMethods->xRead(file, header, sizeof header, 0) == SQLITE_OK &&
                      file->pMethods->xFileSize(file, &bytes) == SQLITE_OK;
    if (reading || !sqlite3_get_autocommit(db_))
        sqlite3_exec(db_, "COMMIT", nullptr, nullptr, nullptr);
    if (!read || std::string_view(reinterpret_cast<const char*>(header), 16) != std::string_view("SQLite format 3\0", 16))
        return;
    const auto be32 = [&header](int at) {
        return std::uint32_t(header[at]) << 24 | std::uint32_t(header[at + 1]) << 16 |
               std::uint32_t(header[at + 2]) << 8 | std::uint32_t(header[at + 3]);
    };
    std::uint64_t pageSize = std::uint64_t(header[16]) << 8 | header[17];
    if (pageSize == 1)
        pageSize = 65536;
    // The size in the header counts only when the file's change counter says it is current.
    const std::uint32_t pages = be32(28);
    if (pages == 0 || be32(24) != be32(92))
        return;
    if (pages * pageSize > std::uint64_t(bytes))
        throw DbError(dberr::UnrecognizedFormat,
                      "Die Datei '" + displayPath(path_) + "' ist beschädigt: sie ist unvollständig.");
}

std::unique_ptr<Database> Database::create(const std::string& path)
{
    const std::string native = nativePath(path);
    removeFile(path);
    startEngine();
    sqlite3* raw = nullptr;
    const int rc = sqlite3_open_v2(native.c_str(), &raw,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    std::unique_ptr<Database> db(new Database(raw, path, false));
    if (rc != SQLITE_OK)
        throw DbError(dberr::FileNotFound, "Die Datei '" + displayPath(path) + "' konnte nicht angelegt werden.");
    configure(raw);
    return db;
}

std::unique_ptr<Database> Database::inMemory()
{
    startEngine();
    sqlite3* raw = nullptr;
    // URIs: files are attached to it only for reading (attachReadOnly).
    const int rc = sqlite3_open_v2(":memory:", &raw,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX,
                                   nullptr);
    std::unique_ptr<Database> db(new Database(raw, ":memory:", false));
    if (rc != SQLITE_OK)
        throw db->errorFor(rc);
    configure(raw);
    return db;
}

DbError Database::errorFor(int rc, std::string_view sql) const
{
    const std::string message = sqlite3_errmsg(db_);
    switch (rc & 0xff) {
    case SQLITE_FULL:
        return DbError(dberr::DiskFull, dbtext::DiskFull);
    case SQLITE_IOERR:
        return DbError(dberr::DiskOrNetwork, dbtext::DiskOrNetwork);
    case SQLITE_CANTOPEN:
        return DbError(dberr::FileNotFound, "Auf die Datei '" + displayPath(path_) + "' kann nicht zugegriffen werden.");
    case SQLITE_READONLY:
        if (rc == SQLITE_READONLY_ROLLBACK || rc == SQLITE_READONLY_RECOVERY)
            return DbError(dberr::ReadOnly, "Die Datei '" + displayPath(path_) +
                                                "' wurde bei einer Änderung unterbrochen und kann nur von einem "
                                                "Programm, das sie ändern darf, wiederhergestellt werden.");
        return DbError(dberr::ReadOnly, "Aktualisieren nicht möglich. Die Datei '" + displayPath(path_) +
                                            "' ist schreibgeschützt.");
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return DbError(dberr::Locked, "Die Datei '" + displayPath(path_) + "' ist bereits in Verwendung.");
    default:
        break;
    }
    switch (rc) {
    case SQLITE_CONSTRAINT_UNIQUE:
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_ROWID:
        return DbError(dberr::DuplicateKey,
                       "Die von Ihnen vorgenommenen Änderungen an der Tabelle konnten nicht vorgenommen werden, "
                       "da der Index, Primärschlüssel oder die Beziehung mehrfach vorkommende Werte enthalten würde. "
                       "Ändern Sie die Daten in den Feldern, die gleiche Daten enthalten, entfernen Sie den Index, "
                       "oder definieren Sie den Index neu, damit doppelte Einträge möglich sind, und versuchen Sie es erneut.");
    case SQLITE_CONSTRAINT_CHECK:
        return DbError(dberr::NumericOverflow, "Numerischer Feldüberlauf.");
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
        return DbError(dberr::UnrecognizedFormat, "Nicht erkanntes Datenbankformat '" + displayPath(path_) + "'.");
    default:
        break;
    }
    if (message.rfind("no such table", 0) == 0)
        return DbError(dberr::InputTableNotFound,
                       "Das Datenbankmodul findet die Eingabetabelle oder -abfrage '" + missingTableName(message) +
                           "' nicht. Stellen Sie sicher, dass sie existiert und dass der Name richtig geschrieben ist.");
    if (message.rfind("no such column", 0) == 0)
        return DbError(dberr::ItemNotFound, "Element in dieser Auflistung nicht gefunden (" + missingTableName(message) + ").");
    // The engine's own words are English: a person reads what kind of failure it was, its
    // number, and the statement the engine could not run. A trigger's refusal is told in
    // the trigger's own words.
    std::string text = "Datenbankfehler " + std::to_string(rc) + ": " +
                       (rc == SQLITE_CONSTRAINT_TRIGGER ? message : engineFailure(rc));
    if (!sql.empty() && (rc & 0xff) == SQLITE_ERROR)
        text += " (" + std::string(sql.substr(0, 120)) + ")";
    return DbError(dberr::General, text + ".");
}

Statement& Database::prepare(std::string_view sql)
{
    if (auto it = statements_.find(sql); it != statements_.end())
        return *it->second;
    sqlite3_stmt* stmt = nullptr;
    const int rc = sqlite3_prepare_v3(db_, sql.data(), int(sql.size()), SQLITE_PREPARE_PERSISTENT, &stmt, nullptr);
    if (rc != SQLITE_OK)
        throw errorFor(rc, sql);
    auto& slot = statements_[std::string(sql)];
    slot = std::make_unique<Statement>(*this, stmt);
    return *slot;
}

std::unique_ptr<Statement> Database::prepareOwn(std::string_view sql)
{
    sqlite3_stmt* stmt = nullptr;
    const int rc = sqlite3_prepare_v3(db_, sql.data(), int(sql.size()), SQLITE_PREPARE_PERSISTENT, &stmt, nullptr);
    if (rc != SQLITE_OK)
        throw errorFor(rc, sql);
    return std::make_unique<Statement>(*this, stmt);
}

std::int64_t Database::execute(std::string_view sql, const std::vector<Value>& params)
{
    const bool schemaChange = startsWithKeyword(sql, "create") || startsWithKeyword(sql, "drop") ||
                              startsWithKeyword(sql, "alter");
    if (schemaChange) {
        // Schema statements run once; keeping them prepared would only pin the old schema.
        statements_.clear();
        tables_.clear();
        executeScript(sql);
        return 0;
    }
    Statement& st = prepare(sql);
    st.bindAll(params);
    while (st.step()) {
    }
    st.reset();
    return sqlite3_changes64(db_);
}

void Database::executeScript(std::string_view sql)
{
    refuseAfterStorageFailure();
    statements_.clear();
    tables_.clear();
    char* err = nullptr;
    const std::string text(sql);
    const int rc = sqlite3_exec(db_, text.c_str(), nullptr, nullptr, &err);
    sqlite3_free(err);
    if (rc != SQLITE_OK) {
        DbError e = errorFor(rc, sql);
        noteFailure(rc, e);
        throw e;
    }
}

void Database::noteFailure(int rc, const DbError& error)
{
    const int primary = rc & 0xff;
    if (primary != SQLITE_FULL && primary != SQLITE_IOERR)
        return;
    // A statement outside any guard was undone by the engine itself. Inside a guard, what the
    // transaction holds can't be kept: it goes as a whole, now, before anything else runs.
    if (transactionDepth_ == 0 || storageFailure_)
        return;
    if (!sqlite3_get_autocommit(db_))
        sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
    storageFailure_ = error;
}

void Database::refuseAfterStorageFailure() const
{
    if (storageFailure_)
        throw *storageFailure_;
}

void Database::attachReadOnly(const std::string& path, const std::string& alias)
{
    // Only the connections in memory take URIs; a name of any other would be taken as a file name.
    if (path_ != ":memory:")
        throw DbError(dberr::General, "Die Datei '" + displayPath(path) + "' kann nicht angefügt werden.");
    execute("ATTACH DATABASE ?1 AS " + sqlName(alias), {readOnlyUri(nativePath(path))});
    if (sqlite3_db_readonly(db_, alias.c_str()) != 1) {
        detach(alias);
        throw DbError(dberr::General, "Die Datei '" + displayPath(path) + "' kann nicht angefügt werden.");
    }
}

void Database::detach(const std::string& alias) { execute("DETACH DATABASE " + sqlName(alias)); }

void Database::releaseMemory()
{
    sqlite3_db_release_memory(db_);
    // The pages were allocated one by one between other allocations; only trimming the heap
    // hands their freed room back.
    ::malloc_trim(0);
}

void Database::copyTo(const std::string& path)
{
    sqlite3* target = nullptr;
    removeFile(path);
    int rc = sqlite3_open_v2(nativePath(path).c_str(), &target,
                             SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (rc == SQLITE_OK) {
        sqlite3_backup* backup = sqlite3_backup_init(target, "main", db_, "main");
        if (!backup) {
            rc = sqlite3_errcode(target);
        } else {
            // All pages in one step: the source is read under one lock, so the copy is one state of it.
            const int step = sqlite3_backup_step(backup, -1);
            const int finish = sqlite3_backup_finish(backup);
            rc = step == SQLITE_DONE ? finish : step;
        }
    }
    sqlite3_close_v2(target);
    if (rc != SQLITE_OK) {
        removeFile(path);
        const int primary = rc & 0xff;
        if (primary == SQLITE_FULL || primary == SQLITE_IOERR || primary == SQLITE_BUSY || primary == SQLITE_LOCKED)
            throw errorFor(rc);
        throw DbError(dberr::FileNotFound, "Die Datei '" + displayPath(path) + "' konnte nicht angelegt werden.");
    }
}

Recordset Database::query(std::string_view sql, const std::vector<Value>& params)
{
    Statement& st = prepare(sql);
    st.bindAll(params);
    std::vector<std::string> names;
    const int n = st.columnCount();
    names.reserve(std::size_t(n));
    for (int i = 0; i < n; ++i)
        names.push_back(st.columnName(i));
    std::vector<std::vector<Value>> rows;
    while (st.step()) {
        std::vector<Value> row;
        row.reserve(std::size_t(n));
        for (int i = 0; i < n; ++i)
            row.push_back(st.column(i));
        rows.push_back(std::move(row));
    }
    st.reset();
    return Recordset(std::move(names), std::move(rows));
}

Value Database::scalar(std::string_view sql, const std::vector<Value>& params)
{
    Statement& st = prepare(sql);
    st.bindAll(params);
    Value v;
    if (st.step())
        v = st.column(0);
    st.reset();
    return v;
}

bool Database::tableExists(std::string_view name, std::string_view schema)
{
    const std::string sql = "SELECT 1 FROM \"" + std::string(schema) +
                            "\".sqlite_master WHERE type IN ('table','view') AND name = ?1 COLLATE NOCASE";
    return !isNull(scalar(sql, {std::string(name)}));
}

const TableInfo& Database::tableInfo(std::string_view name)
{
    if (auto it = tables_.find(name); it != tables_.end())
        return it->second;
    const Value spelled = scalar("SELECT name FROM sqlite_master WHERE type = 'table' AND name = ?1 COLLATE NOCASE",
                                 {std::string(name)});
    if (isNull(spelled))
        throw DbError(dberr::InputTableNotFound,
                      "Das Datenbankmodul findet die Eingabetabelle oder -abfrage '" + std::string(name) +
                          "' nicht. Stellen Sie sicher, dass sie existiert und dass der Name richtig geschrieben ist.");
    TableInfo info;
    info.name = toText(spelled);
    const Recordset cols = query("SELECT name, type, dflt_value, pk FROM pragma_table_info(?1)", {info.name});
    for (const auto& row : cols.rows()) {
        ColumnInfo c;
        c.name = toText(row[0]);
        c.declaredType = toText(row[1]);
        if (!isNull(row[2]))
            c.defaultValue = parseDefault(reinterpret_cast<const unsigned char*>(toText(row[2]).c_str()));
        c.isKey = toLong(row[3]) == 1;
        c.isInteger16 = lower(c.declaredType) == "smallint";
        c.textSize = textSizeOf(c.declaredType);
        if (c.isKey)
            info.keyColumn = int(info.columns.size());
        info.columns.push_back(std::move(c));
    }
    const std::string table = "\"" + info.name + "\"";
    std::string names, marks, sets;
    for (std::size_t i = 0; i < info.columns.size(); ++i) {
        const std::string col = "\"" + info.columns[i].name + "\"";
        const std::string mark = "?" + std::to_string(i + 1);
        names += (i ? "," : "") + col;
        marks += (i ? "," : "") + mark;
        sets += (i ? "," : "") + col + "=" + mark;
    }
    info.selectByKeySql = "SELECT * FROM " + table + " WHERE rowid = ?1";
    info.insertSql = "INSERT INTO " + table + " (" + names + ") VALUES (" + marks + ")";
    info.updateSql = "UPDATE " + table + " SET " + sets + " WHERE rowid = ?" + std::to_string(info.columns.size() + 1);
    info.deleteSql = "DELETE FROM " + table + " WHERE rowid = ?1";
    const std::string key = info.name;
    return tables_.emplace(key, std::move(info)).first->second;
}

std::int64_t Database::reserveAutoNumber(const TableInfo& table)
{
    // The key is taken when the row is begun and is never handed out again, even if
    // the row is abandoned. The next key lies past the largest key present (rows stored
    // with explicit keys, rows that set-based statements inserted), past the table's
    // sequence (keys of rows since deleted or abandoned) and past the last key this
    // connection handed out (a row begun and not stored yet). Storing the row moves the
    // sequence on by itself; an abandoned row does so through consumeAutoNumber.
    //
    // Inside a write transaction no other connection writes. When nothing but the row of
    // the last key (or its abandonment) changed the connection's rows since, in the same
    // transaction, the table holds no key past the last one and it is not read again.
    auto it = keys_.find(table.name);
    if (it == keys_.end())
        it = keys_.emplace(table.name, KeyState{}).first;
    KeyState& k = it->second;
    const bool writing = sqlite3_get_autocommit(db_) == 0 && sqlite3_txn_state(db_, "main") == SQLITE_TXN_WRITE;
    const std::int64_t changes = sqlite3_total_changes64(db_);
    if (!(writing && k.epoch == epoch_ && k.changes == changes)) {
        Statement& st = prepare("SELECT max(coalesce((SELECT max(rowid) FROM \"" + table.name +
                                "\"), 0), coalesce((SELECT seq FROM sqlite_sequence WHERE name = ?1), 0))");
        st.bindAll({table.name});
        st.step();
        const std::int64_t stored = st.columnInt(0);
        st.reset();
        k.last = std::max(stored, k.last);
    }
    ++k.last;
    k.epoch = writing ? epoch_ : -1;
    k.changes = changes + 1;
    return k.last;
}

void Database::consumeAutoNumber(const TableInfo& table, std::int64_t key)
{
    if (execute("UPDATE sqlite_sequence SET seq = max(seq, ?2) WHERE name = ?1", {table.name, key}) == 0)
        execute("INSERT INTO sqlite_sequence(name, seq) VALUES (?1, ?2)", {table.name, key});
}

// ---------------------------------------------------------------- Transaction

Database::Turning::Turning(Database* db, std::function<void()> turn, std::chrono::milliseconds interval)
    : db_(db), turn_(std::move(turn)), interval_(interval), last_(std::chrono::steady_clock::now())
{
    if (!db_ || db_->turning_)
        return;
    db_->turning_ = this;
    installed_ = true;
    // The engine asks every few thousand steps of a statement; the clock decides whether to turn.
    sqlite3_progress_handler(db_->db_, 4000, &Turning::onProgress, this);
}

Database::Turning::~Turning()
{
    if (!installed_)
        return;
    sqlite3_progress_handler(db_->db_, 0, nullptr, nullptr);
    db_->turning_ = nullptr;
}

int Database::Turning::onProgress(void* self)
{
    auto& t = *static_cast<Turning*>(self);
    const auto now = std::chrono::steady_clock::now();
    if (now - t.last_ < t.interval_)
        return 0;
    try {
        t.turn_();
    } catch (...) {
        // What the windows did meanwhile never ends the statement.
    }
    t.last_ = std::chrono::steady_clock::now();
    return 0;
}

Database::Transaction::Transaction(Database& db)
    : db_(db), name_("qi_tx" + std::to_string(++db.savepointCounter_))
{
    // After a failure of the disk no transaction begins: the guard only counts, changes are refused.
    if (!db_.storageFailure_) {
        const int rc = sqlite3_exec(db_.db_, ("SAVEPOINT " + name_).c_str(), nullptr, nullptr, nullptr);
        if (rc != SQLITE_OK)
            throw db_.errorFor(rc);
    }
    ++db_.transactionDepth_;
}

Database::Transaction::~Transaction()
{
    if (open_) {
        try {
            rollback();
        } catch (...) {
        }
    }
}

void Database::Transaction::end()
{
    open_ = false;
    if (--db_.transactionDepth_ == 0)
        db_.storageFailure_.reset();
}

void Database::Transaction::commit()
{
    if (!open_)
        return;
    if (db_.storageFailure_) {
        const DbError failure = *db_.storageFailure_;
        end();
        throw failure;
    }
    char* err = nullptr;
    const int rc = sqlite3_exec(db_.db_, ("RELEASE " + name_).c_str(), nullptr, nullptr, &err);
    sqlite3_free(err);
    if (rc != SQLITE_OK) {
        const DbError failure = db_.errorFor(rc);
        // A transaction that can't be written goes as a whole; the connection is left without one.
        if (db_.transactionDepth_ == 1 && !sqlite3_get_autocommit(db_.db_))
            sqlite3_exec(db_.db_, "ROLLBACK", nullptr, nullptr, nullptr);
        else
            db_.noteFailure(rc, failure);
        end();
        throw failure;
    }
    end();
}

void Database::Transaction::rollback()
{
    if (!open_)
        return;
    if (!db_.storageFailure_)
        sqlite3_exec(db_.db_, ("ROLLBACK TO " + name_ + "; RELEASE " + name_).c_str(), nullptr, nullptr, nullptr);
    end();
}

} // namespace qi
