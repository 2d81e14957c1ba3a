#include "plotting/curve_points.h"

#include "plotting/SampleStore.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Gathers the values of one pixel's time.
class Bucket
{
public:
    void add(const QPointF &point)
    {
        m_last = point;
        m_any = true;
        if (std::isnan(point.y()))
            return;
        if (!m_hasValue || point.y() < m_low.y())
            m_low = point;
        if (!m_hasValue || point.y() > m_high.y())
            m_high = point;
        m_hasValue = true;
    }

    void flush(QVector<QPointF> &points)
    {
        if (m_hasValue) {
            const bool lowFirst = m_low.x() <= m_high.x();
            points.append(lowFirst ? m_low : m_high);
            if (m_low != m_high)
                points.append(lowFirst ? m_high : m_low);
        } else if (m_any) {
            points.append(m_last);
        }
        *this = Bucket();
    }

private:
    QPointF m_low;
    QPointF m_high;
    QPointF m_last;
    bool m_hasValue = false;
    bool m_any = false;
};

} // namespace

CurvePoints curvePoints(const SampleStore &store, int column, double from, double to, int pixels,
                        double shift)
{
    CurvePoints curve;
    curve.low = std::numeric_limits<double>::infinity();
    curve.high = -curve.low;
    const int first = std::max(store.firstRowFrom(from - shift) - 1, 0);
    const double afterTo = std::nextafter(to - shift, std::numeric_limits<double>::infinity());
    const int end = std::min(store.firstRowFrom(afterTo) + 1, store.size());
    const bool isCrowded = end - first > 4 * pixels;
    // Counted from the beginning of time and not of the stretch, or the picture would shimmer while it
    // scrolls.
    const double pixelSeconds =
        std::max((to - from) / std::max(pixels, 1), std::numeric_limits<double>::min());
    double bucketNumber = 0;
    Bucket bucket;
    for (int row = first; row < end; ++row) {
        const QPointF point(store.time(row) + shift, store.value(row, column));
        if (point.x() >= from && point.x() <= to && !std::isnan(point.y())) {
            curve.low = std::min(curve.low, point.y());
            curve.high = std::max(curve.high, point.y());
        }
        if (!isCrowded) {
            curve.points.append(point);
            continue;
        }
        const double number = std::floor(store.time(row) / pixelSeconds);
        if (number != bucketNumber)
            bucket.flush(curve.points);
        bucketNumber = number;
        bucket.add(point);
    }
    bucket.flush(curve.points);
    return curve;
}
