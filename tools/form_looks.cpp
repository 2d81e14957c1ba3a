#include "tools/form_looks.h"

#include <QAbstractButton>
#include <QShortcut>

void addButtonShortcut(QAbstractButton *button, const QKeySequence &keys)
{
    const auto *shortcut = new QShortcut(keys, button);
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
