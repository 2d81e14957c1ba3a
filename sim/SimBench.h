#pragma once

#include "sim/SimCh341.h"
#include "sim/SimCh347.h"
#include "sim/SimSerialBus.h"
#include "sim/SimUsb.h"

#include <memory>
#include <vector>

/// A bench ready to be shown: a serial line with six sensors, a CH341 with a multiplexer and six sensors on
/// as many boards, three of them with one address, and a CH347 with a multiplexer and two sensors. All are of
/// different kinds and feel moving fingers. Transfers on the two-wire buses take no time. Everything is
/// plugged in from construction to destruction.
class SimBench
{
public:
    SimBench();

    SimSerialBus &serialBus() { return m_serialBus; }
    SimUsb &usb() { return m_usb; }
    const std::shared_ptr<SimCh341> &ch341() const { return m_ch341; }
    const std::shared_ptr<SimCh347> &ch347() const { return m_ch347; }

    static constexpr int kSerialSensors = 6;
    static constexpr int kCh341Sensors = 6;
    static constexpr int kCh347Sensors = 2;
    /// Numbers under which the bridges stand in device lists.
    static constexpr int kCh341Id = 5002;
    static constexpr int kCh347Id = 7001;

private:
    SimSerialBus m_serialBus;
    std::shared_ptr<SimCh341> m_ch341;
    std::shared_ptr<SimCh347> m_ch347;
    SimUsb m_usb;
};
