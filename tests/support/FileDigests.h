#pragma once
// What a test uses to show that no file outside the expected ones changed: a digest of
// the bytes of every file below a folder, and the difference of two such snapshots.

#include <map>
#include <set>
#include <string>

namespace qi::test {

/// Every file below a folder, by its path relative to the folder, with a digest of its bytes.
using FileDigests = std::map<std::string, std::string>;

/// Reads every file below `folder` (no database of it may be open in this process: closing a
/// file drops the engine's locks on it).
FileDigests digestFiles(const std::string& folder);

/// The files that differ between two snapshots, one per line ("geändert: a", "neu: b",
/// "weg: c"), leaving out the relative paths in `expected`; empty when no other file changed.
std::string changedFiles(const FileDigests& before, const FileDigests& after,
                         const std::set<std::string>& expected = {});

} // namespace qi::test
