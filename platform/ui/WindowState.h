#pragma once
// The program's own memory of its windows between runs: size, place and the column
// widths of their lists, kept with QSettings under the application's name. This is
// the program's state on this computer, not the project's configuration, which the
// program only reads.

#include <QString>

#include <initializer_list>

class QTreeWidget;
class QWidget;

namespace qi {

/// Gives `window` the size and place kept under `key`, and its lists their column widths.
/// False when nothing was kept yet (the window keeps its size, the lists their widths).
bool restoreWindowState(QWidget& window, const QString& key, std::initializer_list<QTreeWidget*> lists = {});
/// Keeps the size and place of `window` and the column widths of its lists under `key`.
void saveWindowState(const QWidget& window, const QString& key, std::initializer_list<QTreeWidget*> lists = {});

} // namespace qi
