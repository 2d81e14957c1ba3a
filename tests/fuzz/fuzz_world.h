#pragma once

#include "tests/update/VirtualTime.h"

#include <QApplication>

/// The application that a fuzzer runs in, made at the first call: silent, on a time of its own.
inline void fuzzWorld()
{
    static const bool isMade = [] {
        static int argc = 1;
        static char name[] = "fuzz";
        static char *argv[] = {name, nullptr};
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        VirtualTime::install();
        qputenv("QT_QPA_PLATFORM", "offscreen");
        new QApplication(argc, argv); // lives as long as the process
        return true;
    }();
    Q_UNUSED(isMade)
}
