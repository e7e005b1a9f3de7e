#pragma once
// The command line of qinventur-cli: its commands with the arguments and options each
// takes, and the parsing of one invocation. Options may stand before or after the
// command, as "--name value" or "--name=value"; "--" ends the options.

#include "ExitCodes.h"

#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace qi::cli {

/// One command: what it takes, and its help.
struct CommandInfo {
    std::string_view name;
    std::string_view synopsis;    ///< what follows the program name, e.g. "loeschen NAME"
    std::string_view summary;     ///< one line for the overview
    std::string_view description; ///< the help text's body (lines end in "\n")
    int minArgs = 0;
    int maxArgs = 0; ///< -1: any number
    std::vector<std::string_view> valueOptions; ///< options with a value, e.g. "--ausgabe"
    std::vector<std::string_view> flags;        ///< options without a value, e.g. "--setzen"
    std::vector<ExitCode> exitCodes;            ///< the codes the command may end with
    std::vector<std::string_view> examples;     ///< whole command lines
};

/// Every command, in the order of the overview.
const std::vector<CommandInfo>& commands();
/// The command of that name, or null.
const CommandInfo* findCommand(std::string_view name);

/// One invocation, parsed.
struct Invocation {
    std::string command;                        ///< empty when none was given
    std::vector<std::string> args;              ///< the command's arguments
    std::map<std::string, std::string> options; ///< value options by name ("--ausgabe")
    std::set<std::string> flags;                ///< flags given ("--setzen")
    std::string projekt;                        ///< --projekt, empty when not given
    bool help = false;                          ///< --help or -h, or the command "hilfe"
    bool version = false;                       ///< --version (the command, if any, is not run)

    bool has(const std::string& flag) const { return flags.count(flag) > 0; }
    /// The value of an option, or `fallback`.
    std::string option(const std::string& name, const std::string& fallback = {}) const;
};

/// A command line that can't be run; the text says why (German).
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Parses the arguments after the program name. UsageError for an unknown command or option,
/// a missing value, or the wrong number of arguments (not checked when help is asked for).
Invocation parseCommandLine(const std::vector<std::string>& arguments);

/// The overall help: what the program does, its commands, exit codes and examples.
std::string overallHelp();
/// The help of one command: its call, what it does, its options, exit codes and examples.
std::string commandHelp(const CommandInfo& command);

} // namespace qi::cli
