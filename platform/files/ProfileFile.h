#pragma once
// Reading profile files ("Quarn.ini", "Projekt.ini") by the Windows profile rules:
// - a line "[Name]" opens a section; a line "key=value" belongs to the section above it;
// - section and key names are compared without regard to letter case; blanks and tabs
//   around a section name (inside the brackets), a key and a value are dropped;
// - the value is everything after the first "=" as it stands: commas, semicolons and
//   backslashes have no meaning; only one pair of matching quotes ('"' or '\'') that
//   encloses the whole value is removed ("\"a b\"" gives a b), as Windows does;
// - lines whose first non-blank character is ";" are comments; a line without "=" outside
//   a section header names no key;
// - the first section of a name counts, and in it the first key of a name;
// - a missing file, section or key yields the default;
// - the file may be UTF-8 (with or without byte-order mark) or in the ANSI code page
//   (Windows-1252); values are answered as UTF-8. Lines end in CR LF or LF.
// The program never writes profile files.

#include <string>

namespace qi {

/// The value of `key` in `section` of the profile file, or `defaultValue`.
std::string readProfileValue(const std::string& file, const std::string& section, const std::string& key,
                             const std::string& defaultValue);

/// The profile service of the host: profile values and file existence.
class ProfileService {
public:
    virtual ~ProfileService() = default;
    /// The value of `key` in `section` of `file` (a system path, backslashes allowed), or `defaultValue`.
    virtual std::string ReadProfileValue(const std::string& file, const std::string& section,
                                         const std::string& key, const std::string& defaultValue) const;
    /// True when `path` names an existing file.
    virtual bool FileExists(const std::string& path) const;
};

} // namespace qi
