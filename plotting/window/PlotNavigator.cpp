#include "plotting/window/PlotNavigator.h"

#include "plotting/window/CurvePlot.h"

#include <QMouseEvent>
#include <QRubberBand>
#include <QWheelEvent>
#include <qwt_scale_map.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kZoomOfANotch = 0.8;
constexpr double kAnglesOfANotch = 120;
/// A smaller rectangle is a hand that shook.
constexpr int kLeastPixels = 6;

AxisRange zoomed(AxisRange range, double factor, double about)
{
    return {about + (range.from - about) * factor, about + (range.to - about) * factor};
}

} // namespace

PlotNavigator::PlotNavigator(CurvePlot *plot)
    : QObject(plot)
    , m_plot(plot)
    , m_band(new QRubberBand(QRubberBand::Rectangle, plot->canvas()))
{
    plot->canvas()->installEventFilter(this);
}

bool PlotNavigator::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Wheel:
        turn(*static_cast<QWheelEvent *>(event));
        return true;
    case QEvent::MouseButtonPress:
        press(*static_cast<QMouseEvent *>(event));
        break;
    case QEvent::MouseMove:
        move(*static_cast<QMouseEvent *>(event));
        break;
    case QEvent::MouseButtonRelease:
        release(*static_cast<QMouseEvent *>(event));
        break;
    case QEvent::MouseButtonDblClick:
        Q_EMIT allWanted();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void PlotNavigator::turn(const QWheelEvent &event)
{
    const double factor = std::pow(kZoomOfANotch, event.angleDelta().y() / kAnglesOfANotch);
    if (event.modifiers().testFlag(Qt::ControlModifier)) {
        const double about = m_plot->invTransform(QwtPlot::yLeft, event.position().toPoint().y());
        Q_EMIT valuesWanted(zoomed(m_plot->values(), factor, about));
    } else {
        const double about = m_plot->invTransform(QwtPlot::xBottom, event.position().toPoint().x());
        Q_EMIT timesZoomed(zoomed(m_plot->times(), factor, about));
    }
}

void PlotNavigator::press(const QMouseEvent &event)
{
    m_pressedAt = event.pos();
    m_last = event.pos();
    m_dragging = event.button() == Qt::LeftButton;
    if (event.button() == Qt::RightButton) {
        m_band->setGeometry(QRect(m_pressedAt, QSize()));
        m_band->show();
    }
}

void PlotNavigator::move(const QMouseEvent &event)
{
    if (m_band->isVisible())
        m_band->setGeometry(QRect(m_pressedAt, event.pos()).normalized());
    if (!m_dragging || (event.pos() - m_pressedAt).manhattanLength() < kLeastPixels)
        return;
    const QPoint step = m_last - event.pos();
    m_last = event.pos();
    if (step.x() != 0)
        Q_EMIT timesMoved(stretch(QwtPlot::xBottom, step.x(), m_plot->canvas()->width() + step.x()));
    if (step.y() != 0)
        Q_EMIT valuesWanted(stretch(QwtPlot::yLeft, m_plot->canvas()->height() + step.y(), step.y()));
}

void PlotNavigator::release(const QMouseEvent &event)
{
    m_dragging = false;
    if (!m_band->isVisible())
        return;
    m_band->hide();
    const QRect chosen = QRect(m_pressedAt, event.pos()).normalized();
    if (std::min(chosen.width(), chosen.height()) < kLeastPixels)
        return;
    Q_EMIT timesMoved(stretch(QwtPlot::xBottom, chosen.left(), chosen.right()));
    Q_EMIT valuesWanted(stretch(QwtPlot::yLeft, chosen.bottom(), chosen.top()));
}

AxisRange PlotNavigator::stretch(int axis, int fromPixel, int toPixel) const
{
    return {m_plot->invTransform(axis, fromPixel), m_plot->invTransform(axis, toPixel)};
}
