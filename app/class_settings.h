#pragma once

#include <QString>

/// Settings as plain INI files in the application data directory, one file a group of keys. Every call opens
/// and closes the file; nothing is cached, so that two windows never disagree. GUI thread only.
class class_settings
{
public:
    /// Text stored under key, or defaultValue. Writes back what it returns, so that reading a key creates it.
    /// An empty file means "setting". A file that cannot be read gives the default.
    static QString get(const QString &key, const QString &defaultValue = QString(),
                       const QString &file = QString());
    /// Stores value under key. A file that cannot be written is left as it is, without a word.
    static void set(const QString &key, const QString &value, const QString &file = QString());
};
