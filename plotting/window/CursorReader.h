#pragma once

#include <qwt_plot_picker.h>

class CurvePlot;

/// Tells under the mouse which curve is nearest, and its value there.
class CursorReader : public QwtPlotPicker
{
    Q_OBJECT

public:
    explicit CursorReader(CurvePlot *plot);

    /// To be called when the curves have moved under a mouse that stands still.
    void refresh() { updateDisplay(); }

    /// What stands beside the mouse when it is there, in the plot's own values.
    QwtText trackerTextF(const QPointF &position) const override;

private:
    const CurvePlot *m_plot;
};
