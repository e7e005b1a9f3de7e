#include "ProgramVersion.h"

namespace qi {

std::string programVersion() { return QI_PROJECT_VERSION; }

std::string versionLine(const std::string& version, const std::string& commit)
{
    std::string line = "QInventur " + version;
    if (!commit.empty())
        line += " (git " + commit + ")";
    return line;
}

std::string versionLine() { return versionLine(programVersion(), kBuildCommit); }

} // namespace qi
