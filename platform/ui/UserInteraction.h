#pragma once
// Every exchange with the user passes through this one interface: message boxes,
// questions, the file-open dialog, the busy pointer and letting pending window
// events run. The program uses the Qt implementation (QtUserInteraction); tests
// use ScriptedUserInteraction, which records each call and answers from a script.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qi {

enum class MsgButtons { Ok, YesNo };
enum class MsgIcon { None, Critical, Exclamation, Information, Question };
enum class MsgResult { Ok, Yes, No };

/// Title of the common error message: the program's executable name.
inline constexpr const char* kProgramName = "QInventur";

struct FileDialogRequest {
    std::string title;
    std::string startFolder;
    /// Filter in the form "Alle Dateien (*.*)|*.*|Scannerdaten (*.dat)|*.dat".
    std::string filter;
    /// 1-based entry of the filter that is preselected.
    int filterIndex = 1;
    /// The save dialog's suggested file name (in `startFolder`).
    std::string fileName;
};

/// What the conflict dialog shows when one inventory number was scanned in two rooms.
struct ConflictInfo {
    std::string stInvNr;    ///< inventory number of the new line
    std::string stArtNr;    ///< article number of the new line
    std::string stArtName;  ///< article name of the new line
    std::string stRaumAlt;  ///< room of the stored (first) scan
    std::string stDateiAlt; ///< data file name of the first scan
    std::string stDatumAlt; ///< date of the first scan
    std::string stRaumNeu;  ///< room of the new (second) scan
    std::string stDateiNeu; ///< data file name of the second scan
    std::string stDatumNeu; ///< date of the second scan
};

class UserInteraction {
public:
    virtual ~UserInteraction() = default;

    /// Shows a message box and returns the button pressed.
    virtual MsgResult messageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                                 const std::string& title) = 0;
    /// The common file-open dialog: the chosen full path, or nothing when cancelled.
    virtual std::optional<std::string> openFile(const FileDialogRequest& request) = 0;
    /// The common file-save dialog: the chosen full path, or nothing when cancelled. A name
    /// without extension gets the selected filter's; an existing file is replaced only after
    /// the dialog asked.
    virtual std::optional<std::string> saveFile(const FileDialogRequest& request) = 0;
    /// A question with buttons of the given texts and a cancel button "Abbrechen": the index of the
    /// button pressed, or nothing when cancelled. Without a way to ask (a program without windows) it
    /// is cancelled.
    virtual std::optional<int> askChoice(const std::string& text, const std::string& title, MsgIcon icon,
                                         const std::vector<std::string>& choices);
    /// The folder dialog: the chosen folder, or nothing when cancelled (so too without a way to ask).
    virtual std::optional<std::string> chooseFolder(const std::string& title, const std::string& startFolder);
    /// Hourglass on (true) or back to the normal pointer (false).
    virtual void setBusy(bool busy) = 0;
    /// Lets pending window events run.
    virtual void processEvents() = 0;
    /// Lets the windows paint and their timers run, but takes no input from the user: called
    /// from inside a long statement, whose connection nothing else may use meanwhile.
    virtual void keepPainting() {}

    /// The conflict dialog for an object scanned in two rooms, shown modally.
    /// True (bVerwerfen) when the second scan replaces the first; false keeps the first.
    virtual bool resolveConflict(const ConflictInfo& info) = 0;
    /// Opens a text file in the system's text editor without waiting for it.
    virtual void openInEditor(const std::string& path) = 0;
    /// Progress of a long reading step: begins with a title, reports the file and the
    /// lines read so far (keeping the window responsive), and ends.
    virtual void beginProgress(const std::string& title) = 0;
    virtual void reportProgress(const std::string& fileName, std::int64_t linesRead) = 0;
    virtual void endProgress() = 0;
    /// Progress of one step of a long run (the evaluation: rooms done of rooms, then each
    /// statement): what is being done and how far, `done` of `total` (total 0: not counted).
    /// Lets pending window events run.
    virtual void reportStep(const std::string& step, std::int64_t done, std::int64_t total) = 0;

    /// Shows a report in its preview window: the report file (full path), the one data
    /// file it reads (the report database) and the window title.
    virtual void showReport(const std::string& reportFile, const std::string& dataFile,
                            const std::string& title) = 0;

    /// Shows the contents page of a help file in a help window (the system help call).
    virtual void showHelp(const std::string& helpFile) = 0;

    /// The common error message: label, line break, description; critical icon, program name as title.
    void showError(const std::string& label, const std::string& description);
    /// A question with Yes and No; true for Yes.
    bool askYesNo(const std::string& text, const std::string& title, MsgIcon icon = MsgIcon::None);
};

} // namespace qi
