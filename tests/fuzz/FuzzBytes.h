#pragma once

#include <QByteArray>

#include <algorithm>
#include <cstddef>
#include <cstdint>

/// Reads an input from front to back. Zeros follow its end.
class FuzzBytes
{
public:
    FuzzBytes(const uint8_t *bytes, std::size_t size)
        : m_next(bytes)
        , m_end(bytes + size)
    {}

    bool isAtEnd() const { return m_next == m_end; }
    uint8_t byte() { return isAtEnd() ? uint8_t{0} : *m_next++; }
    /// As many as there are, `length` at most.
    QByteArray take(std::ptrdiff_t length)
    {
        const auto count = std::min(length, m_end - m_next);
        QByteArray bytes(reinterpret_cast<const char *>(m_next), static_cast<int>(count));
        m_next += count;
        return bytes;
    }
    /// What a sensor may say, or noise in its place: bytes as they stand, or a frame with its sum.
    QByteArray answer(int length)
    {
        const uint8_t kind = byte();
        if (kind < 0x40)
            return take(length);
        QByteArray frame = "\x55\xAA" + take(std::max(2, (kind < 0xC0 ? length : kind - 0xC0) - 4));
        unsigned sum = 0;
        for (const char part : qAsConst(frame))
            sum += static_cast<uint8_t>(part);
        return frame + static_cast<char>(sum & 0xFFU) + static_cast<char>(sum >> 8U & 0xFFU);
    }

private:
    const uint8_t *m_next;
    const uint8_t *m_end;
};
