#pragma once

#include <QTreeWidget>

class CurvePlot;

/// The legend beside the plot: a colour, a name and the newest value of each curve, and a box that hides and
/// shows it.
class CurveList : public QTreeWidget
{
    Q_OBJECT

public:
    explicit CurveList(CurvePlot *plot, QWidget *parent = nullptr);

    /// To be called after the plot has got other curves.
    void rebuild();
    void refreshValues();

Q_SIGNALS:
    void curveToggled();

protected:
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void setAllShown(bool shown);

    CurvePlot *m_plot;
};
