#pragma once

#include <QString>

#include <chrono>

/// What the result line says of an update that took that long: seconds, a point and the rest in milliseconds
/// without leading zeros.
QString updateSuccessText(std::chrono::milliseconds elapsed);
