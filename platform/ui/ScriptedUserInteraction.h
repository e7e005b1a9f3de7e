#pragma once
// The user as a script: every call is recorded, answers come from queues.
// A message box without a scripted answer takes its first button (OK or Yes);
// a file dialog without one is cancelled.

#include "UserInteraction.h"

#include <deque>
#include <functional>
#include <utility>

namespace qi {

struct RecordedReport {
    std::string reportFile;
    std::string dataFile;
    std::string title;
};

struct RecordedStep {
    std::string step;
    std::int64_t done;
    std::int64_t total;
};

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
    std::optional<std::string> saveFile(const FileDialogRequest& request) override;
    /// Answers from choiceAnswers (nothing: cancelled); recorded in choiceQuestions.
    std::optional<int> askChoice(const std::string& text, const std::string& title, MsgIcon icon,
                                 const std::vector<std::string>& choices) override;
    /// Answers from folderChoices (nothing: cancelled); the titles are recorded in folderTitles.
    std::optional<std::string> chooseFolder(const std::string& title, const std::string& startFolder) override;
    void setBusy(bool busy) override;
    void processEvents() override { ++eventsProcessed; }
    void keepPainting() override { ++paintsKept; }
    void showHelp(const std::string& helpFile) override { helpFiles.push_back(helpFile); }
    bool resolveConflict(const ConflictInfo& info) override;
    void openInEditor(const std::string& path) override { editorPaths.push_back(path); }
    void beginProgress(const std::string& title) override { progressTitles.push_back(title); ++progressDepth; }
    void reportProgress(const std::string& fileName, std::int64_t linesRead) override
    {
        progressReports.push_back({fileName, linesRead});
    }
    void endProgress() override { --progressDepth; ++progressEnded; }
    void reportStep(const std::string& step, std::int64_t done, std::int64_t total) override
    {
        steps.push_back({step, done, total});
    }
    void showReport(const std::string& reportFile, const std::string& dataFile, const std::string& title) override
    {
        reports.push_back({reportFile, dataFile, title});
    }

    // Script
    std::deque<MsgResult> answers;
    std::deque<std::optional<std::string>> fileChoices;
    /// Answers of the save dialog; without one it is cancelled.
    std::deque<std::optional<std::string>> saveChoices;
    /// Answers of the conflict dialog (bVerwerfen), one per conflict in turn.
    std::deque<bool> conflictAnswers;
    /// The answer of every conflict beyond the scripted ones: false keeps the first scan, true takes the second.
    bool conflictDefault = false;

    /// Called with every message while it waits for its answer (what a person does meanwhile).
    std::function<void(const RecordedMessage&)> onMessage;

    /// Answers of askChoice in turn: the index of the button, or nothing for "Abbrechen"; without one it is cancelled.
    std::deque<std::optional<int>> choiceAnswers;
    /// Answers of the folder dialog; without one it is cancelled.
    std::deque<std::optional<std::string>> folderChoices;
    // Record
    /// The questions of askChoice with the texts of their buttons.
    std::vector<std::pair<RecordedMessage, std::vector<std::string>>> choiceQuestions;
    std::vector<std::string> folderTitles;
    std::vector<RecordedMessage> messages;
    std::vector<FileDialogRequest> fileRequests;
    std::vector<FileDialogRequest> saveRequests;
    std::vector<bool> busyChanges;
    bool busy = false;
    int eventsProcessed = 0;
    /// Calls of keepPainting (from inside long statements).
    int paintsKept = 0;
    /// Help files shown through showHelp, in call order.
    std::vector<std::string> helpFiles;
    std::vector<ConflictInfo> conflicts;
    std::vector<std::string> editorPaths;
    std::vector<std::string> progressTitles;
    std::vector<std::pair<std::string, std::int64_t>> progressReports;
    int progressDepth = 0;
    int progressEnded = 0;
    std::vector<RecordedStep> steps;
    /// Reports shown through showReport, in call order.
    std::vector<RecordedReport> reports;
};

} // namespace qi
