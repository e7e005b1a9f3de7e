#include "Screenshots.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QSet>
#include <QTabBar>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QWindow>

namespace qi::test {

namespace {

/// True when the widget is shown and lies inside the window's area, at least in part.
bool onWindow(const QWidget& w, QWidget& window)
{
    if (!w.isVisibleTo(&window))
        return false;
    const QRect r(w.mapTo(&window, QPoint(0, 0)), w.size());
    return r.intersects(window.rect());
}

void menuTexts(const QMenu& menu, QStringList& out)
{
    for (const QAction* a : menu.actions()) {
        if (a->isSeparator())
            continue;
        out << a->text();
        if (a->menu())
            menuTexts(*a->menu(), out);
    }
}

/// Keeps the image as "<name>.png" in the folder "screenshots" beside the test program.
QImage keep(const QImage& image, const QString& name)
{
    QDir dir(QCoreApplication::applicationDirPath());
    dir.mkpath(QStringLiteral("screenshots"));
    image.save(dir.absoluteFilePath(QStringLiteral("screenshots/") + name + QStringLiteral(".png")), "PNG");
    return image;
}

} // namespace

QStringList visibleTexts(QWidget& window)
{
    QStringList out;
    for (QWidget* w : window.findChildren<QWidget*>()) {
        if (!onWindow(*w, window))
            continue;
        if (const auto* label = qobject_cast<QLabel*>(w))
            out << label->text();
        else if (const auto* button = qobject_cast<QAbstractButton*>(w))
            out << button->text();
        else if (const auto* box = qobject_cast<QGroupBox*>(w); box && !box->title().isEmpty())
            out << box->title();
        if (const auto* bar = qobject_cast<QMenuBar*>(w)) {
            for (const QAction* a : bar->actions()) {
                out << a->text();
                if (a->menu())
                    menuTexts(*a->menu(), out);
            }
        }
        if (auto* tree = qobject_cast<QTreeWidget*>(w)) {
            const QRect view = tree->viewport()->rect();
            if (!tree->header()->isHidden())
                for (int c = 0; c < tree->columnCount(); ++c)
                    out << tree->headerItem()->text(c);
            for (QTreeWidgetItemIterator it(tree); *it; ++it)
                if (tree->visualItemRect(*it).intersects(view))
                    for (int c = 0; c < tree->columnCount(); ++c)
                        if (!(*it)->text(c).isEmpty())
                            out << (*it)->text(c);
        }
        if (const auto* tabs = qobject_cast<QTabBar*>(w))
            for (int i = 0; i < tabs->count(); ++i)
                if (tabs->tabRect(i).intersects(tabs->rect()))
                    out << tabs->tabText(i);
        if (auto* list = qobject_cast<QListWidget*>(w)) {
            const QRect view = list->viewport()->rect();
            for (int i = 0; i < list->count(); ++i)
                if (list->visualItemRect(list->item(i)).intersects(view))
                    out << list->item(i)->text();
        }
    }
    return out;
}

QImage screenshot(QWidget& window, const QString& name)
{
    QCoreApplication::processEvents();
    return keep(window.grab().toImage(), name);
}

QImage screenContents(QWidget& window, const QString& name)
{
    QScreen* screen = window.screen();
    if (!screen || !window.windowHandle())
        return {};
    return keep(screen->grabWindow(window.winId()).toImage(), name);
}

int colourCount(const QImage& image)
{
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 2)
        for (int x = 0; x < image.width(); x += 2)
            colours.insert(image.pixel(x, y));
    return int(colours.size());
}

void expectOnScreen(QWidget& window, const QString& name, const QStringList& texts)
{
    const QImage shot = screenshot(window, name);
    ASSERT_FALSE(shot.isNull()) << name.toStdString();
    EXPECT_GT(colourCount(shot), 20) << name.toStdString();
    const QStringList shown = visibleTexts(window);
    for (const QString& t : texts)
        EXPECT_TRUE(shown.contains(t)) << name.toStdString() << ": " << t.toStdString();
}

} // namespace qi::test
