#pragma once

#include <QKeySequence>

class QAbstractButton;
class QWidget;

/// Lets a key sequence press the button and says so in its tool tip. Unlike the button's own shortcut it
/// survives a change of the button's text.
void addButtonShortcut(QAbstractButton *button, const QKeySequence &keys);

/// Gives a widget that shows bytes characters of one width, in the size that it has.
void setFixedFont(QWidget *widget);
