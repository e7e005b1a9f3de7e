#pragma once
// Writes a local mirror of Quarn's tables: a new SQLite file whose text columns
// compare as Jet compares text and whose columns that the system joins on are
// indexed. Rows go in through one prepared insert per table, all in one
// transaction; a writer that is not finished leaves no usable file behind.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace qi {

/// How a column's values are kept in the mirror.
enum class MirrorType {
    Text,    ///< Text and Memo: text under the Jet comparison
    Integer, ///< Byte, Integer, Long, Boolean (-1 for True)
    Real,    ///< Single, Double, Currency
    Date,    ///< Date/time as "YYYY-MM-DD HH:MM:SS"
    Blob,    ///< OLE objects and binary data
};

struct MirrorColumn {
    std::string name;
    MirrorType type = MirrorType::Text;
};

class MirrorWriter {
public:
    /// Creates the file at `path`, readable by its user alone (an existing file is replaced). Throws
    /// DbError when that fails.
    explicit MirrorWriter(const std::string& path);
    ~MirrorWriter();
    MirrorWriter(const MirrorWriter&) = delete;
    MirrorWriter& operator=(const MirrorWriter&) = delete;

    /// Makes an SQLite file readable under `alias`, read-only, for copyRows; only before the first table.
    void attachReadOnly(const std::string& path, const std::string& alias);
    /// Starts a table of that name and columns (a table of the name must not exist yet).
    void beginTable(const std::string& name, const std::vector<MirrorColumn>& columns);
    /// Values of the row being built, by column position; a column not set is Null.
    void setNull(int column);
    void setInteger(int column, std::int64_t value);
    void setReal(int column, double value);
    void setText(int column, std::string_view value);
    void setBlob(int column, const void* data, std::size_t size);
    /// Stores the row and starts the next one.
    void insertRow();
    /// Copies every row of `alias`.`table` (an attached file's table with the same columns, in order).
    void copyRows(const std::string& alias, const std::string& table);
    /// Ends the table and makes the indexes of the columns that the system joins on.
    void endTable();
    /// Rows stored in the current (or last) table.
    std::int64_t rowCount() const { return rows_; }

    /// Notes the source's identity, commits and closes the file.
    void finish(const std::string& identity);

    /// The identity that the finished mirror at `path` notes; empty when there is no such file or it is
    /// no finished mirror.
    static std::string identityOf(const std::string& path);

private:
    /// The failure behind an engine result, in German words.
    std::string failure(int rc) const;
    void check(int rc);
    void exec(const std::string& sql);
    std::string path_;
    sqlite3* db_ = nullptr;
    bool inTransaction_ = false;
    sqlite3_stmt* insert_ = nullptr;
    std::string table_;
    std::vector<MirrorColumn> columns_;
    std::int64_t rows_ = 0;
};

} // namespace qi
