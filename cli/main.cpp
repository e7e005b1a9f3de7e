// qinventur-cli: the orders of a Quarn project without windows.

#include "Cli.h"

#include "FileSystem.h"

#include <unistd.h>

#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    return qi::cli::run(arguments, qi::programFolder(), std::cout, std::cerr, ::isatty(STDERR_FILENO) != 0);
}
