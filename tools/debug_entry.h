#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <cstdint>

/// The words of the debug tab's log. They stay Chinese in every language: they are log lines, not captions.

/// What has been sent, to a device at `address`.
QString writeEntry(uint8_t address, const QByteArray &bytes);

/// What has been read, with the verdict on its sum: the last two bytes against the sum of all before them,
/// low byte first. Fewer than two bytes have no sum to fit and count as a failure of sum 0.
QString readEntry(uint8_t address, const QByteArray &bytes);

/// What is logged when a transfer is asked for and the link is not open.
QString notConnectedEntry();

/// An entry as it stands in the log, with its time to the millisecond and a line feed at the end.
QString stampedEntry(const QDateTime &time, const QString &entry);
