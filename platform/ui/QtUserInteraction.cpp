#include "QtUserInteraction.h"

#include "FileSystem.h"

#include <algorithm>

#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QMessageBox>
#include <QProcess>
#include <QProgressDialog>
#include <QPointer>
#include <QPushButton>
#include <QStringList>
#include <QTextBrowser>
#include <QTreeView>
#include <QUrl>

namespace qi {

namespace {

QString displayText(const std::string& text)
{
    QString s = QString::fromStdString(text);
    s.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return s;
}

/// Puts a shown progress dialog aside while a dialog of its own waits for the user: the
/// progress dialog is modal too and would otherwise block the question behind it.
class ProgressAside {
public:
    explicit ProgressAside(QProgressDialog* progress) : progress_(progress && progress->isVisible() ? progress : nullptr)
    {
        if (progress_)
            progress_->hide();
    }
    ~ProgressAside()
    {
        if (progress_)
            progress_->show();
    }
    ProgressAside(const ProgressAside&) = delete;
    ProgressAside& operator=(const ProgressAside&) = delete;

private:
    QPointer<QProgressDialog> progress_;
};

/// Makes the file dialog wide enough for the columns of its file list: type, size and date
/// are shown whole, the name takes the room they leave.
void showColumnsWhole(QFileDialog& dialog)
{
    dialog.resize(820, 520);
    if (auto* list = dialog.findChild<QTreeView*>(QStringLiteral("treeView"))) {
        QHeaderView* header = list->header();
        header->setStretchLastSection(false);
        header->setSectionResizeMode(QHeaderView::ResizeToContents);
        header->setSectionResizeMode(0, QHeaderView::Stretch);
    }
}

/// The message box's icon for one of the system's icons.
void setBoxIcon(QMessageBox& box, MsgIcon icon)
{
    switch (icon) {
    case MsgIcon::Critical: box.setIcon(QMessageBox::Critical); break;
    case MsgIcon::Exclamation: box.setIcon(QMessageBox::Warning); break;
    case MsgIcon::Information: box.setIcon(QMessageBox::Information); break;
    case MsgIcon::Question: box.setIcon(QMessageBox::Question); break;
    case MsgIcon::None: box.setIcon(QMessageBox::NoIcon); break;
    }
}

} // namespace

QStringList qtNameFilters(const std::string& filter)
{
    const QStringList parts = QString::fromStdString(filter).split(QLatin1Char('|'));
    QStringList out;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        QString description = parts[i];
        QString pattern = parts[i + 1];
        // "*.*" means every file, also one without an extension; Qt's "*" says so.
        if (pattern == QStringLiteral("*.*")) {
            pattern = QStringLiteral("*");
            description.replace(QStringLiteral("(*.*)"), QStringLiteral("(*)"));
        }
        if (!description.contains(QLatin1Char('(')))
            description += QStringLiteral(" (") + pattern + QLatin1Char(')');
        out << description;
    }
    return out;
}

QWidget* QtUserInteraction::dialogParent()
{
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget* active = QApplication::activeWindow()) {
        lastActive_ = active;
        return active;
    }
    // Right after a dialog of a command closed, the window system has not yet handed the
    // activation back: the window the command runs in is still the one in use. Over the
    // owner given (the main window, out of use while an order is open) the next dialog
    // would bring that owner to the front of the order's window.
    if (lastActive_ && lastActive_->isVisible())
        return lastActive_;
    return parent_;
}

MsgResult QtUserInteraction::messageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                                        const std::string& title)
{
    const ProgressAside aside(progress_);
    QMessageBox box(dialogParent());
    box.setWindowTitle(QString::fromStdString(title));
    box.setText(displayText(text));
    setBoxIcon(box, icon);
    if (buttons == MsgButtons::YesNo) {
        box.addButton(QStringLiteral("&Ja"), QMessageBox::YesRole);
        QPushButton* no = box.addButton(QStringLiteral("&Nein"), QMessageBox::NoRole);
        box.setEscapeButton(no);
    } else {
        box.addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
    }
    // The busy pointer would otherwise hide that a question waits for an answer.
    const bool wasBusy = busyDepth_ > 0;
    if (wasBusy)
        QApplication::setOverrideCursor(Qt::ArrowCursor);
    box.exec();
    if (wasBusy)
        QApplication::restoreOverrideCursor();
    if (buttons == MsgButtons::YesNo)
        return box.buttonRole(box.clickedButton()) == QMessageBox::YesRole ? MsgResult::Yes : MsgResult::No;
    return MsgResult::Ok;
}

