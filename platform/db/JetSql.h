#pragma once
// A statement of the system in two forms: the Jet text it was designed with,
// kept verbatim as the reference (a value joined in is shown as " + name + "),
// and the SQLite text that is actually run, with the same effect and every
// value bound as a parameter (?1, ?2, ...).

#include <string_view>

namespace qi {

struct JetSql {
    std::string_view jet;
    std::string_view sqlite;
};

} // namespace qi
