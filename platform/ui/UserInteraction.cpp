#include "UserInteraction.h"

namespace qi {

void UserInteraction::showError(const std::string& label, const std::string& description)
{
    messageBox(label + "\r\n" + description, MsgButtons::Ok, MsgIcon::Critical, kProgramName);
}

bool UserInteraction::askYesNo(const std::string& text, const std::string& title, MsgIcon icon)
{
    return messageBox(text, MsgButtons::YesNo, icon, title) == MsgResult::Yes;
}

std::optional<int> UserInteraction::askChoice(const std::string&, const std::string&, MsgIcon,
                                              const std::vector<std::string>&)
{
    return std::nullopt;
}

std::optional<std::string> UserInteraction::chooseFolder(const std::string&, const std::string&) { return std::nullopt; }

} // namespace qi
