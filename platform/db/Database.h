#pragma once
// The thin data-access layer over SQLite that takes the place of the Jet engine:
// a database file, statements with bound values, materialised query results,
// table recordsets (see TableRecordset.h) and a transaction guard.

#include "DbError.h"
#include "Value.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace qi {

class Database;

/// A prepared statement, owned and reused by its Database.
class Statement {
public:
    Statement(Database& db, sqlite3_stmt* stmt);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    /// Resets the statement and binds the values to ?1, ?2, ...
    void bindAll(const std::vector<Value>& params);
    void bind(int index, const Value& v);
    /// Binds the value of column `column` of the current row of `source` (a statement of any
    /// connection) as it is, without making a Value of it: for copying rows between databases.
    void bindColumn(int index, const Statement& source, int column);
    /// Binds a text without making a Value of it.
    void bindText(int index, std::string_view text);
    /// Steps once; true while a row is there. Errors throw DbError.
    bool step();
    void reset();
    int columnCount() const;
    std::string columnName(int i) const;
    Value column(int i) const;
    /// Text of a column of the current row without copying; valid until the next step or reset.
    std::string_view columnText(int i) const;
    /// Whole number of a column of the current row.
    std::int64_t columnInt(int i) const;

private:
    Database& db_;
    sqlite3_stmt* stmt_;
};

/// Result of a query, read completely: column names and rows, with a cursor.
class Recordset {
public:
    Recordset() = default;
    Recordset(std::vector<std::string> names, std::vector<std::vector<Value>> rows);

    /// Rows in the result.
    std::size_t size() const { return rows_.size(); }
    bool empty() const { return rows_.empty(); }
    bool eof() const { return pos_ >= rows_.size(); }
    void moveFirst() { pos_ = 0; }
    void moveNext() { if (pos_ < rows_.size()) ++pos_; }
    /// Field of the current row by column name (any letter case); DbError 3265 if unknown, 3021 at EOF.
    const Value& field(std::string_view name) const;
    /// Field of the current row by column position.
    const Value& field(std::size_t column) const;
    const std::vector<std::string>& columnNames() const { return names_; }
    const std::vector<std::vector<Value>>& rows() const { return rows_; }

private:
    std::size_t columnIndex(std::string_view name) const;
    std::vector<std::string> names_;
    std::vector<std::vector<Value>> rows_;
    std::size_t pos_ = 0;
};

/// Column description of a table, as the table recordsets need it.
struct ColumnInfo {
    std::string name;
    std::string declaredType;
    Value defaultValue;
    bool isKey = false;
    bool isInteger16 = false;
    /// The most characters a text column holds: the size its type names ("TEXT(50)"), or
    /// Jet's text default of 255; 0 for a column that is no text. See Database::limitsText.
    std::size_t textSize = 0;
};

/// Orders names (of tables and columns) with ASCII letter case ignored; looks them up
/// without making a string.
struct NameLess {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const;
};

/// True when two names are equal with ASCII letter case ignored.
bool sameName(std::string_view a, std::string_view b);

struct TableInfo {
    std::string name; ///< as spelled in the schema
    std::vector<ColumnInfo> columns;
    int keyColumn = -1;
    /// Column position by name, letter case ignored; -1 if unknown.
    int column(std::string_view name) const;
    /// The statements a table recordset runs, made once per table.
    std::string selectByKeySql, insertSql, updateSql, deleteSql;
    /// Column positions of fixed lists of column names (a record's field lists), found
    /// once per table and kept under the list's address (lists live as long as the program).
    mutable std::unordered_map<const void*, std::vector<int>> listPositions;
};

/// One open database file.
class Database {
public:
    /// Opens an existing file; nothing is created. Refused with DbError: a missing file (3024), an
    /// empty file, a file that is no database or is shorter than its own header says (3343), a file
    /// another program keeps locked (3260).
    static std::unique_ptr<Database> open(const std::string& path, bool readOnly = false);
    /// Creates a new, empty file (an existing file is replaced).
    static std::unique_ptr<Database> create(const std::string& path);
    /// A new, empty database that lives in memory only.
    static std::unique_ptr<Database> inMemory();
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    const std::string& path() const { return path_; }
    bool readOnly() const { return readOnly_; }
    /// Whether text written through a table recordset holds at most its field's size
    /// (ColumnInfo::textSize), as Jet's text fields do; off unless asked for.
    bool limitsText() const { return limitsText_; }
    void setLimitsText(bool on) { limitsText_ = on; }

    /// Runs an action statement with bound values; returns the number of rows changed.
    std::int64_t execute(std::string_view sql, const std::vector<Value>& params = {});
    /// Runs several statements without values (schema scripts).
    void executeScript(std::string_view sql);
    /// Runs a query and reads its whole result.
    Recordset query(std::string_view sql, const std::vector<Value>& params = {});
    /// First column of the first row, or Null.
    Value scalar(std::string_view sql, const std::vector<Value>& params = {});
    /// The cached prepared statement for this text.
    Statement& prepare(std::string_view sql);
    /// A prepared statement of the caller's own, outside the cache: for a walk that stays
    /// open while other statements run.
    std::unique_ptr<Statement> prepareOwn(std::string_view sql);

