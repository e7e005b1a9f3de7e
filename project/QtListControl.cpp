#include "QtListControl.h"

#include <QListWidget>

namespace qi {

int QtListControl::addItem(const std::string& text)
{
    list_.addItem(QString::fromStdString(text));
    return list_.count() - 1;
}

void QtListControl::setItemData(int index, std::int32_t data)
{
    if (QListWidgetItem* item = list_.item(index))
        item->setData(Qt::UserRole, data);
}

std::int32_t QtListControl::itemData(int index) const
{
    const QListWidgetItem* item = list_.item(index);
    return item ? item->data(Qt::UserRole).toInt() : 0;
}

} // namespace qi
