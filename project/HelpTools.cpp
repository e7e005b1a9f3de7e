#include "HelpTools.h"

namespace qi {

bool WinHelpA(UserInteraction& ui, const std::string& helpFile, std::uint32_t wCommand, std::uint32_t /*dwData*/)
{
    if (wCommand != HELP_CONTENTS || helpFile.empty())
        return false;
    ui.showHelp(helpFile);
    return true;
}

} // namespace qi
