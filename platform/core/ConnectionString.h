#pragma once
// An ODBC connection string read as the driver manager reads it: attributes
// separated by ';', each a keyword, '=' and a value; blanks around keyword and
// value don't count; a value in braces may hold ';' and '=', and "}}" inside
// the braces stands for one '}'. A password in such a string is never shown:
// messages, logs and files get the string with its passwords masked or left out.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qi {

/// One attribute of a connection string.
struct ConnectionAttribute {
    std::string key;   ///< the keyword, without the blanks around it
    std::string value; ///< the value as the driver takes it: braces removed, "}}" as '}'
    bool hasValue = false;  ///< false for an attribute without '=' (the "ODBC" of "ODBC;DSN=...")
    std::size_t begin = 0;  ///< where the attribute's text begins in the string
    std::size_t end = 0;    ///< where it ends (its ';' or the end of the string)
    std::size_t valueBegin = 0; ///< where the value's text begins (after '=' and blanks; its braces included)
};

/// The attributes of a connection string, in their order.
std::vector<ConnectionAttribute> connectionAttributes(std::string_view connection);

/// Whether a keyword names a password ("PWD", "Password" and the like, in any letter case).
bool isPasswordKey(std::string_view key);

/// The connection string as written, with the value of every password attribute shown as "***"
/// (braces and all): "DSN=Quarn;PWD={a;b}" becomes "DSN=Quarn;PWD=***".
std::string maskedConnectionString(std::string_view connection);

/// The connection string without its password attributes (for telling one source from another).
std::string connectionStringWithoutPassword(std::string_view connection);

/// A text (a driver's message) in which every password of the connection string that is long enough
/// to be told from ordinary words (at least four characters) is shown as "***".
std::string withoutPasswordsOf(std::string_view connection, std::string text);

} // namespace qi
