// Processor time of the recorder without a window beyond the worker's own: fourteen sensors at the full rate
// of a bus of 100 kHz, recorded in each format, beside the same worker whose samples are only counted.
// Target: less than a tenth of a core.

#include "bench/bus_of_sensors.h"
#include "companions/tactile-log/LogRun.h"
#include "engine/fingerThread.h"
#include "sim/SimCh347.h"
#include "sim/SimUsb.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdio>
#include <ctime>

namespace {

constexpr int kSensors = 14;
constexpr int kSettleMs = 1000;
constexpr int kMeasureMs = 10000;
constexpr int kBridgeId = 7001;

double secondsOf(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// A bridge whose sensors are all found before the bus takes its time.
struct Bridge
{
    Bridge()
    {
        plugSensors(chip->bus(), kSensors);
        usb.plug(chip);
    }

    std::shared_ptr<SimCh347> chip = std::make_shared<SimCh347>(std::make_shared<SimI2cBus>(), kBridgeId);
    SimUsb usb;
};

/// Reports and returns the share of a core that this thread took, in which the samples are written or
/// counted. The worker and the bench have threads of their own.
template<typename Count>
double report(const char *what, Bridge &bridge, Count samples)
{
    bridge.chip->bus().setTimed(true);
    runFor(kSettleMs);
    const double thread = secondsOf(CLOCK_THREAD_CPUTIME_ID);
    const double process = secondsOf(CLOCK_PROCESS_CPUTIME_ID);
    const double wall = secondsOf(CLOCK_MONOTONIC);
    const auto before = samples();
    runFor(kMeasureMs);
    const double time = secondsOf(CLOCK_MONOTONIC) - wall;
    const double share = (secondsOf(CLOCK_THREAD_CPUTIME_ID) - thread) / time;
    std::printf("%-12s %5.1f samples/s, %.4f of a core; with worker and bench %.3f\n", what,
                static_cast<double>(samples() - before) / time, share,
                (secondsOf(CLOCK_PROCESS_CPUTIME_ID) - process) / time);
    return share;
}

double countOnly()
{
    Bridge bridge;
    QThread thread;
    auto *worker = new fingerThread(fingerThread::kCh347, nullptr); // deleted when the thread has finished
    worker->moveToThread(&thread);
    int sensors = 0;
    quint64 samples = 0;
    QObject::connect(&thread, &QThread::started, worker, &fingerThread::started);
    QObject::connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
    QObject::connect(worker, &fingerThread::si_connectedSensor, qApp, [&sensors] { ++sensors; });
    QObject::connect(worker, &fingerThread::si_updateData1, qApp, [&samples] { ++samples; });
    QObject::connect(worker, &fingerThread::si_ch341ListUpdate, qApp, [worker] {
        QMetaObject::invokeMethod(worker, [worker] { worker->sl_connectCh341(QString::number(kBridgeId)); });
    });
    thread.start();
    while (sensors < kSensors)
        runFor(kSettleMs);
    const double share = report("counted", bridge, [&samples] { return samples; });
    thread.quit();
    thread.wait();
    return share;
}

double record(const char *what, LogFormat format)
{
    const QTemporaryDir folder;
    Bridge bridge;
    LogOptions options;
    options.link = fingerThread::kCh347;
    options.folder = folder.path();
    options.format = format;
    LogRun run(options);
    while (run.log().sensorCount() < kSensors)
        runFor(kSettleMs);
    return report(what, bridge, [&run] { return run.log().samples(); });
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    registerSensorTypes();
    const double counted = countOnly();
    const double most = std::max({record("csv", LogFormat::Csv), record("jsonl", LogFormat::JsonLines),
                                  record("recording", LogFormat::Recording)});
    std::printf("recording takes %.4f of a core more than counting (target below 0.1)\n", most - counted);
    return 0;
}
