#include "ScriptedUserInteraction.h"

namespace qi {

MsgResult ScriptedUserInteraction::messageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                                              const std::string& title)
{
    messages.push_back({text, buttons, icon, title});
    if (!answers.empty()) {
        const MsgResult r = answers.front();
        answers.pop_front();
        return r;
    }
    return buttons == MsgButtons::YesNo ? MsgResult::Yes : MsgResult::Ok;
}

std::optional<std::string> ScriptedUserInteraction::openFile(const FileDialogRequest& request)
{
    fileRequests.push_back(request);
    if (fileChoices.empty())
        return std::nullopt;
    auto r = fileChoices.front();
    fileChoices.pop_front();
    return r;
}

std::optional<std::string> ScriptedUserInteraction::saveFile(const FileDialogRequest& request)
{
    saveRequests.push_back(request);
    if (saveChoices.empty())
        return std::nullopt;
    auto r = saveChoices.front();
    saveChoices.pop_front();
    return r;
}

bool ScriptedUserInteraction::resolveConflict(const ConflictInfo& info)
{
    conflicts.push_back(info);
    if (conflictAnswers.empty())
        return false;
    const bool r = conflictAnswers.front();
    conflictAnswers.pop_front();
    return r;
}

void ScriptedUserInteraction::setBusy(bool b)
{
    busy = b;
    busyChanges.push_back(b);
}

} // namespace qi
