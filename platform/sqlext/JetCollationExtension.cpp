// The Jet text comparison as a loadable SQLite extension, so that the sqlite3
// shell and other SQLite tools can query our databases, whose text columns
// declare it:  .load <program folder>/QInventurJet
// The comparison itself is the program's own (JetCollation.cpp).

#include "JetCollation.h"

#include <sqlite3ext.h>
SQLITE_EXTENSION_INIT1

namespace {

int compare(void*, int lenA, const void* a, int lenB, const void* b)
{
    return qi::jetCompare(std::string_view(static_cast<const char*>(a), std::size_t(lenA)),
                          std::string_view(static_cast<const char*>(b), std::size_t(lenB)));
}

} // namespace

extern "C" __attribute__((visibility("default"))) int sqlite3_qinventurjet_init(sqlite3* db, char** /*error*/,
                                                                                const sqlite3_api_routines* api)
{
    SQLITE_EXTENSION_INIT2(api);
    return sqlite3_create_collation_v2(db, qi::kJetCollation, SQLITE_UTF8, nullptr, compare, nullptr);
}
