#pragma once

#include <QString>

#include <cstdint>

/// The folder of all recordings: "data" beside the executable, in native separators. Makes it when it is
/// missing.
QString recordingFolder();

/// Whether a file could be written into the folder of recordings of a program in `place`; tries it.
bool canRecord(const QString &place);

/// Path of a recording that begins now. infIdx: bus entry from 0; the name counts from 1.
QString recordingName(const QString &folder, uint8_t infIdx, uint8_t addr, const QString &extension);
