#include "tools/form_looks.h"

#include <QAbstractButton>
#include <QShortcut>

void addButtonShortcut(QAbstractButton *button, const QKeySequence &keys)
{
    auto *shortcut = new QShortcut(keys, button);
    shortcut->setAutoRepeat(false);
    QObject::connect(shortcut, &QShortcut::activated, button, &QAbstractButton::click);
    button->setToolTip(keys.toString(QKeySequence::NativeText));
}

void setFixedFont(QWidget *widget)
{
    QFont font = widget->font();
    font.setFamily(QStringLiteral("monospace"));
    font.setStyleHint(QFont::Monospace);
    widget->setFont(font);
}
