#pragma once

#include <QStringList>
#include <QVector>

#include <cstdint>

/// Bridge ids as the user sees them and as the device boxes hold them: decimal texts, in the order of the
/// list.
QStringList deviceIdTexts(const QVector<uint16_t> &ids);
