#pragma once
// The user interaction of the running program: real Qt dialogs.

#include "UserInteraction.h"

class QWidget;

namespace qi {

class QtUserInteraction : public UserInteraction {
public:
    /// `parent` owns the dialogs (may be null).
    explicit QtUserInteraction(QWidget* parent = nullptr) : parent_(parent) {}
    void setParent(QWidget* parent) { parent_ = parent; }

    MsgResult messageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                         const std::string& title) override;
    std::optional<std::string> openFile(const FileDialogRequest& request) override;
    void setBusy(bool busy) override;
    void processEvents() override;

private:
    QWidget* parent_;
    int busyDepth_ = 0;
};

} // namespace qi
