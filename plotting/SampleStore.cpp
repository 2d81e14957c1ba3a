#include "plotting/SampleStore.h"

#include <algorithm>

namespace {

constexpr size_t kFirstRows = 64;

} // namespace

SampleStore::SampleStore(int width, Limits limits)
    : m_limits(limits)
    , m_maxRows(static_cast<size_t>(std::max<qint64>(limits.cells / (width + 1), 1)))
    , m_columns(static_cast<size_t>(width) + 1)
{
    grow(std::min(kFirstRows, m_maxRows));
}

void SampleStore::append(double seconds, const QVector<double> &values)
{
    if (m_size > 0) {
        const double last = time(size() - 1);
        m_shift = std::max(m_shift, last - seconds);
        // A sum may be rounded to less than what it was made of.
        seconds = std::max(seconds + m_shift, last);
    }
    while (m_size > 0 && time(0) < seconds - m_limits.seconds)
        dropOldest();
    const size_t capacity = m_columns.front().size();
    if (m_size == m_maxRows)
        dropOldest();
    else if (m_size == capacity)
        grow(std::min(2 * capacity, m_maxRows));

    const size_t at = place(size());
    m_columns.front()[at] = seconds;
    for (int i = 0; i < values.size(); ++i)
        m_columns[static_cast<size_t>(i) + 1][at] = values.at(i);
    ++m_size;
}

int SampleStore::firstRowFrom(double seconds) const
{
    int from = 0;
    int to = size();
    while (from < to) {
        const int middle = from + (to - from) / 2;
        if (time(middle) < seconds)
            from = middle + 1;
        else
            to = middle;
    }
    return from;
}

void SampleStore::dropOldest()
{
    m_first = (m_first + 1) % m_columns.front().size();
    --m_size;
}

void SampleStore::grow(size_t rows)
{
    for (std::vector<double> &column : m_columns) {
        std::rotate(column.begin(), column.begin() + static_cast<std::ptrdiff_t>(m_first), column.end());
        column.resize(rows);
    }
    m_first = 0;
}
