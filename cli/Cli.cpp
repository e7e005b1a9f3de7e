#include "Cli.h"

#include "CliSession.h"
#include "CommandLine.h"

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
        const CommandSpec* spec = nullptr;
        for (const std::string& a : arguments)
            if ((spec = findCommand(a)))
                break;
        if (spec)
            err << "Aufruf: qinventur-cli " << spec->synopsis << "\nHilfe: qinventur-cli " << spec->name << " --help\n";
        else
            err << "Hilfe: qinventur-cli --help\n";
        return kBadArguments;
    }
    if (inv.help) {
        const CommandSpec* spec = findCommand(inv.command);
        out << (spec ? commandHelp(*spec) : overallHelp());
        return kSuccess;
    }
    Session session(inv, programFolder, out, err, terminal);
    return session.run();
}

} // namespace qi::cli
