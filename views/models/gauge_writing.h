#pragma once

#include "views/gauge_painting.h"

#include <QColor>
#include <QString>

#include <cstdint>

/// Writers for both gauge classes. What a gauge shows already costs no painting.

template<typename Gauge>
void setDisc(Gauge *gauge, const QColor &colour)
{
    if (gauge->discBrush.color() == colour)
        return;
    gauge->discBrush.setColor(colour);
    gauge->update();
}

template<typename Gauge>
void setArrow(Gauge *gauge, uint16_t direction, float scale)
{
    const bool sameArrow = gauge->direction == direction &&
                           (direction == kNoArrow || qFuzzyCompare(1 + gauge->arrowScale, 1 + scale));
    gauge->direction = direction;
    gauge->arrowScale = scale;
    if (!sameArrow)
        gauge->update();
}

/// A force as the pictures show it: newtons, two decimals.
inline QString forceText(float newtons)
{
    return QString::number(static_cast<double>(newtons), 'f', 2);
}
