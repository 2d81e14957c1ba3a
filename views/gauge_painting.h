#pragma once

#include <QBrush>
#include <QPen>

#include <cstdint>

class QPainter;

/// Direction value that stands for "no arrow".
constexpr uint16_t kNoArrow = 0xFFFF;

/// What a gauge shows.
struct GaugeLook
{
    uint16_t direction = kNoArrow; ///< degrees clockwise from up
    float arrowScale = 0.0F;       ///< arrow length, 0.0 to 1.0
    QPen arrowPen{Qt::black, 2};
    QPen discPen{Qt::black,
                 2}; ///< drawn in the disc's colour and one pixel of the device wide; its style counts
    QBrush discBrush{Qt::white}; ///< opaque white draws no disc
    bool halo = false;
    QBrush haloBrush; ///< opaque white draws no halo
    uint16_t arrowExtraWidth = 0;
};

/// Disc radius and arrow width of a gauge, whole pixels.
struct GaugeSize
{
    int radius;
    int arrowWidth;
};

GaugeSize gaugeSize(int width, int height, bool halo);

/// Halo, disc and arrow in the middle of a width x height area.
void paintGauge(QPainter &painter, int width, int height, const GaugeLook &look);
