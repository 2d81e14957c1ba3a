#pragma once

#include "views/GaugeLabel.h"

#include <cstdint>

/// Round gauge of one force point: a disc whose colour stands for the normal force, and an arrow for the
/// tangential force. Views write the fields and call update(); the label text, if any, lies below the disc.
class ydds : public GaugeLabel<ydds>
{
    Q_OBJECT

public:
    explicit ydds(QWidget *parent = nullptr)
        : GaugeLabel(parent)
    {}

    uint16_t direction = kNoArrow; ///< degrees clockwise from up
    float arrowScale = 0.0F;       ///< 0.0 to 1.0
    QPen arrowPen{Qt::black, 2};
    QPen discPen{Qt::black, 2}; ///< drawn in the disc's colour and one pixel wide; its style counts
    QBrush discBrush{Qt::white};
    bool halo = false;
    QBrush haloBrush;
    uint16_t arrowExtraWidth = 0;
};
