#pragma once

#include "sim/SimI2cBus.h"

#include <QEventLoop>
#include <QTimer>

#include <memory>

/// Sensors with 62-byte frames that make 500 samples a second, spread over the multiplexer's channels in the
/// order in which the worker numbers its buses.
inline void plugSensors(SimI2cBus &bus, int count)
{
    constexpr int channels[] = {4, 5, 6, 3, 2, 0};
    for (int i = 0; i < count; ++i) {
        const auto sensor = std::make_shared<SimSensor>(0x02, static_cast<uint8_t>(0x61 + i));
        sensor->setSampleRateHz(500);
        bus.plug(sensor, channels[i % 6]);
    }
}

/// Lets the event loop run for so many milliseconds.
inline void runFor(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}
