#pragma once
// The user interaction of the running program: real Qt dialogs.

#include "UserInteraction.h"

#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <functional>

class QProgressDialog;

namespace qi {

/// The entries of a file-dialog filter "Name (*.x)|*.x|Other|*.y" as Qt wants them;
/// "*.*" becomes "*", which also takes files without an extension.
QStringList qtNameFilters(const std::string& filter);

class QtUserInteraction : public UserInteraction {
public:
    /// `parent` owns the dialogs while none of the program's windows is active (may be null).
    explicit QtUserInteraction(QWidget* parent = nullptr) : parent_(parent) {}
    void setParent(QWidget* parent) { parent_ = parent; }
    /// The window a dialog opens over: the modal dialog in front, else the active window of
    /// the program, else the window that was active when the last dialog was asked for (while
    /// it is shown), else the parent given.
    QWidget* dialogParent();

    MsgResult messageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                         const std::string& title) override;
    std::optional<int> askChoice(const std::string& text, const std::string& title, MsgIcon icon,
                                 const std::vector<std::string>& choices) override;
    std::optional<std::string> chooseFolder(const std::string& title, const std::string& startFolder) override;
    std::optional<std::string> openFile(const FileDialogRequest& request) override;
    std::optional<std::string> saveFile(const FileDialogRequest& request) override;
    void setBusy(bool busy) override;
    void processEvents() override;
    void keepPainting() override;
    /// Opens (or raises) the help window with the help file's contents page.
    void showHelp(const std::string& helpFile) override;
    /// Shows the dialog plugged in with setConflictDialog; without one the first scan is kept.
    bool resolveConflict(const ConflictInfo& info) override;
    void openInEditor(const std::string& path) override;
    void beginProgress(const std::string& title) override;
    void reportProgress(const std::string& fileName, std::int64_t linesRead) override;
    void endProgress() override;
    void reportStep(const std::string& step, std::int64_t done, std::int64_t total) override;
    /// Shows the report through the viewer plugged in with setReportViewer.
    void showReport(const std::string& reportFile, const std::string& dataFile, const std::string& title) override;

    /// Shows the conflict dialog modally over `parent` and returns its bVerwerfen.
    using ConflictDialog = std::function<bool(QWidget* parent, const ConflictInfo&)>;
    /// Plugs in the conflict dialog (it lives with the order work windows).
    void setConflictDialog(ConflictDialog dialog) { conflictDialog_ = std::move(dialog); }

    /// Shows a report (file, data file, title) in a preview window over `parent`.
    using ReportViewer = std::function<void(QWidget* parent, const std::string& reportFile,
                                            const std::string& dataFile, const std::string& title)>;
    /// Plugs in the report viewer (it lives with the report engine).
    void setReportViewer(ReportViewer viewer) { reportViewer_ = std::move(viewer); }

private:
    QWidget* parent_;
    QPointer<QWidget> lastActive_;
    ReportViewer reportViewer_;
    int busyDepth_ = 0;
    ConflictDialog conflictDialog_;
    QProgressDialog* progress_ = nullptr;
    int progressDepth_ = 0;
};

} // namespace qi
