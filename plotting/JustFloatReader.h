#pragma once

#include "plotting/RecordReader.h"

/// Reads "JustFloat": 32-bit floats, little-endian, and an infinity as end mark.
class JustFloatReader : public RecordReader
{
public:
    /// The longest record with its end mark.
    static constexpr int kMaxRecordBytes = 4 * (kMaxWidth + 1);

    using RecordReader::RecordReader;

    void feed(const QByteArray &bytes) override;
    void finish() override;

private:
    void endRecord();

    QByteArray m_record;
    bool m_searching = false; ///< lost: the next end mark counts wherever it stands
};
