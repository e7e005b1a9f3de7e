#pragma once
// Every exchange with the user passes through this one interface: message boxes,
// questions, the file-open dialog, the busy pointer and letting pending window
// events run. The program uses the Qt implementation (QtUserInteraction); tests
// use ScriptedUserInteraction, which records each call and answers from a script.

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
};

class UserInteraction {
public:
    virtual ~UserInteraction() = default;

    /// Shows a message box and returns the button pressed.
    virtual MsgResult messageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                                 const std::string& title) = 0;
    /// The common file-open dialog: the chosen full path, or nothing when cancelled.
    virtual std::optional<std::string> openFile(const FileDialogRequest& request) = 0;
    /// Hourglass on (true) or back to the normal pointer (false).
    virtual void setBusy(bool busy) = 0;
    /// Lets pending window events run.
    virtual void processEvents() = 0;

    /// The common error message: label, line break, description; critical icon, program name as title.
    void showError(const std::string& label, const std::string& description);
    /// A question with Yes and No; true for Yes.
    bool askYesNo(const std::string& text, const std::string& title, MsgIcon icon = MsgIcon::None);
};

} // namespace qi
