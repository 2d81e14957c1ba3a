#include "plotting/StreamReader.h"

#include "plotting/FireWaterReader.h"
#include "plotting/JustFloatReader.h"

#include <utility>

namespace {

bool isTextByte(char byte)
{
    return (byte >= ' ' && byte <= '~') || byte == '\t' || byte == '\r' || byte == '\n';
}

StreamFormat formatOf(const QByteArray &bytes)
{
    int lineAt = 0;
    for (int i = 0; i < bytes.size(); ++i) {
        if (!isTextByte(bytes.at(i)))
            return StreamFormat::JustFloat;
        const bool isLineEnd = bytes.at(i) == '\n';
        if (i == FireWaterReader::kMaxLineBytes ||
            (isLineEnd && FireWaterReader::values(bytes.mid(lineAt, i - lineAt))))
            return StreamFormat::FireWater;
        lineAt = isLineEnd ? i + 1 : lineAt;
    }
    return StreamFormat::Automatic;
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
    if (m_reader != nullptr) {
        m_reader->feed(bytes);
        return;
    }
    m_undecided += bytes;
    settle(formatOf(m_undecided));
    if (m_reader != nullptr)
        m_reader->feed(std::exchange(m_undecided, QByteArray()));
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
    if (m_reader == nullptr && !m_undecided.isEmpty()) {
        settle(StreamFormat::FireWater);
        m_reader->feed(std::exchange(m_undecided, QByteArray()));
    }
    if (m_reader != nullptr)
        m_reader->finish();
}

StreamFaults StreamReader::faults() const
{
    return m_reader != nullptr ? m_reader->faults() : StreamFaults();
}
