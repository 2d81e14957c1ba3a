#pragma once

#include <QString>

/// Shows a folder in the desktop's file manager. path: in native separators.
void openFolder(const QString &path);