std::optional<int> QtUserInteraction::askChoice(const std::string& text, const std::string& title, MsgIcon icon,
                                                const std::vector<std::string>& choices)
{
    const ProgressAside aside(progress_);
    QMessageBox box(dialogParent());
    box.setWindowTitle(QString::fromStdString(title));
    box.setText(displayText(text));
    setBoxIcon(box, icon);
    std::vector<QPushButton*> buttons;
    for (const std::string& choice : choices)
        buttons.push_back(box.addButton(QString::fromStdString(choice), QMessageBox::AcceptRole));
    QPushButton* cancel = box.addButton(QStringLiteral("Abbrechen"), QMessageBox::RejectRole);
    box.setEscapeButton(cancel);
    if (!buttons.empty())
        box.setDefaultButton(buttons.front());
    const bool wasBusy = busyDepth_ > 0;
    if (wasBusy)
        QApplication::setOverrideCursor(Qt::ArrowCursor);
    box.exec();
    if (wasBusy)
        QApplication::restoreOverrideCursor();
    for (std::size_t i = 0; i < buttons.size(); ++i)
        if (box.clickedButton() == buttons[i])
            return int(i);
    return std::nullopt;
}

std::optional<std::string> QtUserInteraction::chooseFolder(const std::string& title, const std::string& startFolder)
{
    const ProgressAside aside(progress_);
    QFileDialog dialog(dialogParent(), QString::fromStdString(title), QString::fromStdString(nativePath(startFolder)));
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly, true);
    showColumnsWhole(dialog);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return dialog.selectedFiles().first().toStdString();
}

std::optional<std::string> QtUserInteraction::openFile(const FileDialogRequest& request)
{
    const ProgressAside aside(progress_);
    QFileDialog dialog(dialogParent(), QString::fromStdString(request.title),
                       QString::fromStdString(nativePath(request.startFolder)));
    dialog.setFileMode(QFileDialog::ExistingFile);
    showColumnsWhole(dialog);
    const QStringList filters = qtNameFilters(request.filter);
    dialog.setNameFilters(filters);
    if (request.filterIndex >= 1 && request.filterIndex <= filters.size())
        dialog.selectNameFilter(filters[request.filterIndex - 1]);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return dialog.selectedFiles().first().toStdString();
}

std::optional<std::string> QtUserInteraction::saveFile(const FileDialogRequest& request)
{
    const ProgressAside aside(progress_);
    QFileDialog dialog(dialogParent(), QString::fromStdString(request.title),
                       QString::fromStdString(nativePath(request.startFolder)));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    showColumnsWhole(dialog);
    const QStringList filters = qtNameFilters(request.filter);
    dialog.setNameFilters(filters);
    const int selected = request.filterIndex >= 1 && request.filterIndex <= filters.size() ? request.filterIndex : 1;
    if (!filters.isEmpty())
        dialog.selectNameFilter(filters[selected - 1]);
    // The extension of the selected filter ("*.pdf" gives "pdf") completes a name typed without one.
    const QStringList parts = QString::fromStdString(request.filter).split(QLatin1Char('|'));
    if (2 * selected - 1 < parts.size()) {
        const QString pattern = parts[2 * selected - 1].section(QLatin1Char(';'), 0, 0);
        if (pattern.startsWith(QStringLiteral("*.")) && pattern != QStringLiteral("*.*"))
            dialog.setDefaultSuffix(pattern.mid(2));
    }
    if (!request.fileName.empty())
        dialog.selectFile(QString::fromStdString(request.fileName));
    const bool wasBusy = busyDepth_ > 0;
    if (wasBusy)
        QApplication::setOverrideCursor(Qt::ArrowCursor);
    const bool accepted = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
    if (wasBusy)
        QApplication::restoreOverrideCursor();
    if (!accepted)
        return std::nullopt;
    return dialog.selectedFiles().first().toStdString();
}

