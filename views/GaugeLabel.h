#pragma once

#include "views/gauge_painting.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>

/// What both gauge classes do. `Gauge` is the class that derives from this one and holds the fields; its label text, if
/// any, lies below the disc.
template<typename Gauge>
class GaugeLabel : public QLabel
{
public:
    explicit GaugeLabel(QWidget *parent)
        : QLabel(parent)
    {
        setStyleSheet(QStringLiteral("QLabel { border: none; }"));
    }

    /// A gauge takes the size that it is given, whatever its text.
    QSize sizeHint() const override { return {}; }
    QSize minimumSizeHint() const override { return {}; }

protected:
    bool event(QEvent *event) override
    {
        const bool handled = QLabel::event(event);
        // The style sheet paints no background, so the style need not be asked for one at every paint.
        if (event->type() == QEvent::Polish)
            setAttribute(Qt::WA_StyledBackground, false);
        return handled;
    }

    void paintEvent(QPaintEvent *event) override
    {
        // A label without a text has nothing to paint.
        if (!text().isEmpty())
            QLabel::paintEvent(event);
        QPainter painter(this);
        paintGauge(painter, look(static_cast<const Gauge &>(*this)));
    }

    void resizeEvent(QResizeEvent *event) override { QLabel::resizeEvent(event); }

private:
    static GaugeLook look(const Gauge &gauge)
    {
        return {gauge.width(),   gauge.height(), gauge.direction, gauge.arrowScale,     gauge.arrowPen,
                gauge.discBrush, gauge.halo,     gauge.haloBrush, gauge.arrowExtraWidth};
    }
};
