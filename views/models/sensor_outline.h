#pragma once

#include "views/models/drawings.h"

#include <QPainterPath>
#include <QSize>

/// Line drawing of a kind of sensor, in pixels of the picture at its smallest size.
struct SensorOutline
{
    QSize size;
    QPainterPath body;  ///< filled and stroked
    QPainterPath lines; ///< finer strokes inside and beside the body
};

SensorOutline sensorOutline(Outline outline);
