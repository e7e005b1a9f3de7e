#pragma once
// qinventur-cli: the work on a project's orders without windows. It starts up as the
// main window does (the program folder's "Quarn.ini" names the project, or
// --projekt), then runs one command over the same logic the windows call: the
// orders (project/Orders.h), the room selection (frmRaum), the data file list, the
// evaluation, the reports and the archive (frmWork).

#include <iosfwd>
#include <string>
#include <vector>

namespace qi::cli {

/// Runs the command line `arguments` (those after the program name) for the program folder
/// `programFolder` (where "Quarn.ini", the template folder and the report database lie).
/// Lists go to `out`, messages to `err`; `terminal` says whether `err` is a terminal (then
/// long runs show a progress line). Returns the exit code (ExitCodes.h).
int run(const std::vector<std::string>& arguments, const std::string& programFolder, std::ostream& out,
        std::ostream& err, bool terminal);

} // namespace qi::cli
