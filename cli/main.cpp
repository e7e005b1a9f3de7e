// qinventur-cli: the orders of a Quarn project without windows.

#include "Cli.h"

#include "FileSystem.h"

#include <QString>
#include <QtGlobal>

#include <unistd.h>

#include <iostream>
#include <string>
#include <vector>

namespace {

/// Qt's own notes (the offscreen platform that lays out report pages tells of its setup)
/// are no messages of the program; only Qt's errors are told, in the program's form.
void qtMessage(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::cerr << "[Qt] " << text.toStdString() << '\n';
}

} // namespace

int main(int argc, char** argv)
{
    qInstallMessageHandler(qtMessage);
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    return qi::cli::run(arguments, qi::programFolder(), std::cout, std::cerr, ::isatty(STDERR_FILENO) != 0);
}
