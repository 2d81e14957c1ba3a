// Frames per second that the worker brings from one sensor with 62-byte frames on a paced line of 460800
// baud, against what its rules of reading allow: the poll pair and the frame take their time on the wire, the
// port is looked at in passes of one 1 ms sleep each, and every 101st tick spends ten passes on an address
// where nobody answers. What a 1 ms sleep really takes is the machine's affair, so a second thread goes
// through the same passes at the same time, with nothing to do in them: its rate is the allowance.

#include "engine/fingerThread.h"
#include "sim/SimSerialBus.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

/// Poll pair and frame, ten bits a byte.
constexpr double kWireMs = (2 + 62) * 10 * 1000 / 460800.0;
constexpr int kTicksPerProbe = 101;
constexpr int kPassesOfProbe = 10;
constexpr int kFindMs = 20000;
constexpr int kMeasureMs = 8000;

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// A reader that costs nothing, in a thread of its own while this lives.
class IdealReader
{
public:
    IdealReader()
        : m_thread([this] { run(); })
    {}
    ~IdealReader()
    {
        m_stop = true;
        m_thread.join();
    }
    int frames() const { return m_frames; }
    double meanSleepMs() const { return m_sleptMs / m_sleeps; }

private:
    void run()
    {
        while (!m_stop) {
            for (int tick = 0; tick < kTicksPerProbe; ++tick)
                readFrame();
            for (int pass = 0; pass < kPassesOfProbe; ++pass)
                sleep();
        }
    }
    /// A pass takes what had arrived when its sleep began.
    void readFrame()
    {
        const auto start = Clock::now();
        bool whole = false;
        while (!whole) {
            whole = millisecondsSince(start) >= kWireMs;
            sleep();
        }
        m_frames = m_frames + 1;
    }
    void sleep()
    {
        const auto start = Clock::now();
        QThread::msleep(1);
        m_sleptMs = m_sleptMs + millisecondsSince(start);
        m_sleeps = m_sleeps + 1;
    }

    std::atomic<bool> m_stop{false};
    std::atomic<int> m_frames{0};
    std::atomic<double> m_sleptMs{0};
    std::atomic<int> m_sleeps{0};
    std::thread m_thread;
};

void measure(const std::atomic<int> &frames)
{
    const IdealReader ideal;
    const int before = frames;
    const auto start = Clock::now();
    QEventLoop loop;
    QTimer::singleShot(kMeasureMs, &loop, &QEventLoop::quit);
    loop.exec();
    const double seconds = millisecondsSince(start) / 1000;
    const double arrivedHz = (frames - before) / seconds;
    const double allowedHz = ideal.frames() / seconds;
    std::printf("1 ms sleep %.3f ms, arrived %.1f Hz, allowed %.1f Hz, ratio %.3f\n", ideal.meanSleepMs(),
                arrivedHz, allowedHz, arrivedHz / allowedHz);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    registerSensorTypes();

    SimSerialBus bus;
    const auto sensor = std::make_shared<SimSensor>(0x02, 0x61);
    sensor->setSampleRateHz(3000);
    bus.plug(sensor);

    std::atomic<int> frames{0};
    QThread thread;
    auto *worker = new fingerThread(fingerThread::kSerial);
    worker->moveToThread(&thread);
    QObject::connect(&thread, &QThread::started, worker, &fingerThread::started);
    QObject::connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
    QObject::connect(worker, &fingerThread::si_updateData1, &app, [&frames] { ++frames; });
    const QString port = bus.portName();
    // Queued: the worker accepts the devices of a list once it has told of it.
    QObject::connect(
        worker, &fingerThread::si_ch341ListUpdate, worker, [worker, port] { worker->sl_connectCh341(port); },
        Qt::QueuedConnection);

    QEventLoop found;
    QObject::connect(worker, &fingerThread::si_connectedSensor, &found, &QEventLoop::quit);
    QTimer::singleShot(kFindMs, &found, [&found] { found.exit(1); });
    thread.start();
    const bool isFound = found.exec() == 0;
    if (isFound)
        measure(frames);
    else
        std::puts("no sensor was found");

    QMetaObject::invokeMethod(worker, &fingerThread::stop, Qt::QueuedConnection);
    thread.quit();
    thread.wait();
    return isFound ? 0 : 1;
}
