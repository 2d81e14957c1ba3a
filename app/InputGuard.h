#pragma once

#include <QObject>

/// Keeps the application from acting on input that was not meant for it: the wheel turned while the pointer
/// happens to be over a box scrolls what is around the box, and Return held in a line counts once. Installed
/// on the application, it reaches every widget there will be.
class InputGuard : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override;
};
