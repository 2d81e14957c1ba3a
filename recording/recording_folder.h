#pragma once

#include <QString>

/// The folder of all recordings: "data" beside the executable, in native separators. Makes it when it is
/// missing.
QString recordingFolder();
