#pragma once
// A table opened as a whole, the way the record classes of the order databases
// use it: seek on the key ("PrimaryKey"), walk all rows in key order, begin a
// new row whose AutoNumber key is readable at once, edit, update and delete.

#include "Database.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace qi {

class TableRecordset {
public:
    /// Opens the table; DbError 3078 when the database has no such table.
    TableRecordset(Database& db, std::string_view table);
    /// A row still pending is abandoned; its key stays consumed.
    ~TableRecordset();
    TableRecordset(const TableRecordset&) = delete;
    TableRecordset& operator=(const TableRecordset&) = delete;

    /// Chooses the index for Seek; only "PrimaryKey" (the AutoNumber key) exists.
    void setIndex(std::string_view name);
    /// Seek "=" on the key; true when found (the row becomes current), false is NoMatch.
    bool seek(std::int64_t key);
    bool noMatch() const { return noMatch_; }

    /// Rows of the table.
    std::size_t recordCount();
    /// Walks the rows in key order, one at a time (the table is not read into memory).
    bool moveFirst(); ///< false on an empty table
    void moveNext();
    bool eof() const { return !onRow_; }

    /// Begins a new row filled with the column defaults; returns its AutoNumber key,
    /// which is consumed even if the row is abandoned.
    std::int64_t addNew();
    /// Begins changing the current row.
    void edit();
    /// Stores the pending new or changed row. A unique index refusing it raises DbError 3022
    /// and leaves the row pending; the table is then unchanged.
    void update();
    /// Abandons a pending row.
    void cancelUpdate();
    /// Deletes the current row.
    void remove();

    /// Field of the current (or pending) row by column name, letter case ignored.
    const Value& field(std::string_view column) const;
    /// Field of the current (or pending) row by column position.
    const Value& field(int position) const;
    /// Sets a field of the pending row; 16-bit columns check their range.
    void setField(std::string_view column, Value value);
    /// Sets a field of the pending row by column position.
    void setField(int position, Value value);
    /// Position of a column, letter case ignored; DbError 3265 when the table has none of that name.
    int columnIndex(std::string_view column) const;

    const TableInfo& info() const { return info_; }

private:
    enum class Mode { None, Add, Edit };
    /// Gives up a pending new row; its key stays consumed.
    void abandonNew();
    /// Makes the walk's row the current row.
    void takeWalkRow();

    Database& db_;
    const TableInfo& info_;
    std::vector<Value> current_;
    bool hasCurrent_ = false;
    bool noMatch_ = false;
    Mode mode_ = Mode::None;
    std::unique_ptr<Statement> walk_;
    bool onRow_ = false;
};

} // namespace qi
