#pragma once

#include <QtGlobal>

/// What the system holds for this process.
struct Vitals
{
    qint64 memoryKiB = 0; ///< asked for and not freed
    qint64 residentKiB =
        0;           ///< in memory, with what lies between and cannot be given back, and the program itself
    int handles = 0; ///< open files
    int threads = 0;
};

/// Empties caches and gives free memory back first.
Vitals takeVitals();
