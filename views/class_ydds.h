#pragma once

#include "views/gauge_painting.h"

#include <QLabel>

#include <cstdint>

/// The gauge as tile of a sensorForm. Draws as ydds does.
class class_ydds : public QLabel
{
    Q_OBJECT

public:
    explicit class_ydds(QWidget *parent = nullptr);

    uint16_t direction = kNoArrow; ///< degrees clockwise from up
    float arrowScale = 0.0F;       ///< 0.0 to 1.0
    QPen arrowPen{Qt::black, 2};
    QPen discPen{Qt::black, 2}; ///< drawn in the disc's colour and one pixel wide, whatever stands here
    QBrush discBrush{Qt::white};
    QBrush haloBrush;
    bool halo = false;
    uint16_t arrowExtraWidth = 0;

    /// A gauge takes the size that it is given, whatever its text.
    QSize sizeHint() const override { return {}; }
    QSize minimumSizeHint() const override { return {}; }

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
};
