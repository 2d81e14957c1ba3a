#pragma once

#include "tests/engine/worker_harness.h"
#include "tests/support/LinkBench.h"
#include "tests/support/test_bytes.h"

/// A link of any kind with what hangs on it, and a worker.
struct WorkerBench : LinkBench
{
    explicit WorkerBench(Kind link, SimI2cBus::Multiplexer multiplexer = SimI2cBus::Multiplexer::Present)
        : LinkBench(link, multiplexer)
        , harness(static_cast<uint8_t>(link))
    {}

    bool connect() { return harness.connectTo(id()); }
    bool waitFor(const char *event) { return harness.waitForEvent(QLatin1String(event)); }
    bool connectAndFind(const char *event = "found 0/0x61") { return connect() && waitFor(event); }

    WorkerHarness harness;
};