    /// Whether a table (or view) of that name exists, letter case ignored.
    bool tableExists(std::string_view name, std::string_view schema = "main");
    /// Table description; DbError 3078 when there is no such table.
    const TableInfo& tableInfo(std::string_view name);

    /// Key value that the next AddNew of `table` gets; the number is consumed at once.
    std::int64_t reserveAutoNumber(const TableInfo& table);
    /// Marks a reserved key as used although its row was abandoned, so that it is never handed out again.
    void consumeAutoNumber(const TableInfo& table, std::int64_t key);

    /// Builds the DbError for an SQLite result code on this connection.
    DbError errorFor(int rc, std::string_view sql = {}) const;

    /// Attaches the database file `path` under the schema name `alias`, only for reading (the file
    /// is never written through it, not even to put back a change that was cut off), for
    /// statements that read it set-based. Only on a database in memory (DbError otherwise);
    /// not inside a transaction. DbError when the file can't be attached.
    void attachReadOnly(const std::string& path, const std::string& alias);
    /// Detaches a schema attached with attachReadOnly.
    void detach(const std::string& alias);

    /// Gives the memory of cache pages the connection no longer holds back to the system, after
    /// a run that used a larger cache (see RunCache): without it the process keeps the run's
    /// peak for as long as it lives, under whatever it reads next (a report's rows).
    void releaseMemory();

    /// Writes a copy of the database to `path` (a file there is replaced), taken from one
    /// consistent state of the file, also while another program changes it. DbError on failure;
    /// a copy that was begun is removed then.
    void copyTo(const std::string& path);

    /// True once the file could not be written inside a transaction (a full disk, a disk or
    /// network error): the transaction was rolled back as a whole at once, and every change is
    /// refused with the same error until the outermost transaction guard has ended. The work of
    /// the guards is lost; the file stays as it was before them.
    bool storageFailed() const { return storageFailure_.has_value(); }

    sqlite3* handle() { return db_; }

    /// RAII transaction (a savepoint, so guards nest): rolled back unless committed. A commit that
    /// fails rolls the whole transaction back and throws: nothing of it stays half-written.
    class Transaction {
    public:
        explicit Transaction(Database& db);
        ~Transaction();
        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;
        void commit();
        void rollback();

    private:
        /// The guard has ended; the last one to end forgets a failure of the disk.
        void end();
        Database& db_;
        std::string name_;
        bool open_ = true;
    };

    /// While it lives, a statement of the connection that runs long calls `turn` about every
    /// `interval`, so that the windows go on painting and their timers run while the engine
    /// works. `turn` must not use the connection (nor take input that could). Guards nest:
    /// the outermost one turns. Without a connection (null) the guard does nothing.
    class Turning {
    public:
        Turning(Database* db, std::function<void()> turn,
                std::chrono::milliseconds interval = std::chrono::milliseconds(50));
        ~Turning();
        Turning(const Turning&) = delete;
        Turning& operator=(const Turning&) = delete;

    private:
        static int onProgress(void* self);
        Database* db_;
        std::function<void()> turn_;
        std::chrono::steady_clock::duration interval_;
        std::chrono::steady_clock::time_point last_;
        bool installed_ = false;
    };

private:
    friend class Statement;
    Database(sqlite3* db, std::string path, bool readOnly);
    /// After a failed step: a failure of the disk inside a transaction rolls the transaction back.
    void noteFailure(int rc, const DbError& error);
    /// Raises the disk's failure when a change is asked for after it.
    void refuseAfterStorageFailure() const;
    /// Refuses a file that is shorter than its own header says.
    void checkComplete();
    sqlite3* db_;
    std::string path_;
    bool readOnly_;
    bool limitsText_ = false;
    int savepointCounter_ = 0;
    /// Transaction guards open on this connection.
    int transactionDepth_ = 0;
    std::optional<DbError> storageFailure_;
    /// Hashes a statement's text without copying it.
    struct TextHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
    };
    std::unordered_map<std::string, std::unique_ptr<Statement>, TextHash, std::equal_to<>> statements_;
    std::map<std::string, TableInfo, NameLess> tables_;
    /// Per table: the last AutoNumber handed out on this connection, and when it may be
    /// trusted without reading the table (see reserveAutoNumber).
    struct KeyState {
        std::int64_t last = 0;
        std::int64_t epoch = -1;   ///< transaction in which `changes` was noted
        std::int64_t changes = -1; ///< the connection's change count expected after the row is stored
    };
    std::map<std::string, KeyState, NameLess> keys_;
    /// Counts the ends of transactions (commit and rollback hooks).
    std::int64_t epoch_ = 0;
    /// The guard whose `turn` the engine calls during long statements, if any.
    Turning* turning_ = nullptr;
};

} // namespace qi
