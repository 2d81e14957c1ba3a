#include "plotting/window/CursorReader.h"

#include "plotting/SampleStore.h"
#include "plotting/window/CurvePlot.h"
#include "plotting/window/curve_colours.h"

#include <QPen>
#include <qwt_picker_machine.h>
#include <qwt_text.h>

#include <cmath>

namespace {

/// The row whose time is nearest; the store must not be empty.
int nearestRow(const SampleStore &store, double seconds)
{
    const int after = std::min(store.firstRowFrom(seconds), store.size() - 1);
    const int before = std::max(after - 1, 0);
    return seconds - store.time(before) < store.time(after) - seconds ? before : after;
}

} // namespace

CursorReader::CursorReader(CurvePlot *plot)
    : QwtPlotPicker(plot->canvas())
    , m_plot(plot)
{
    setStateMachine(new QwtPickerTrackerMachine);
    setTrackerMode(AlwaysOn);
    setRubberBand(VLineRubberBand);
    setRubberBandPen(QColor(0xB0, 0xB6, 0xBC));
}

QwtText CursorReader::trackerTextF(const QPointF &position) const
{
    int nearest = -1;
    double nearestValue = 0;
    double nearestTime = 0;
    for (int i = 0; i < m_plot->sources().size(); ++i) {
        const CurveSource &source = m_plot->sources().at(i);
        if (!m_plot->isCurveShown(i) || source.store->size() == 0)
            continue;
        const int row = nearestRow(*source.store, position.x() - source.shift);
        const double value = source.store->value(row, source.column);
        const bool isNearer =
            nearest < 0 || std::abs(value - position.y()) < std::abs(nearestValue - position.y());
        if (std::isnan(value) || !isNearer)
            continue;
        nearest = i;
        nearestValue = value;
        nearestTime = source.store->time(row) + source.shift;
    }
    if (nearest < 0)
        return {};
    QwtText text(tr("%1  %2\n%3 s")
                     .arg(m_plot->sources().at(nearest).name)
                     .arg(nearestValue, 0, 'g', 9)
                     .arg(nearestTime, 0, 'f', 3),
                 QwtText::PlainText);
    text.setRenderFlags(Qt::AlignLeft);
    text.setColor(curveColour(nearest).darker(130));
    text.setBackgroundBrush(QColor(255, 255, 255, 225));
    text.setBorderPen(QPen(QColor(0xD0, 0xD5, 0xDA)));
    text.setBorderRadius(3);
    return text;
}
