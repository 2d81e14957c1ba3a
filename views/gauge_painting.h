#pragma once

#include <QBrush>
#include <QPen>

#include <cstdint>

class QPainter;

/// Direction value that stands for "no arrow".
constexpr uint16_t kNoArrow = 0xFFFF;

/// What a gauge looks like at one moment; refers to the gauge's own pens and brushes.
struct GaugeLook
{
    int width;
    int height;
    uint16_t direction; ///< degrees clockwise from up, or kNoArrow
    float arrowScale;   ///< arrow length, 0.0 to 1.0
    const QPen &arrowPen;
    const QPen &discPen;     ///< drawn in the disc's colour and one pixel of the device wide
    const QBrush &discBrush; ///< opaque white draws no disc
    bool halo;
    const QBrush &haloBrush; ///< opaque white draws no halo
    uint16_t arrowExtraWidth;
};

/// Disc radius and arrow width of a gauge, whole pixels.
struct GaugeSize
{
    int radius;
    int arrowWidth;
};

GaugeSize gaugeSize(int width, int height, bool halo);

/// Halo, disc and arrow in the middle of a width x height area.
void paintGauge(QPainter &painter, const GaugeLook &look);
