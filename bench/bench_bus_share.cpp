// What the worker makes of a bridge's bus: the time it takes for its ticks against the time that their bits
// need on the wire at 100 kHz, and what goes over the USB cable for one frame.

#include "bench/bus_of_sensors.h"
#include "engine/fingerThread.h"
#include "engine/sensor_ts.h"
#include "sim/SimCh341.h"
#include "sim/SimCh347.h"
#include "sim/SimUsb.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace {

constexpr uint8_t kCh341 = 1;
constexpr uint8_t kCh347 = 2;
constexpr int kSettleMs = 500;
constexpr int kMeasureMs = 4000;
constexpr int kDiscoveryMs = 60000;
constexpr int kListedMs = 400;

struct Counts
{
    int sensors = 0;
    int frames = 0;
};

void waitForSensors(const Counts &counts, int wanted)
{
    for (int waited = 0; counts.sensors < wanted && waited < kDiscoveryMs; waited += kSettleMs)
        runFor(kSettleMs);
}

/// Readings that only grow.
struct Readings
{
    SimTraffic traffic;
    double busSeconds;
    double lateSeconds;
    int frames;
    SimTime time;
};

Readings read(SimBridge &bridge, const Counts &counts)
{
    const auto seconds = [](std::chrono::nanoseconds time) {
        return std::chrono::duration<double>(time).count();
    };
    return {bridge.traffic(), seconds(bridge.bus().busTime()), seconds(bridge.bus().lateness()),
            counts.frames, SimClock::now()};
}

void report(const char *bridgeName, SimBridge &bridge, const Counts &counts)
{
    const Readings before = read(bridge, counts);
    runFor(kMeasureMs);
    const Readings after = read(bridge, counts);
    const double wall = std::chrono::duration<double>(after.time - before.time).count();
    const double wire = after.busSeconds - before.busSeconds;
    const double late = after.lateSeconds - before.lateSeconds;
    const double frames = std::max(1, after.frames - before.frames);
    std::printf("%s, %2d sensors: %.3f of the bus time (%.3f without what the machine's sleeps were late), "
                "%.1f new frames/s\n",
                bridgeName, counts.sensors, wall / wire, (wall - late) / wire, frames / wall);
    std::printf("    a frame: %.1f transfers, %.0f bytes out, %.0f bytes in\n",
                (after.traffic.packets - before.traffic.packets) / frames,
                (after.traffic.bytesOut - before.traffic.bytesOut) / frames,
                (after.traffic.bytesIn - before.traffic.bytesIn) / frames);
}

void measure(uint8_t kind, const char *bridgeName, const std::shared_ptr<SimBridge> &bridge, uint16_t id,
             int sensors)
{
    SimUsb usb;
    usb.plug(bridge);
    plugSensors(bridge->bus(), sensors);
    QThread thread;
    auto *worker = new fingerThread(kind, nullptr); // deleted when the thread has finished
    worker->moveToThread(&thread);
    Counts counts;
    QObject::connect(&thread, &QThread::started, worker, &fingerThread::started);
    QObject::connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
    QObject::connect(worker, &fingerThread::si_connectedSensor, qApp, [&counts] { ++counts.sensors; });
    QObject::connect(worker, &fingerThread::si_updateData1, qApp, [&counts] { ++counts.frames; });
    thread.start();
    runFor(kListedMs);
    QMetaObject::invokeMethod(worker, [worker, id] { worker->sl_connectCh341(QString::number(id)); });
    waitForSensors(counts, sensors);
    bridge->bus().setTimed(true);
    runFor(kSettleMs);
    report(bridgeName, *bridge, counts);
    QMetaObject::invokeMethod(worker, [worker] { worker->stop(); });
    thread.quit();
    thread.wait();
    QCoreApplication::processEvents();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    registerSensorTypes();
    for (const int sensors : {1, 14}) {
        measure(kCh341, "CH341", std::make_shared<SimCh341>(std::make_shared<SimI2cBus>(), 5, 2), 5002,
                sensors);
        measure(kCh347, "CH347", std::make_shared<SimCh347>(std::make_shared<SimI2cBus>(), 7001), 7001,
                sensors);
    }
    return 0;
}
