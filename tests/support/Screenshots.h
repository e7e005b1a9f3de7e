#pragma once
// Screenshots of windows rendered offscreen, and the texts a person can read on them.

#include <QImage>
#include <QString>
#include <QStringList>

class QWidget;

namespace qi::test {

/// The texts shown inside `window` as it is laid out now: labels, buttons, check and option
/// boxes, frame titles, the captions of tabs, the menu bar's menus and their entries, list
/// headings and the texts of the list, box and tree items within view. Texts keep their mnemonic marks ("&Hinzufügen").
/// Only widgets visible inside the window's area count.
QStringList visibleTexts(QWidget& window);

/// Renders `window` (shown offscreen before), keeps it as "<name>.png" in the folder
/// "screenshots" beside the test program and returns the image.
QImage screenshot(QWidget& window, const QString& name);

/// What the window system was last handed for the shown `window` (its flushed backing
/// store, not a fresh rendering), kept as "<name>.png" beside the screenshots; null when
/// the window never reached the screen.
QImage screenContents(QWidget& window, const QString& name);

/// Number of different colours in the image (a blank window has one or two).
int colourCount(const QImage& image);

/// Saves the window's screenshot as `name` and checks that it is drawn and shows every text.
void expectOnScreen(QWidget& window, const QString& name, const QStringList& texts);

} // namespace qi::test
