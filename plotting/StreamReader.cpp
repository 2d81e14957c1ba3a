#include "plotting/StreamReader.h"

#include "plotting/FireWaterReader.h"
#include "plotting/JustFloatReader.h"

#include <utility>

namespace {

bool isTextByte(char byte)
{
    return (byte >= ' ' && byte <= '~') || byte == '\t' || byte == '\r' || byte == '\n';
}

} // namespace

StreamReader::StreamReader(StreamFormat format, RecordReader::Sink sink)
    : m_format(format)
    , m_sink(std::move(sink))
{
    settle(format);
}

void StreamReader::feed(const QByteArray &bytes)
{
    if (m_reader) {
        m_reader->feed(bytes);
        return;
    }
    m_undecided += bytes;
    settle(recognised());
    if (m_reader)
        m_reader->feed(std::exchange(m_undecided, QByteArray()));
}

StreamFormat StreamReader::recognised()
{
    for (; m_seen < m_undecided.size(); ++m_seen) {
        const char byte = m_undecided.at(m_seen);
        if (!isTextByte(byte))
            return StreamFormat::JustFloat;
        const bool isLineEnd = byte == '\n';
        if (m_seen == FireWaterReader::kMaxLineBytes ||
            (isLineEnd && FireWaterReader::values(m_undecided.mid(m_lineAt, m_seen - m_lineAt))))
            return StreamFormat::FireWater;
        m_lineAt = isLineEnd ? m_seen + 1 : m_lineAt;
    }
    return StreamFormat::Automatic;
}

void StreamReader::settle(StreamFormat format)
{
    m_format = format;
    if (format == StreamFormat::FireWater)
        m_reader = std::make_unique<FireWaterReader>(m_sink);
    else if (format == StreamFormat::JustFloat)
        m_reader = std::make_unique<JustFloatReader>(m_sink);
}

void StreamReader::finish()
{
    if (!m_reader && !m_undecided.isEmpty()) {
        settle(StreamFormat::FireWater);
        m_reader->feed(std::exchange(m_undecided, QByteArray()));
    }
    if (m_reader)
        m_reader->finish();
}

StreamFaults StreamReader::faults() const
{
    return m_reader ? m_reader->faults() : StreamFaults();
}
