#pragma once
// qinventur-cli as a process on a generated project: a program folder of its own
// (the program, the template folder, the report database, "Quarn.ini" naming the
// demo project beside it) and the demo installation with its scanner files. Each
// run starts the program with arguments and collects its exit code, its standard
// output and its standard error.

#include "DemoInstallation.h"
#include "TestSupport.h"

#include "Database.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace qi::test {

/// What one run of the program left.
struct CliRun {
    int code = -1;   ///< exit code (-1: did not exit normally)
    std::string out; ///< standard output
    std::string err; ///< standard error
};

/// The fields of a line split at `separator`; a separator at the end gives an empty last field.
std::vector<std::string> splitFields(const std::string& text, char separator);
/// The lines of a text, without their line ends (CR LF or LF).
std::vector<std::string> linesOf(const std::string& text);

/// Runs `program` with `args`, standard output and error to files (not a terminal).
CliRun runProgram(const std::string& program, const std::vector<std::string>& args);
/// Runs `program` with `args` on a pseudo-terminal (standard output and error both): its output.
std::string runOnTerminal(const std::string& program, const std::vector<std::string>& args, int& code);

class CliFixture : public ::testing::Test {
protected:
    void SetUp() override;

    /// Runs qinventur-cli of the program folder.
    CliRun cli(const std::vector<std::string>& args);
    /// Runs it and expects the exit code, with its output in the failure message.
    CliRun expectCli(int code, const std::vector<std::string>& args);

    /// An order of the demo's ground-floor rooms with both ground-floor files added
    /// (the conflict within the first file kept, the one across the files taken over).
    void prepareOrder(const std::string& name);

    /// The order's database file.
    std::string orderFile(const std::string& name) const;
    /// A database file of the project, opened read-only by the test.
    std::unique_ptr<Database> read(const std::string& file) const;
    /// One number from a statement on a database file.
    std::int64_t count(const std::string& file, const std::string& sql) const;
    /// The demo's scanner file.
    std::string scanFile(const std::string& name) const { return demoDir + "/" + name; }
    /// The room numbers of the demo's order (the ground floor), in room-number order.
    std::vector<std::string> orderRooms() const;
    /// The orders' names in the register.
    std::vector<std::string> registeredOrders() const;

    TempDir root;
    std::string programDir; ///< without trailing separator
    std::string program;    ///< the program in it
    std::string demoDir;    ///< the project, without trailing separator
    demo::Installation inst;
};

} // namespace qi::test
