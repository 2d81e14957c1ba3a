#pragma once

#include <QObject>
#include <QPoint>

class CurvePlot;
class QMouseEvent;
class QRubberBand;
class QWheelEvent;
struct AxisRange;

/// The mouse on a plot: the wheel zooms in time, with Ctrl in value; the left button drags, the right one
/// opens a rectangle; a double click asks for everything. Says what is wanted and changes nothing itself.
class PlotNavigator : public QObject
{
    Q_OBJECT

public:
    explicit PlotNavigator(CurvePlot *plot);

Q_SIGNALS:
    void timesZoomed(const AxisRange &times);
    void timesMoved(const AxisRange &times);
    void valuesWanted(const AxisRange &values);
    void allWanted();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void turn(const QWheelEvent &event);
    void press(const QMouseEvent &event);
    void move(const QMouseEvent &event);
    void release(const QMouseEvent &event);
    AxisRange stretch(int axis, int fromPixel, int toPixel) const;

    CurvePlot *m_plot;
    QRubberBand *m_band; ///< the canvas has it
    QPoint m_pressedAt;
    QPoint m_last;
    bool m_dragging = false;
};
