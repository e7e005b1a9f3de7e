#pragma once
// A table or column name written into an SQLite statement: in double quotes, a quote
// inside doubled, so that any name (blanks, umlauts, SQL words, quotes) stays one name.

#include <string>

namespace qi {

inline std::string sqlName(const std::string& name)
{
    std::string r = "\"";
    for (char c : name) {
        if (c == '"')
            r += '"';
        r += c;
    }
    return r + "\"";
}

} // namespace qi
