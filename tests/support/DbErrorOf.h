#pragma once
// What a read raises: the number and description of its DbError.

#include "DbError.h"

#include <string>
#include <utility>

namespace qi::test {

/// The number and description of the DbError that `read` raises; {0, ""} when none.
template <class Read>
std::pair<int, std::string> errorOf(Read&& read)
{
    try {
        read();
    } catch (const DbError& e) {
        return {e.number(), e.description()};
    }
    return {0, ""};
}

} // namespace qi::test
