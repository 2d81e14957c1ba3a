#pragma once

#include <QtGlobal>

/// What the system holds for this process.
struct Vitals
{
    qint64 memoryKiB = 0; ///< in memory, after free memory has been given back
    int handles = 0;      ///< open files
    int threads = 0;
};

Vitals takeVitals();
