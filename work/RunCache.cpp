#include "RunCache.h"

#include "Database.h"
#include "SqlName.h"

namespace qi {

RunCache::RunCache(Database* db, std::int64_t kib, std::string schema) : db_(db), schema_(std::move(schema))
{
    if (!db_)
        return;
    try {
        before_ = toLong(db_->scalar("PRAGMA " + sqlName(schema_) + ".cache_size"));
        db_->executeScript("PRAGMA " + sqlName(schema_) + ".cache_size = " + std::to_string(-kib));
    } catch (const std::exception&) {
        // The work goes on with the cache it has; only its speed depends on it.
        before_.reset();
    }
}

RunCache::~RunCache()
{
    try {
        if (before_) {
            db_->executeScript("PRAGMA " + sqlName(schema_) + ".cache_size = " + std::to_string(*before_));
            db_->releaseMemory();
        }
    } catch (...) {
        // The larger cache stays with the connection; nothing else depends on it.
    }
}

} // namespace qi
