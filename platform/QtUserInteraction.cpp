#include "QtUserInteraction.h"

#include "FileSystem.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QStringList>

namespace qi {

namespace {

QString displayText(const std::string& text)
{
    QString s = QString::fromStdString(text);
    s.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return s;
}

/// "Name (*.x)|*.x|Other (*.y)|*.y" → Qt's filter entries (description with its pattern).
QStringList qtFilters(const std::string& filter)
{
    const QStringList parts = QString::fromStdString(filter).split(QLatin1Char('|'));
    QStringList out;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        QString entry = parts[i];
        if (!entry.contains(QLatin1Char('(')))
            entry += QStringLiteral(" (") + parts[i + 1] + QLatin1Char(')');
        out << entry;
    }
    return out;
}

} // namespace

MsgResult QtUserInteraction::messageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                                        const std::string& title)
{
    QMessageBox box(parent_);
    box.setWindowTitle(QString::fromStdString(title));
    box.setText(displayText(text));
    switch (icon) {
    case MsgIcon::Critical: box.setIcon(QMessageBox::Critical); break;
    case MsgIcon::Exclamation: box.setIcon(QMessageBox::Warning); break;
    case MsgIcon::Information: box.setIcon(QMessageBox::Information); break;
    case MsgIcon::Question: box.setIcon(QMessageBox::Question); break;
    case MsgIcon::None: box.setIcon(QMessageBox::NoIcon); break;
    }
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

std::optional<std::string> QtUserInteraction::openFile(const FileDialogRequest& request)
{
    QFileDialog dialog(parent_, QString::fromStdString(request.title),
                       QString::fromStdString(nativePath(request.startFolder)));
    dialog.setFileMode(QFileDialog::ExistingFile);
    const QStringList filters = qtFilters(request.filter);
    dialog.setNameFilters(filters);
    if (request.filterIndex >= 1 && request.filterIndex <= filters.size())
        dialog.selectNameFilter(filters[request.filterIndex - 1]);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
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

} // namespace qi