void QtUserInteraction::setBusy(bool busy)
{
    if (busy) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        ++busyDepth_;
    } else {
        while (busyDepth_ > 0) {
            QApplication::restoreOverrideCursor();
            --busyDepth_;
        }
    }
}

void QtUserInteraction::processEvents() { QApplication::processEvents(); }

void QtUserInteraction::keepPainting() { QApplication::processEvents(QEventLoop::ExcludeUserInputEvents); }

void QtUserInteraction::showHelp(const std::string& helpFile)
{
    // One help window for the whole program, like the system's help viewer.
    static QPointer<QTextBrowser> window;
    if (!window) {
        window = new QTextBrowser(parent_);
        window->setWindowFlag(Qt::Window);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->setOpenExternalLinks(true);
        window->setWindowTitle(QStringLiteral("QInventur - Hilfe"));
        window->resize(720, 560);
    }
    const QString file = QString::fromStdString(nativePath(helpFile));
    window->setSearchPaths({QFileInfo(file).absolutePath()});
    window->setSource(QUrl::fromLocalFile(file));
    window->show();
    window->raise();
    window->activateWindow();
}

bool QtUserInteraction::resolveConflict(const ConflictInfo& info)
{
    if (!conflictDialog_)
        return false;
    const ProgressAside aside(progress_);
    // The busy pointer would hide that the dialog waits for a choice.
    const bool wasBusy = busyDepth_ > 0;
    if (wasBusy)
        QApplication::setOverrideCursor(Qt::ArrowCursor);
    const bool verwerfen = conflictDialog_(dialogParent(), info);
    if (wasBusy)
        QApplication::restoreOverrideCursor();
    return verwerfen;
}

void QtUserInteraction::openInEditor(const std::string& path)
{
    const QString file = QString::fromStdString(nativePath(path));
#ifdef Q_OS_WIN
    QProcess::startDetached(QStringLiteral("notepad.exe"), {file});
#else
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(file)))
        QProcess::startDetached(QStringLiteral("xdg-open"), {file});
#endif
    QApplication::processEvents();
}

void QtUserInteraction::beginProgress(const std::string& title)
{
    if (progressDepth_++ > 0)
        return;
    progress_ = new QProgressDialog(dialogParent());
    progress_->setWindowTitle(QString::fromStdString(title));
    progress_->setCancelButton(nullptr);
    progress_->setRange(0, 0);
    progress_->setWindowModality(Qt::WindowModal);
    progress_->setAutoClose(false);
    progress_->setAutoReset(false);
    progress_->setMinimumWidth(420);
    // Shown by the first report only: the dialog's own timer would show it after a few seconds
    // also while a question waits in front of it, and block that question.
    progress_->reset();
}

void QtUserInteraction::reportProgress(const std::string& fileName, std::int64_t linesRead)
{
    if (!progress_)
        return;
    progress_->setLabelText(QString::fromStdString(fileName) + QStringLiteral("\n") +
                            QString::number(linesRead) + QStringLiteral(" Zeilen gelesen"));
    if (!progress_->isVisible())
        progress_->show();
    QApplication::processEvents();
}

void QtUserInteraction::reportStep(const std::string& step, std::int64_t done, std::int64_t total)
{
    if (!progress_)
        return;
    if (total > 0) {
        progress_->setRange(0, int(std::min<std::int64_t>(total, 1 << 30)));
        progress_->setValue(int(std::min(done, total)));
        progress_->setLabelText(QString::fromStdString(step) + QStringLiteral("\n") + QString::number(done) +
                                QStringLiteral(" von ") + QString::number(total));
    } else {
        progress_->setRange(0, 0);
        progress_->setLabelText(QString::fromStdString(step));
    }
    if (!progress_->isVisible())
        progress_->show();
    QApplication::processEvents();
}

void QtUserInteraction::showReport(const std::string& reportFile, const std::string& dataFile,
                                   const std::string& title)
{
    if (!reportViewer_)
        return;
    const ProgressAside aside(progress_);
    reportViewer_(dialogParent(), reportFile, dataFile, title);
}

void QtUserInteraction::endProgress()
{
    if (progressDepth_ == 0 || --progressDepth_ > 0)
        return;
    delete progress_;
    progress_ = nullptr;
}

} // namespace qi
