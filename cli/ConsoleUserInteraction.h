#pragma once
// The user at a terminal, for the command line program. Every message the windows
// would show goes to standard error as "[Titel] Text" in the same words; a question
// is answered Yes, since the command given is the user's answer; the conflict
// dialog follows the command's policy and, without one, stops the command; a long
// run shows one progress line while standard error is a terminal; a report is
// handed to a writer instead of being shown.

#include "UserInteraction.h"

#include <functional>
#include <iosfwd>
#include <string>

namespace qi {

/// The command's answer to the conflict dialog for an object scanned in two rooms.
enum class ConflictPolicy {
    None,    ///< no answer given: a conflict stops the command
    Keep,    ///< keep the first scan ("behalten")
    Discard, ///< discard the first scan for the second ("verwerfen")
};

/// Raised by the conflict dialog when the command gave no policy. The command stops and
/// undoes everything it did; the conflict is what the user is told about.
struct UnresolvedConflict {
    ConflictInfo info;
};

class ConsoleUserInteraction : public UserInteraction {
public:
    /// Messages and the progress line go to `err`; the progress line only when `progressLine`
    /// (the program passes whether standard error is a terminal).
    ConsoleUserInteraction(std::ostream& err, bool progressLine);

    /// Writes "[title] text" (the text's line breaks as they are, without carriage returns).
    /// A question is answered Yes and is not written.
    MsgResult messageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                         const std::string& title) override;
    /// There is no file dialog: cancelled.
    std::optional<std::string> openFile(const FileDialogRequest& request) override;
    /// There is no save dialog: cancelled.
    std::optional<std::string> saveFile(const FileDialogRequest& request) override;
    void setBusy(bool) override {}
    void processEvents() override {}
    /// Answers by the policy and writes what was decided; without a policy raises UnresolvedConflict.
    bool resolveConflict(const ConflictInfo& info) override;
    /// There is no editor: nothing happens.
    void openInEditor(const std::string&) override {}
    void beginProgress(const std::string& title) override;
    void reportProgress(const std::string& fileName, std::int64_t linesRead) override;
    void endProgress() override;
    void reportStep(const std::string& step, std::int64_t done, std::int64_t total) override;
    /// Hands the report to the writer; without one nothing happens. The writer's errors pass on.
    void showReport(const std::string& reportFile, const std::string& dataFile, const std::string& title) override;
    /// There is no help window: nothing happens.
    void showHelp(const std::string&) override {}

    void setConflictPolicy(ConflictPolicy policy) { policy_ = policy; }

    /// Writes a report (report file, data file, window title) where the command wants it.
    using ReportWriter =
        std::function<void(const std::string& reportFile, const std::string& dataFile, const std::string& title)>;
    void setReportWriter(ReportWriter writer) { writer_ = std::move(writer); }

    /// Messages that told of an error (critical icon, or the title "Problem") so far, warnings not counted.
    int errorCount() const { return errors_; }

    /// Messages for which `isWarning` answers true are written as they are but count as warnings, not
    /// as errors (a server that can't be reached while the last copy of its data serves).
    void setWarningTest(std::function<bool(const std::string& text)> isWarning) { isWarning_ = std::move(isWarning); }
    /// Messages that the warning test took for warnings so far.
    int warningCount() const { return warnings_; }

    /// One message "[title] text" as the console writes it.
    static std::string format(const std::string& title, const std::string& text);
    /// What the conflict dialog shows: the object and its two occurrences, on three lines.
    static std::string describeConflict(const ConflictInfo& info);

private:
    /// Shows the progress line (when there is one) with this text.
    void progress(const std::string& text);
    /// Clears the progress line before other output.
    void clearProgress();

    std::ostream& err_;
    bool progressLine_;
    bool progressShown_ = false;
    int progressDepth_ = 0;
    std::string progressTitle_;
    ConflictPolicy policy_ = ConflictPolicy::None;
    ReportWriter writer_;
    std::function<bool(const std::string&)> isWarning_;
    int errors_ = 0;
    int warnings_ = 0;
};

} // namespace qi
