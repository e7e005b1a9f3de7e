#include "WindowState.h"

#include <QSettings>
#include <QTreeWidget>
#include <QVariant>
#include <QWidget>

namespace qi {

namespace {

QString geometryKey(const QString& key) { return QStringLiteral("Fenster/") + key + QStringLiteral("/Geometrie"); }

QString columnsKey(const QString& key, const QTreeWidget& list)
{
    return QStringLiteral("Fenster/") + key + QStringLiteral("/") + list.objectName() + QStringLiteral("/Spalten");
}

} // namespace

bool restoreWindowState(QWidget& window, const QString& key, std::initializer_list<QTreeWidget*> lists)
{
    const QSettings settings;
    const QByteArray geometry = settings.value(geometryKey(key)).toByteArray();
    if (geometry.isEmpty() || !window.restoreGeometry(geometry))
        return false;
    for (QTreeWidget* list : lists) {
        const QVariantList widths = settings.value(columnsKey(key, *list)).toList();
        if (widths.size() != list->columnCount())
            continue;
        // The last column fills the list.
        for (int i = 0; i + 1 < widths.size(); ++i)
            if (const int w = widths[i].toInt(); w > 0)
                list->setColumnWidth(i, w);
    }
    return true;
}

void saveWindowState(const QWidget& window, const QString& key, std::initializer_list<QTreeWidget*> lists)
{
    QSettings settings;
    settings.setValue(geometryKey(key), window.saveGeometry());
    for (const QTreeWidget* list : lists) {
        QVariantList widths;
        for (int i = 0; i < list->columnCount(); ++i)
            widths << list->columnWidth(i);
        settings.setValue(columnsKey(key, *list), widths);
    }
}

} // namespace qi
