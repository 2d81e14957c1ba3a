#pragma once

#include <QByteArray>

/// Reader of Intel HEX text.
class hex2bin
{
public:
    /// The data records of text, one behind the other in the order of the file: addresses play no part in it,
    /// gaps are not filled and overlapping records are not merged. Ends at the first end-of-file record or
    /// the first zero byte. Lines that do not begin with ':' are skipped. Empty when a record cannot be read,
    /// fails its check byte or is of a type above 4; a file without an end-of-file record is taken, and its
    /// records are logged by address.
    static QByteArray hexToBin(const QByteArray &text);
};
