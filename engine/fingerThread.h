#pragma once

#include "engine/info_ts.h"
#include "engine/sensor_ts.h"

#include <QByteArray>
#include <QObject>
#include <QStringList>
#include <QVector>

#include <cstdint>
#include <functional>
#include <memory>

class QTimer;

/// The acquisition worker. It alone owns the link: opens it, finds the sensors, reads their samples, carries
/// out commands.
///
/// Made in the user interface thread, moved to a thread of its own, whose QThread::started runs started().
/// From then on everything happens in that thread; others speak to it by queued signals only, for which
/// registerSensorTypes() must have run. One worker exists at a time. A `kind` beyond the three has no link
/// and finds nothing.
class fingerThread : public QObject
{
    Q_OBJECT

public:
    /// Values of `inf`.
    static constexpr uint8_t kSerial = 0;
    static constexpr uint8_t kCh341 = 1;
    static constexpr uint8_t kCh347 = 2;

    explicit fingerThread(uint8_t kind, QObject *parent = nullptr);
    ~fingerThread() override;

    /// A device beyond those that are listed, such as a pseudo-terminal; stands at the end of every list. To
    /// be told before the worker starts.
    void offerAlso(const QString &device) { m_offered = device; }

    /// Raw access to the link for code in the worker's thread. readInf appends to `out` what a serial port
    /// holds; from a bridge it reads `len` bytes into `out`, which is that long already. Both return the
    /// number of bytes; `timeout` has no effect on any link.
    int readInf(uint8_t addr, QByteArray &out, int len, int timeout);
    int writeInf(uint8_t addr, const uint8_t *data, int len);
    /// Tells all sensors to start a conversion. Always 0.
    uint8_t setSync();

Q_SIGNALS:
    /// Never emitted.
    void si_exit();
    void si_ch341Connected();
    /// The link, of whatever kind, went down; all its sensors were reported gone before.
    void si_ch341Disconnected();
    /// Names of the devices that can be connected: port names, or bridge ids in decimal.
    void si_ch341ListUpdate(QVector<QString> ch341List);
    /// Once a second for every live sensor: samples it made, and samples that arrived.
    void si_setHz1(uint8_t infIdx, uint8_t addr, uint16_t hz, uint16_t rHz);
    /// A new sample frame, whole, of the model's length.
    void si_updateData1(uint8_t infIdx, uint8_t addr, QVector<uint8_t> pack);
    /// `infIdx` is the bus of the attempt that succeeded or failed last.
    void si_cmdRsp1(uint8_t infIdx, uint8_t addr, QByteArray req, QByteArray rsp);
    void si_cmdRspErr1(uint8_t infIdx, uint8_t addr, QByteArray req, QByteArray rsp);
    void si_stop();
    void si_connectedSensor(sensor_ts sensor);
    void si_disconnectedSensor(sensor_ts sensor);

public Q_SLOTS:
    /// Works until stop() or until the thread is told to quit; returns only then.
    void started();
    void stop();
    /// Opens a device of the list reported last; does nothing for another one or when a link is open.
    void sl_connectCh341(QString id);
    void sl_disconnectCh341();
    /// Queues a finished request frame. For `rspLen` see cmd_ts.
    void sl_cmdReq1(uint8_t infIdx, uint8_t addr, QByteArray cmd, uint16_t rspLen);

private:
    struct Work;

    void uartInit();
    void ch341Init();
    void ch347Init();
    void makeLink();
    void setUpEntries();
    void setUpTimers();
    QTimer *newTimer(std::function<void()> handler);
    void publishList(const QStringList &names);
    void linkUp();
    void linkLost();
    bool linkIsOpen() const;
    void closeLink();
    void reportAllGone();
    void timerStart(int tag);
    void timerStop(int tag);
    void guardedTick();
    void tick();
    bool sweepIsDue();
    void announce(const sensor_ts &sensor);

    // All workers of the process share these; each value survives from one worker to the next.
    static uint8_t curInf;   ///< bus entry of the current tick
    static uint16_t scanCnt; ///< serial ticks since the last sweep step

    uint8_t inf;
    QVector<info_ts> infoList;  ///< the six bus entries
    QVector<QString> ch341List; ///< the device list reported last
    QTimer *timerRead = nullptr;
    QTimer *timerHz = nullptr;
    QTimer *timerTick = nullptr;
    QTimer *timerLost = nullptr;
    std::unique_ptr<Work> m_work; ///< made and used in the worker's thread; null when there is no link
    QString m_offered;
    bool m_stopped = false;
    bool m_inTick = false;
};
