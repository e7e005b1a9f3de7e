#include "ScriptedUserInteraction.h"

namespace qi {

MsgResult ScriptedUserInteraction::messageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                                              const std::string& title)
{
    messages.push_back({text, buttons, icon, title});
    if (onMessage)
        onMessage(messages.back());
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

std::optional<int> ScriptedUserInteraction::askChoice(const std::string& text, const std::string& title, MsgIcon icon,
                                                      const std::vector<std::string>& choices)
{
    choiceQuestions.push_back({{text, MsgButtons::Ok, icon, title}, choices});
    if (choiceAnswers.empty())
        return std::nullopt;
    auto r = choiceAnswers.front();
    choiceAnswers.pop_front();
    return r;
}

std::optional<std::string> ScriptedUserInteraction::chooseFolder(const std::string& title, const std::string&)
{
    folderTitles.push_back(title);
    if (folderChoices.empty())
        return std::nullopt;
    auto r = folderChoices.front();
    folderChoices.pop_front();
    return r;
}

bool ScriptedUserInteraction::resolveConflict(const ConflictInfo& info)
{
    conflicts.push_back(info);
    if (conflictAnswers.empty())
        return conflictDefault;
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
