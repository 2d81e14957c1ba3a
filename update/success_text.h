#pragma once

#include <QString>

/// What the result line says of an update that took that long: seconds, a point and the rest in milliseconds without
/// leading zeros.
QString updateSuccessText(qint64 elapsedMs);
