#include "bGeneral.h"

#include "Value.h"

#include <cstdlib>
#include <vector>

namespace qi {

namespace {

/// 0-based positions of the separator's hits, each search starting one past the previous hit.
std::vector<std::size_t> hits(const std::string& text, const std::string& separator)
{
    std::vector<std::size_t> out;
    if (separator.empty())
        return out;
    std::size_t from = 0;
    for (;;) {
        const std::size_t p = text.find(separator, from);
        if (p == std::string::npos)
            break;
        out.push_back(p);
        checkedInt16(std::int64_t(out.size()) + 1);
        from = p + 1;
    }
    return out;
}

} // namespace

std::int16_t FieldCount(const std::string& text, const std::string& separator)
{
    if (text.empty())
        return 0;
    return checkedInt16(std::int64_t(hits(text, separator).size()) + 1);
}

std::string GetField(const std::string& text, const std::string& separator, std::int16_t n)
{
    if (text.empty() || n == 0)
        return {};
    const std::vector<std::size_t> h = hits(text, separator);
    const int count = int(h.size()) + 1;
    int index = n; // 1-based field number
    if (n < 0) {
        if (-int(n) > count)
            return {};
        index = count + int(n) + 1;
    } else if (n > count) {
        return {};
    }
    const std::size_t start = index == 1 ? 0 : h[std::size_t(index - 2)] + separator.size();
    const std::size_t end = index == count ? text.size() : h[std::size_t(index - 1)];
    if (start >= text.size() || end <= start)
        return {};
    return text.substr(start, end - start);
}

} // namespace qi
