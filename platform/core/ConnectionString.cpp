#include "ConnectionString.h"

#include <algorithm>
#include <cctype>

namespace qi {

namespace {

constexpr const char* kMask = "***";
/// Shorter passwords are not looked for inside other texts: they would hide ordinary words.
constexpr std::size_t kShortestSearchedPassword = 4;

bool isBlank(char c) { return c == ' ' || c == '\t'; }

std::string trimmed(std::string_view s)
{
    std::size_t b = 0, e = s.size();
    while (b < e && isBlank(s[b]))
        ++b;
    while (e > b && isBlank(s[e - 1]))
        --e;
    return std::string(s.substr(b, e - b));
}

std::string upper(std::string_view s)
{
    std::string r(s);
    std::transform(r.begin(), r.end(), r.begin(), [](unsigned char c) { return char(std::toupper(c)); });
    return r;
}

void replaceAll(std::string& text, const std::string& what)
{
    if (what.empty())
        return;
    for (std::size_t p = text.find(what); p != std::string::npos; p = text.find(what, p + 3))
        text.replace(p, what.size(), kMask);
}

} // namespace

std::vector<ConnectionAttribute> connectionAttributes(std::string_view connection)
{
    std::vector<ConnectionAttribute> attributes;
    const std::size_t n = connection.size();
    std::size_t pos = 0;
    while (pos < n) {
        ConnectionAttribute a;
        a.begin = pos;
        std::size_t i = pos;
        while (i < n && connection[i] != '=' && connection[i] != ';')
            ++i;
        a.key = trimmed(connection.substr(pos, i - pos));
        if (i == n || connection[i] == ';') {
            a.end = i;
            a.valueBegin = i;
        } else {
            a.hasValue = true;
            std::size_t v = i + 1;
            while (v < n && isBlank(connection[v]))
                ++v;
            a.valueBegin = v;
            if (v < n && connection[v] == '{') {
                // Braces: everything up to the closing brace is the value, ';' and '=' included.
                std::size_t j = v + 1;
                while (j < n) {
                    if (connection[j] == '}') {
                        if (j + 1 < n && connection[j + 1] == '}') {
                            a.value += '}';
                            j += 2;
                            continue;
                        }
                        ++j;
                        break;
                    }
                    a.value += connection[j++];
                }
                // What stands between the closing brace and the next ';' still belongs to the attribute.
                while (j < n && connection[j] != ';')
                    ++j;
                a.end = j;
            } else {
                std::size_t j = v;
                while (j < n && connection[j] != ';')
                    ++j;
                a.end = j;
                a.value = trimmed(connection.substr(v, j - v));
            }
        }
        attributes.push_back(std::move(a));
        pos = attributes.back().end + 1;
    }
    return attributes;
}

bool isPasswordKey(std::string_view key)
{
    const std::string k = upper(trimmed(key));
    return k.find("PWD") != std::string::npos || k.find("PASSWORD") != std::string::npos ||
           k.find("PASSWD") != std::string::npos;
}

std::string maskedConnectionString(std::string_view connection)
{
    std::string shown;
    std::size_t copied = 0;
    for (const ConnectionAttribute& a : connectionAttributes(connection)) {
        if (!a.hasValue || !isPasswordKey(a.key))
            continue;
        // Blanks after the value stay as written; the value itself, braces and all, becomes the mask.
        std::size_t valueEnd = a.end;
        while (valueEnd > a.valueBegin && isBlank(connection[valueEnd - 1]))
            --valueEnd;
        shown.append(connection.substr(copied, a.valueBegin - copied));
        shown += kMask;
        copied = valueEnd;
    }
    shown.append(connection.substr(copied));
    return shown;
}

std::string connectionStringWithoutPassword(std::string_view connection)
{
    std::string kept;
    for (const ConnectionAttribute& a : connectionAttributes(connection)) {
        if (a.hasValue && isPasswordKey(a.key))
            continue;
        if (!kept.empty())
            kept += ';';
        kept.append(connection.substr(a.begin, a.end - a.begin));
    }
    return kept;
}

std::string withoutPasswordsOf(std::string_view connection, std::string text)
{
    std::vector<std::string> secrets;
    for (const ConnectionAttribute& a : connectionAttributes(connection)) {
        if (!a.hasValue || !isPasswordKey(a.key))
            continue;
        secrets.push_back(a.value);
        secrets.push_back(trimmed(connection.substr(a.valueBegin, a.end - a.valueBegin)));
    }
    // The longer first, so that a password holding another is masked whole.
    std::sort(secrets.begin(), secrets.end(),
              [](const std::string& x, const std::string& y) { return x.size() > y.size(); });
    for (const std::string& s : secrets)
        if (s.size() >= kShortestSearchedPassword)
            replaceAll(text, s);
    return text;
}

} // namespace qi
