#pragma once

#include "engine/fingerThread.h"
#include "engine/sensor_ts.h"
#include "tests/support/log_capture.h"

#include <QObject>
#include <QStringList>
#include <QThread>
#include <QVector>

/// A worker in a thread of its own, wired as the monitor window does it. Keeps what the worker reports, in
/// the thread of the test. Stops at destruction at the latest.
class WorkerHarness : public QObject
{
    Q_OBJECT

public:
    struct Sample
    {
        uint8_t infIdx;
        uint8_t addr;
        QByteArray frame;
    };
    struct Rate
    {
        int hz;
        int rHz;
    };
    struct Response
    {
        bool good;
        QByteArray rsp;
    };

    explicit WorkerHarness(uint8_t kind);
    ~WorkerHarness() override { stop(); }

    void start();
    /// Waits until the device is listed, connects it and waits until the link is up.
    bool connectTo(const QString &device);
    void disconnectLink() { Q_EMIT si_disconnectCh341(); }
    void request(uint8_t infIdx, uint8_t addr, const QByteArray &frame, uint16_t rspLen)
    {
        Q_EMIT si_cmdReq1(infIdx, addr, frame, rspLen);
    }
    /// Ends the worker as the monitor does, or its thread first; then takes what it reported on its way out.
    void stop(bool quitFirst = false);

    /// The usual time is enough for two sweeps over all addresses of a serial line: on a busy machine a
    /// sensor may miss its first 10 ms.
    bool waitForEvent(const QString &event);
    /// All events so far.
    QString story() const { return events.join(QLatin1String(", ")); }
    int sampleCount(uint8_t infIdx, uint8_t addr) const;

    LogCapture log;
    QVector<QString> devices;
    /// "up", "down", "found 0/0x61", "gone 0/0x61", in the order in which they came.
    QStringList events;
    QVector<sensor_ts> found;
    QVector<Sample> samples;
    QVector<Rate> rates;
    QVector<Response> responses;

Q_SIGNALS:
    void si_workerThreadStop();
    void si_connectCh341(QString id);
    void si_disconnectCh341();
    void si_cmdReq1(uint8_t infIdx, uint8_t addr, QByteArray cmd, uint16_t rspLen);

private:
    void wire(fingerThread *worker);
    void keep(fingerThread *worker);

    const uint8_t m_kind;
    QThread m_thread;
};
