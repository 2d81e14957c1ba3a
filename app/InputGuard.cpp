#include "app/InputGuard.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>

namespace {

bool isBox(const QObject *object)
{
    return qobject_cast<const QComboBox *>(object) != nullptr ||
           qobject_cast<const QAbstractSpinBox *>(object) != nullptr;
}

bool isHeldReturn(const QKeyEvent &event)
{
    return event.isAutoRepeat() && (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter);
}

} // namespace

// Sees every event of the application, so all that most of them cost is the switch.
bool InputGuard::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Polish:
        // The wheel would still move the focus to the box, away from what is being typed.
        if (isBox(watched) && static_cast<QWidget *>(watched)->focusPolicy() == Qt::WheelFocus)
            static_cast<QWidget *>(watched)->setFocusPolicy(Qt::StrongFocus);
        return false;
    case QEvent::Wheel:
        if (!isBox(watched))
            return false;
        event->ignore(); // so that it goes on to the widget around the box
        return true;
    case QEvent::KeyPress:
        return isHeldReturn(*static_cast<QKeyEvent *>(event)) &&
               qobject_cast<QLineEdit *>(watched) != nullptr;
    default:
        return false;
    }
}
