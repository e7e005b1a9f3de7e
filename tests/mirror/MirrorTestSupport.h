#pragma once
// Helpers of the mirror tests: the real Jet files beside the repository, running
// a command and reading its output, and a mirror cache of the test's own.

#include <string>

namespace qi::test {

/// The folder of the real Jet test files (shared/testdata/jet beside the repository).
std::string jetTestDataFolder();
/// Runs a shell command and answers what it printed on standard output; fails the test when it fails.
std::string successfulCommandOutput(const std::string& command);
/// A shell word for a text.
std::string shellWord(const std::string& text);

} // namespace qi::test
