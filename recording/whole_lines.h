#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

class QFile;

/// Ends a line of a recording. Spelt out, for a text file would write a line in pieces where its end has two
/// bytes.
#ifdef Q_OS_WIN
constexpr const char *kLineEnd = "\r\n";
#else
constexpr const char *kLineEnd = "\n";
#endif

/// All of it or nothing, at the end of a file without a buffer: what a full disk let through is cut off
/// again. Empty when that is done, else the reason.
QString writeWhole(QFile &file, const QByteArray &bytes);

/// Appends what `compose` makes, all of it or nothing, between an open and a close; the file is made when it
/// is missing. `compose` hears whether it is empty, and so wants a heading. Empty when that is done, else the
/// reason.
QString appendToFile(const QString &path, const std::function<QByteArray(bool isEmpty)> &compose);
