#include "ReturnPressesButtons.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPushButton>

namespace qi {

namespace {

class ReturnPressesButtons : public QObject {
public:
    explicit ReturnPressesButtons(QObject* parent) : QObject(parent)
    {
        setObjectName(QStringLiteral("qi_ReturnPressesButtons"));
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        auto* button = qobject_cast<QPushButton*>(watched);
        if (!button || !button->isEnabled() || !button->isVisible())
            return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        if ((key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter) ||
            (key->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
            return false;
        if (!key->isAutoRepeat())
            button->click();
        return true;
    }
};

} // namespace

void installReturnPressesButtons()
{
    QCoreApplication* app = QCoreApplication::instance();
    if (!app || app->findChild<ReturnPressesButtons*>(QStringLiteral("qi_ReturnPressesButtons"), Qt::FindDirectChildrenOnly))
        return;
    app->installEventFilter(new ReturnPressesButtons(app));
}

} // namespace qi
