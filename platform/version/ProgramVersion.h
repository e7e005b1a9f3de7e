#pragma once
// The version of the program, as "--version" prints it and the About box shows it.

#include <string>

namespace qi {

/// The commit the program was built from ("219527d", or "219527d-dirty" when the
/// checkout had changes); empty when it was not built from a git checkout.
extern const char* const kBuildCommit;

/// The version of the program: "4.1.0".
std::string programVersion();

/// "QInventur 4.1.0 (git 219527d)"; without a commit "QInventur 4.1.0".
std::string versionLine(const std::string& version, const std::string& commit);
/// The version line of this build.
std::string versionLine();

} // namespace qi
