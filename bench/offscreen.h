#pragma once

#include <QByteArray>
#include <QtGlobal>

/// Lets a program measure without a display, unless its user has chosen one. To be called before the
/// application is made.
inline void drawOffscreenByDefault()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}
