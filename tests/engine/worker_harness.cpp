#include "tests/engine/worker_harness.h"

#include <QtTest>

#include <algorithm>

WorkerHarness::WorkerHarness(uint8_t kind)
    : m_kind(kind)
{
    registerSensorTypes();
    start();
}

void WorkerHarness::start()
{
    auto *worker = new fingerThread(m_kind);
    keep(worker);
    worker->moveToThread(&m_thread);
    wire(worker);
    m_thread.start();
}

void WorkerHarness::wire(fingerThread *worker)
{
    connect(&m_thread, &QThread::started, worker, &fingerThread::started);
    connect(&m_thread, &QThread::finished, worker, &QObject::deleteLater);
    connect(this, &WorkerHarness::si_workerThreadStop, worker, &fingerThread::stop);
    connect(this, &WorkerHarness::si_connectCh341, worker, &fingerThread::sl_connectCh341);
    connect(this, &WorkerHarness::si_disconnectCh341, worker, &fingerThread::sl_disconnectCh341);
    connect(this, &WorkerHarness::si_cmdReq1, worker, &fingerThread::sl_cmdReq1);
}

void WorkerHarness::keep(fingerThread *worker)
{
    const auto nameOf = [](const char *what, const sensor_ts &sensor) {
        return QString::asprintf("%s %d/0x%02x", what, sensor.infIdx, sensor.addr);
    };
    connect(worker, &fingerThread::si_ch341ListUpdate, this,
            [this](const QVector<QString> &l) { devices = l; });
    connect(worker, &fingerThread::si_ch341Connected, this, [this] { events.append(QStringLiteral("up")); });
    connect(worker, &fingerThread::si_ch341Disconnected, this,
            [this] { events.append(QStringLiteral("down")); });
    connect(worker, &fingerThread::si_connectedSensor, this, [this, nameOf](const sensor_ts &sensor) {
        found.append(sensor);
        events.append(nameOf("found", sensor));
    });
    connect(worker, &fingerThread::si_disconnectedSensor, this,
            [this, nameOf](const sensor_ts &sensor) { events.append(nameOf("gone", sensor)); });
    connect(worker, &fingerThread::si_updateData1, this,
            [this](uint8_t infIdx, uint8_t addr, const QVector<uint8_t> &pack) {
                const QByteArray frame(reinterpret_cast<const char *>(pack.constData()), pack.size());
                samples.append({infIdx, addr, frame});
            });
    connect(worker, &fingerThread::si_setHz1, this, [this](uint8_t, uint8_t, uint16_t hz, uint16_t rHz) {
        rates.append({hz, rHz});
    });
    const auto keepResponse = [this](bool good) {
        return [this, good](uint8_t, uint8_t, const QByteArray &, const QByteArray &rsp) {
            responses.append({good, rsp});
        };
    };
    connect(worker, &fingerThread::si_cmdRsp1, this, keepResponse(true));
    connect(worker, &fingerThread::si_cmdRspErr1, this, keepResponse(false));
}

bool WorkerHarness::connectTo(const QString &device)
{
    if (!QTest::qWaitFor([&] { return devices.contains(device); }, 20000))
        return false;
    const auto upCount = events.count(QStringLiteral("up"));
    Q_EMIT si_connectCh341(device);
    return QTest::qWaitFor([&] { return events.count(QStringLiteral("up")) > upCount; }, 20000);
}

void WorkerHarness::stop(bool quitFirst)
{
    if (quitFirst)
        m_thread.quit();
    Q_EMIT si_workerThreadStop();
    m_thread.quit();
    m_thread.wait();
    QCoreApplication::sendPostedEvents(this);
}

bool WorkerHarness::waitForEvent(const QString &event)
{
    return QTest::qWaitFor([&] { return events.contains(event); }, 40000);
}

int WorkerHarness::sampleCount(uint8_t infIdx, uint8_t addr) const
{
    return static_cast<int>(
        std::count_if(samples.cbegin(), samples.cend(), [infIdx, addr](const Sample &sample) {
            return sample.infIdx == infIdx && sample.addr == addr;
        }));
}
