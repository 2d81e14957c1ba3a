#include "plotting/JustFloatReader.h"

#include "plotting/plot_value.h"

#include <QtEndian>

#include <cstring>

namespace {

constexpr int kWordBytes = 4;
constexpr char kEndMark[] = "\x00\x00\x80\x7F";

} // namespace

void JustFloatReader::feed(const QByteArray &bytes)
{
    for (const char byte : bytes) {
        m_record.append(byte);
        const int size = m_record.size();
        const bool atEndMark = size >= kWordBytes && std::memcmp(m_record.constData() + size - kWordBytes,
                                                                 kEndMark, kWordBytes) == 0;
        if (atEndMark) {
            endRecord();
        } else if (size == kMaxRecordBytes) {
            m_faults.tooLong += m_searching ? 0U : 1U;
            m_searching = true;
            m_record = m_record.right(kWordBytes - 1);
        }
    }
}

void JustFloatReader::endRecord()
{
    const int words = m_record.size() / kWordBytes;
    // The bytes of the mark may also stand across two good values; only where no record can go on any more do
    // they tell that bytes are missing.
    const bool isAligned = m_record.size() % kWordBytes == 0;
    if (!m_searching && !isAligned && (width() == 0 || words <= width() + 1))
        return;
    if (m_searching || !isAligned || words == 1) {
        m_faults.cut += m_searching ? 0U : 1U;
    } else {
        QVector<double> values(words - 1);
        for (int i = 0; i < values.size(); ++i)
            values[i] = plotValue(
                static_cast<double>(qFromLittleEndian<float>(m_record.constData() + i * kWordBytes)));
        deliver(values);
    }
    m_record.clear();
    m_searching = false;
}

void JustFloatReader::finish()
{
    m_faults.cut += m_record.isEmpty() || m_searching ? 0U : 1U;
    m_record.clear();
    m_searching = false;
}
