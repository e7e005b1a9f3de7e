#pragma once
// A table that takes many rows at once: its indexes are set aside while the rows go in and
// are made anew from all of them afterwards, which costs a fraction of keeping every index
// up to date row by row. They come back under the same names with the same definitions.

#include "Database.h"

#include <optional>
#include <string>
#include <vector>

namespace qi {

/// Drops the indexes made by CREATE INDEX of `table` in the main database, or of every table
/// when `table` is empty (the keys stay), and returns the statements that made them, in the
/// order they were made: running them makes the same indexes anew.
std::vector<std::string> dropMadeIndexes(Database& db, const std::string& table = {});

/// While it lives, the indexes of `table` in the main database are set aside (those made by
/// CREATE INDEX; the key stays). `restore` makes them anew; the destructor does it when no
/// one did. Everything happens inside a nested transaction of its own: should the indexes
/// not be made anew, the rows written meanwhile go with it and the table is as it was, with
/// its indexes. The table is not to be read through an index meanwhile.
class IndexesSetAside {
public:
    IndexesSetAside(Database& db, const std::string& table);
    ~IndexesSetAside();
    IndexesSetAside(const IndexesSetAside&) = delete;
    IndexesSetAside& operator=(const IndexesSetAside&) = delete;
    /// Makes the indexes anew. DbError when they can't be made; the rows written since are undone then.
    void restore();

private:
    Database& db_;
    /// The statements that made the indexes, in the order they were made.
    std::vector<std::string> definitions_;
    std::optional<Database::Transaction> tx_;
};

} // namespace qi
