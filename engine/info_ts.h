#pragma once

#include "engine/sensor_ts.h"

/// One of the worker's bus entries: a channel of the multiplexer with the sensors behind it.
struct info_ts
{
    uint8_t pca = 0;         ///< value of the multiplexer's control register that connects this bus
    uint8_t scanAddr = 0x60; ///< sweep position; the next address to try is one more
    QVector<sensor_ts> sensors;
};
