#include "Cli.h"

#include "CliSession.h"
#include "CommandLine.h"
#include "ProgramVersion.h"

#include <ostream>

namespace qi::cli {

int run(const std::vector<std::string>& arguments, const std::string& programFolder, std::ostream& out,
        std::ostream& err, bool terminal)
{
    Invocation inv;
    try {
        inv = parseCommandLine(arguments);
    } catch (const UsageError& e) {
        err << "[qinventur-cli] " << e.what() << '\n';
        const CommandInfo* known = nullptr;
        for (const std::string& a : arguments)
            if ((known = findCommand(a)))
                break;
        if (known)
            err << "Aufruf: qinventur-cli " << known->synopsis << "\nHilfe: qinventur-cli " << known->name << " --help\n";
        else
            err << "Hilfe: qinventur-cli --help\n";
        return kBadArguments;
    }
    if (inv.version && !inv.help) {
        out << versionLine() << '\n';
        return kSuccess;
    }
    if (inv.help) {
        const CommandInfo* known = findCommand(inv.command);
        out << (known ? commandHelp(*known) : overallHelp());
        return kSuccess;
    }
    Session session(inv, programFolder, out, err, terminal);
    return session.run();
}

} // namespace qi::cli
