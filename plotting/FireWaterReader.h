#pragma once

#include "plotting/RecordReader.h"

#include <optional>

/// Reads "FireWater": lines of decimal numbers with commas between them.
class FireWaterReader : public RecordReader
{
public:
    /// The longest line, its end not counted.
    static constexpr int kMaxLineBytes = 32 * kMaxWidth;

    using RecordReader::RecordReader;

    void feed(const QByteArray &bytes) override;
    void finish() override;

    /// The values of a line without its line feed; nothing if a field is no number.
    static std::optional<QVector<double>> values(const QByteArray &line);

private:
    void endLine();

    QByteArray m_line;
    bool m_skipping = false; ///< the line was too long already
};
