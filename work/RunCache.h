#pragma once
// A larger page cache for the order's connection while a long transaction works in it. An
// import or an evaluation changes pages all over the order's tables and indexes in one
// transaction: with the connection's everyday cache the engine writes changed pages out in
// the middle of it (the journal synced first), which costs time and holds the window still
// while it happens. The cache grows only as far as pages are used, and is set back after.


#include <cstdint>
#include <optional>
#include <string>

namespace qi {

class Database;

/// The cache of an evaluation run, which passes over the whole difference list several times:
/// the order of a thousand rooms stays in it whole; a larger order's pages go out to the file
/// and are read back, which costs little next to holding an order of 300 MB in memory.
inline constexpr std::int64_t kRunCacheKiB = 64 * 1024;
/// The cache of an import, which adds a file's lines to the scans and their indexes.
inline constexpr std::int64_t kImportCacheKiB = 64 * 1024;

class RunCache {
public:
    /// Sets the cache of the schema `schema` of `db` to `kib` KiB while the object lives
    /// (without a connection, null, nothing happens).
    RunCache(Database* db, std::int64_t kib, std::string schema = "main");
    ~RunCache();
    RunCache(const RunCache&) = delete;
    RunCache& operator=(const RunCache&) = delete;

private:
    Database* db_;
    std::string schema_;
    std::optional<std::int64_t> before_;
};

} // namespace qi
