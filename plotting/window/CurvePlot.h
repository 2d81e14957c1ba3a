#pragma once

#include <QVector>
#include <qwt_plot.h>

#include <memory>
#include <optional>

class QwtPlotCurve;
class QwtPlotGrid;
class QwtPlotTextLabel;
class SampleStore;

/// Where a curve comes from.
struct CurveSource
{
    QString name;
    const SampleStore *store;
    int column;
    double shift; ///< seconds by which the store's times come out later
};

/// A stretch of an axis.
struct AxisRange
{
    double from;
    double to;

    double length() const { return to - from; }
};

/// Curves over time. Draws what it is told to show; who tells it knows whether time runs.
class CurvePlot : public QwtPlot
{
    Q_OBJECT

public:
    explicit CurvePlot(QWidget *parent = nullptr);
    ~CurvePlot() override;

    /// The stores must outlive the plot or the next call.
    void setSources(const QVector<CurveSource> &sources);
    const QVector<CurveSource> &sources() const { return m_sources; }
    void setShift(double seconds);
    bool isCurveShown(int index) const;
    void setCurveShown(int index, bool shown);

    /// Reads the curves anew and paints them.
    void showTimes(AxisRange times);
    AxisRange times() const { return range(xBottom); }
    AxisRange values() const { return range(yLeft); }
    /// Nothing: the scale follows what is shown.
    void fixValues(std::optional<AxisRange> values);
    bool hasFixedValues() const { return m_fixedValues.has_value(); }

    /// Smooth lines whatever they cost, for pictures that stand still.
    void setStill(bool still) { m_still = still; }
    /// What stands in the middle while there are no curves.
    void setEmptyText(const QString &text);

    /// Paintings so far.
    quint64 paintings() const { return m_paintings; }

private:
    AxisRange range(int axis) const;
    void readCurves(AxisRange times);
    void followValues(double low, double high);
    void styleAxes();

    QVector<CurveSource> m_sources;
    std::vector<std::unique_ptr<QwtPlotCurve>> m_curves;
    std::unique_ptr<QwtPlotGrid> m_grid;
    std::unique_ptr<QwtPlotTextLabel> m_emptyLabel;
    std::optional<AxisRange> m_fixedValues;
    bool m_still = false;
    quint64 m_paintings = 0;
};
