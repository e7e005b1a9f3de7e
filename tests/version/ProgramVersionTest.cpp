// The program's version: the line "--version" prints, from the project's version and
// the commit of the build; both programs print it on standard output and end with 0,
// without a window system and without touching a project.

#include "CliFixture.h"
#include "ProgramVersion.h"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <regex>
#include <string>

namespace qi::test {
namespace {

TEST(ProgramVersion, LineNamesTheVersionAndTheCommitOfTheBuild)
{
    EXPECT_EQ(versionLine("4.1.0", "219527d"), "QInventur 4.1.0 (git 219527d)");
    EXPECT_EQ(versionLine("4.1.0", "219527d-dirty"), "QInventur 4.1.0 (git 219527d-dirty)");
    EXPECT_EQ(versionLine("4.1.0", ""), "QInventur 4.1.0");
}

TEST(ProgramVersion, IsTheProjectsVersionWithTheCommitOfTheCheckout)
{
    EXPECT_EQ(programVersion(), QI_EXPECTED_VERSION);
    const std::string commit = kBuildCommit;
    if (std::filesystem::exists(std::string(QI_SOURCE_DIR) + "/.git")) {
        EXPECT_TRUE(std::regex_match(commit, std::regex("[0-9a-f]{7,40}(-dirty)?"))) << commit;
    }
    EXPECT_EQ(versionLine(), versionLine(QI_EXPECTED_VERSION, commit));
}

/// Unsets a variable of the environment for the lifetime of the object.
class WithoutVariable {
public:
    explicit WithoutVariable(const char* name) : name_(name)
    {
        if (const char* value = std::getenv(name))
            old_ = value;
        ::unsetenv(name);
    }
    ~WithoutVariable()
    {
        if (old_)
            ::setenv(name_, old_->c_str(), 1);
    }

private:
    const char* name_;
    std::optional<std::string> old_;
};

void expectVersion(const CliRun& r, const std::string& what)
{
    SCOPED_TRACE(what);
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.err, "");
    const std::regex line("QInventur " + std::regex_replace(std::string(QI_EXPECTED_VERSION), std::regex("\\."), "\\.") +
                          "( \\(git [0-9a-f]{7,40}(-dirty)?\\))?\n");
    EXPECT_TRUE(std::regex_match(r.out, line)) << r.out;
}

TEST(ProgramVersion, BothProgramsPrintItOnStandardOutputWithoutADisplay)
{
    const WithoutVariable platform("QT_QPA_PLATFORM"), display("DISPLAY"), wayland("WAYLAND_DISPLAY");
    const CliRun cli = runProgram(QI_CLI, {"--version"});
    expectVersion(cli, "qinventur-cli --version");
    const CliRun windows = runProgram(QI_PROGRAM_BINARY, {"--version"});
    expectVersion(windows, "QInventur --version");
    EXPECT_EQ(cli.out, windows.out);
}

TEST(ProgramVersion, CliPrintsItInsteadOfRunningACommand)
{
    // Without a project a command would end with 16; with --version it is not run.
    const CliRun r = runProgram(QI_CLI, {"--projekt", "/nonexistent/Projekt", "anlegen", "Lager", "--version"});
    expectVersion(r, "anlegen --version");
    EXPECT_FALSE(std::filesystem::exists("/nonexistent/Projekt"));
}

TEST(ProgramVersion, CliHelpNamesTheOption)
{
    const CliRun r = runProgram(QI_CLI, {"--help"});
    EXPECT_EQ(r.code, 0);
    EXPECT_NE(r.out.find("  qinventur-cli --version\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("  --version         die Version des Programms\n"), std::string::npos) << r.out;
}

} // namespace
} // namespace qi::test
