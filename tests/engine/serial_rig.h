#pragma once

#include "sim/SimSerialBus.h"
#include "tests/engine/worker_harness.h"
#include "tests/support/hex.h"

#include <memory>

/// A simulated serial line and a worker on it.
struct SerialRig
{
    SimSerialBus bus;
    WorkerHarness harness{0};

    std::shared_ptr<SimSensor> plug(uint8_t prg, uint8_t address)
    {
        auto sensor = std::make_shared<SimSensor>(prg, address);
        bus.plug(sensor);
        return sensor;
    }
    bool connect() { return harness.connectTo(bus.portName()); }
    bool connectAndFind(const QString &event = QStringLiteral("found 0/0x61"))
    {
        return connect() && harness.waitForEvent(event);
    }
    int sent(const QByteArray &request) { return bus.journal().count(SimRecord::Kind::Request, request); }
};
