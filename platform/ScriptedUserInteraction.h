#pragma once
// The user as a script: every call is recorded, answers come from queues.
// A message box without a scripted answer takes its first button (OK or Yes);
// a file dialog without one is cancelled.

#include "UserInteraction.h"

#include <deque>

namespace qi {

struct RecordedMessage {
    std::string text;
    MsgButtons buttons;
    MsgIcon icon;
    std::string title;
};

class ScriptedUserInteraction : public UserInteraction {
public:
    MsgResult messageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                         const std::string& title) override;
    std::optional<std::string> openFile(const FileDialogRequest& request) override;
    void setBusy(bool busy) override;
    void processEvents() override { ++eventsProcessed; }

    // Script
    std::deque<MsgResult> answers;
    std::deque<std::optional<std::string>> fileChoices;

    // Record
    std::vector<RecordedMessage> messages;
    std::vector<FileDialogRequest> fileRequests;
    std::vector<bool> busyChanges;
    bool busy = false;
    int eventsProcessed = 0;
};

} // namespace qi
