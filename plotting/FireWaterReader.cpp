#include "plotting/FireWaterReader.h"

#include "plotting/plot_value.h"

std::optional<QVector<double>> FireWaterReader::values(const QByteArray &line)
{
    QVector<double> values;
    const int size = line.size() - (line.endsWith('\r') ? 1 : 0);
    int from = 0;
    while (from <= size) {
        const int comma = line.indexOf(',', from);
        const int to = comma < 0 ? size : comma;
        bool isNumber = false;
        const double value = QByteArray::fromRawData(line.constData() + from, to - from).toDouble(&isNumber);
        if (!isNumber)
            return std::nullopt;
        values.append(plotValue(value));
        from = to + 1;
    }
    return values;
}

void FireWaterReader::feed(const QByteArray &bytes)
{
    int from = 0;
    while (from < bytes.size()) {
        const int end = bytes.indexOf('\n', from);
        const int to = end < 0 ? bytes.size() : end;
        if (!m_skipping && m_line.size() + to - from > kMaxLineBytes) {
            ++m_faults.tooLong;
            m_line.clear();
            m_skipping = true;
        }
        if (!m_skipping)
            m_line.append(bytes.constData() + from, to - from);
        if (end >= 0)
            endLine();
        from = to + 1;
    }
}

void FireWaterReader::endLine()
{
    if (!m_skipping) {
        const auto record = values(m_line);
        if (!record)
            ++m_faults.notNumbers;
        else if (record->size() > kMaxWidth)
            ++m_faults.tooLong;
        else
            deliver(*record);
    }
    m_line.clear();
    m_skipping = false;
}

void FireWaterReader::finish()
{
    m_faults.cut += m_line.isEmpty() ? 0U : 1U;
    m_line.clear();
    m_skipping = false;
}
