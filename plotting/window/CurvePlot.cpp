#include "plotting/window/CurvePlot.h"

#include "plotting/SampleStore.h"
#include "plotting/curve_points.h"
#include "plotting/window/curve_colours.h"

#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_textlabel.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Smooth lines cost several times as much; beyond so many points in a moving picture nobody sees them.
constexpr int kSmoothPoints = 20000;
constexpr double kSmoothWidth = 1.4;
constexpr double kMargin = 0.05;

/// A curve that is broken where a value is not a number.
class BrokenCurve : public QwtPlotCurve
{
public:
    using QwtPlotCurve::QwtPlotCurve;

    void drawSeries(QPainter *painter, const QwtScaleMap &xMap, const QwtScaleMap &yMap,
                    const QRectF &canvasRect, int from, int to) const override
    {
        if (to < 0)
            to = static_cast<int>(dataSize()) - 1;
        while (from <= to) {
            int end = from;
            while (end <= to && !std::isnan(sample(end).y()))
                ++end;
            if (end > from)
                QwtPlotCurve::drawSeries(painter, xMap, yMap, canvasRect, from, end - 1);
            from = end + 1;
        }
    }
};

std::unique_ptr<QwtPlotCurve> newCurve(const QString &name, const QColor &colour)
{
    auto curve = std::make_unique<BrokenCurve>(QwtText(name, QwtText::PlainText));
    curve->setPen(colour, 0);
    curve->setLegendAttribute(QwtPlotCurve::LegendShowLine);
    curve->setPaintAttribute(QwtPlotCurve::ClipPolygons);
    return curve;
}

} // namespace

CurvePlot::CurvePlot(QWidget *parent)
    : QwtPlot(parent)
    , m_grid(std::make_unique<QwtPlotGrid>())
    , m_emptyLabel(std::make_unique<QwtPlotTextLabel>())
{
    setAutoReplot(false);
    setPalette(QPalette(Qt::white));
    setAutoFillBackground(true);
    auto *area = new QwtPlotCanvas;
    area->setFrameStyle(QFrame::NoFrame);
    area->setFocusPolicy(Qt::StrongFocus);
    setCanvas(area);
    setCanvasBackground(Qt::white);
    styleAxes();

    m_grid->setMajorPen(QColor(0xE3, 0xE6, 0xEA), 0);
    m_grid->attach(this);
    m_emptyLabel->attach(this);
}

CurvePlot::~CurvePlot()
{
    detachItems(QwtPlotItem::Rtti_PlotItem, false);
    m_curves.clear();
}

void CurvePlot::styleAxes()
{
    for (const int axis : {yLeft, xBottom}) {
        axisWidget(axis)->setMargin(0);
        axisScaleDraw(axis)->enableComponent(QwtAbstractScaleDraw::Backbone, false);
        axisScaleDraw(axis)->setTickLength(QwtScaleDiv::MinorTick, 0);
        axisScaleDraw(axis)->setTickLength(QwtScaleDiv::MediumTick, 0);
        axisScaleDraw(axis)->setTickLength(QwtScaleDiv::MajorTick, 4);
    }
    // So that the picture does not jump to the side with every digit more or less.
    axisScaleDraw(yLeft)->setMinimumExtent(QFontMetrics(font()).horizontalAdvance(QStringLiteral("-000000")));
    QwtText title(tr("Time (s)"));
    title.setFont(font());
    setAxisTitle(xBottom, title);
    setAxisScale(yLeft, 0, 1);
}

void CurvePlot::setEmptyText(const QString &text)
{
    QwtText label(text);
    QFont large(font());
    large.setPointSizeF(large.pointSizeF() * 1.5);
    label.setFont(large);
    label.setColor(QColor(0x70, 0x78, 0x80));
    label.setRenderFlags(Qt::AlignCenter);
    m_emptyLabel->setText(label);
    m_emptyLabel->setVisible(m_curves.empty());
}

void CurvePlot::setSources(const QVector<CurveSource> &sources)
{
    m_curves.clear();
    m_sources = sources;
    for (int i = 0; i < sources.size(); ++i) {
        m_curves.push_back(newCurve(sources.at(i).name, curveColour(i)));
        m_curves.back()->attach(this);
    }
    m_emptyLabel->setVisible(sources.isEmpty());
    m_fixedValues.reset();
}

void CurvePlot::setShift(double seconds)
{
    for (CurveSource &source : m_sources)
        source.shift = seconds;
}

bool CurvePlot::isCurveShown(int index) const
{
    return m_curves.at(static_cast<size_t>(index))->isVisible();
}

void CurvePlot::setCurveShown(int index, bool shown)
{
    QwtPlotCurve &curve = *m_curves.at(static_cast<size_t>(index));
    curve.setVisible(shown);
    curve.setItemAttribute(QwtPlotItem::Legend, shown);
}

void CurvePlot::fixValues(std::optional<AxisRange> values)
{
    m_fixedValues = values;
    if (values)
        setAxisScale(yLeft, values->from, values->to);
}

void CurvePlot::showTimes(AxisRange times)
{
    if (times.from != this->times().from || times.to != this->times().to)
        setAxisScale(xBottom, times.from, times.to);
    readCurves(times);
    replot();
    ++m_paintings;
}

void CurvePlot::readCurves(AxisRange times)
{
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    int points = 0;
    for (int i = 0; i < m_sources.size(); ++i) {
        const CurveSource &source = m_sources.at(i);
        if (!isCurveShown(i))
            continue;
        const CurvePoints read =
            curvePoints(*source.store, source.column, times.from, times.to, canvas()->width(), source.shift);
        m_curves.at(static_cast<size_t>(i))->setSamples(read.points);
        low = std::min(low, read.low);
        high = std::max(high, read.high);
        points += read.points.size();
    }
    const bool isSmooth = m_still || points <= kSmoothPoints;
    for (const auto &curve : m_curves) {
        curve->setRenderHint(QwtPlotItem::RenderAntialiased, isSmooth);
        curve->setPen(curve->pen().color(), isSmooth ? kSmoothWidth : 0);
    }
    if (!m_fixedValues && low <= high)
        followValues(low, high);
}

// The scale grows at once and shrinks only when it is much too large, or it would never rest.
void CurvePlot::followValues(double low, double high)
{
    const double least = std::max({std::abs(low), std::abs(high), 1e-3}) * 1e-6;
    const double margin = std::max((high - low) * kMargin, least);
    const AxisRange now = values();
    const bool fits = low >= now.from && high <= now.to && high - low + 2 * margin > now.length() / 2;
    if (fits)
        return;
    setAxisScale(yLeft, low - margin, high + margin);
}

AxisRange CurvePlot::range(int axis) const
{
    const QwtScaleDiv &scale = axisScaleDiv(axis);
    return {scale.lowerBound(), scale.upperBound()};
}
