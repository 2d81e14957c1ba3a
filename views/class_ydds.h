#pragma once

#include "views/GaugeLabel.h"

#include <cstdint>

/// The gauge as tile of a sensorForm. Draws as ydds does.
class class_ydds : public GaugeLabel<class_ydds>
{
    Q_OBJECT

public:
    explicit class_ydds(QWidget *parent = nullptr)
        : GaugeLabel(parent)
    {}

    uint16_t direction = kNoArrow; ///< degrees clockwise from up
    float arrowScale = 0.0F;       ///< 0.0 to 1.0
    QPen arrowPen{Qt::black, 2};
    QPen discPen{Qt::black, 2}; ///< drawn in the disc's colour and one pixel wide; its style counts
    QBrush discBrush{Qt::white};
    QBrush haloBrush;
    bool halo = false;
    uint16_t arrowExtraWidth = 0;
};
