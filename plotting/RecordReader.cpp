#include "plotting/RecordReader.h"

#include <cmath>
#include <utility>

namespace {

constexpr int kBelievedAfter = 3;

} // namespace

RecordReader::RecordReader(Sink sink)
    : m_sink(std::move(sink))
{}

void RecordReader::deliver(const QVector<double> &values)
{
    if (values.size() != m_width && m_width != 0 && !isNewWidth(values.size())) {
        ++m_faults.otherWidth;
        return;
    }
    m_width = values.size();
    m_otherCount = 0;
    for (const double value : values)
        m_faults.gaps += std::isnan(value) ? 1U : 0U;
    m_sink(values);
}

bool RecordReader::isNewWidth(int width)
{
    if (width != m_otherWidth)
        m_otherCount = 0;
    m_otherWidth = width;
    return ++m_otherCount == kBelievedAfter;
}
