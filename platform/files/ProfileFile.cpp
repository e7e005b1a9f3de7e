#include "ProfileFile.h"

#include "FileSystem.h"
#include "JetCollation.h"
#include "TextFile.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <string_view>

namespace qi {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f'; }

std::string_view trim(std::string_view s)
{
    while (!s.empty() && isBlank(s.front()))
        s.remove_prefix(1);
    while (!s.empty() && isBlank(s.back()))
        s.remove_suffix(1);
    return s;
}

/// Names compared as Windows does: letter case ignored (both are trimmed already).
bool sameName(std::string_view a, std::string_view b) { return jetEqual(a, b); }

/// The file's text as UTF-8; nothing when it can't be read.
bool readText(const std::string& file, std::string& text)
{
    if (!fileExists(file))
        return false;
    std::ifstream in(nativePath(file), std::ios::binary);
    if (!in)
        return false;
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (bytes.rfind("\xEF\xBB\xBF", 0) == 0)
        bytes.erase(0, 3);
    text = isUtf8(bytes) ? std::move(bytes) : fromWindows1252(bytes);
    return true;
}

std::string_view stripQuotes(std::string_view v)
{
    if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') && v.back() == v.front())
        return v.substr(1, v.size() - 2);
    return v;
}

} // namespace

std::string readProfileValue(const std::string& file, const std::string& section, const std::string& key,
                             const std::string& defaultValue)
{
    std::string text;
    if (!readText(file, text))
        return defaultValue;
    const std::string_view wantedSection = trim(section);
    const std::string_view wantedKey = trim(key);
    bool sectionSeen = false; // the first section of the name was entered
    bool inSection = false;
    std::istringstream lines(text);
    std::string raw;
    while (std::getline(lines, raw)) {
        const std::string_view line = trim(raw);
        if (line.empty() || line.front() == ';')
            continue;
        if (line.front() == '[') {
            const auto close = line.rfind(']');
            if (close == std::string_view::npos)
                continue; // not a section header
            if (inSection)
                break; // only the first section of the name counts
            inSection = !sectionSeen && sameName(trim(line.substr(1, close - 1)), wantedSection);
            sectionSeen = sectionSeen || inSection;
            continue;
        }
        if (!inSection)
            continue;
        const auto eq = line.find('=');
        if (eq == std::string_view::npos)
            continue;
        if (sameName(trim(line.substr(0, eq)), wantedKey))
            return std::string(stripQuotes(trim(line.substr(eq + 1))));
    }
    return defaultValue;
}

std::string ProfileService::ReadProfileValue(const std::string& file, const std::string& section,
                                             const std::string& key, const std::string& defaultValue) const
{
    return readProfileValue(file, section, key, defaultValue);
}

bool ProfileService::FileExists(const std::string& path) const { return fileExists(path); }

} // namespace qi
