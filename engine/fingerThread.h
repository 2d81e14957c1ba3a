#pragma once

#include "engine/cmd_ts.h"
#include "engine/info_ts.h"
#include "engine/sensor_ts.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVector>

#include <cstdint>

class class_ch341;
class class_ch347;
class class_uart;

/// The acquisition worker. It alone owns the link: opens it, finds the sensors, reads their samples, carries out commands.
///
/// Made in the user interface thread, moved to a thread of its own, whose QThread::started runs started(). From then on
/// everything happens in that thread; others speak to it by queued signals only, for which registerSensorTypes() must have
/// run. One worker exists at a time. A `kind` beyond the three has no link and finds nothing.
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

    /// Raw access to the link for code in the worker's thread. readInf appends to `out` what a serial port holds; from a
    /// bridge it reads `len` bytes into `out`, which is that long already. Both return the number of bytes; `timeout` has
    /// no effect on any link.
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
    struct Exchange;
    struct Reply;

    /// Where in a pass of a serial wait the millisecond of sleep lies.
    enum class SleepOrder { BeforeTaking, AfterTaking };

    void uartInit();
    void ch341Init();
    void ch347Init();
    template<typename Bridge>
    void wireBridge(Bridge *bridge, const char *upWords, const char *lostWords);
    template<typename Bridge>
    void bridgeUp(Bridge *bridge, const char *words);
    void setUpEntries();
    void setUpTimers();
    QTimer *newTimer(void (fingerThread::*handler)());
    void publishList(const QVector<QString> &names);
    void linkUp(const char *words);
    void linkLost(const char *words);
    bool linkIsOpen() const;
    void closeLink();
    void reportAllGone();
    void probeMultiplexer();
    void timerStart(int tag);
    void timerStop(int tag);
    void guardedTick();
    void tick();
    bool sweepIsDue();
    void publishRates();
    void advanceTicks();
    void ageSensors();
    template<typename Action>
    void forEachSensor(Action action);

    uint8_t setPcaState(uint8_t value);
    uint8_t getPcaState();

    void scanSensor(uint8_t infIdx);
    bool answersProbe(uint8_t addr);
    void discover(uint8_t infIdx, uint8_t addr);
    sensor_ts identify(uint8_t infIdx, uint8_t addr, int frameLength);
    void announce(const sensor_ts &sensor);
    void getCap(uint8_t addr, uint8_t *buf, int len);
    uint8_t setSensorSendType(uint8_t addr, uint8_t type);
    uint8_t setOffset(uint8_t addr, uint8_t offset);
    uint8_t getSensorPrg(uint8_t addr);
    QString getSN(uint8_t addr);
    uint8_t discoveryFrameAddress(uint8_t serialAddress) const;
    Reply exchange(uint8_t addr, const Exchange &what);
    QByteArray awaitOnBridge(uint8_t addr, const Exchange &what);
    QByteArray awaitOnPort(const Exchange &what);
    void logFailure(const char *words) const;

    void readSensor(uint8_t infIdx);
    void readEntry(info_ts &entry);
    int getSensorData(uint8_t addr, sensor_ts &sensor);
    bool fetchFromPort(uint8_t addr, QVector<uint8_t> &pack);
    void takeSample(sensor_ts &sensor);
    void dropSilent(info_ts &entry, int index);
    int readBridge(uint8_t addr, uint8_t *buf, int len);
    void pollSensor(uint8_t addr);
    int collectFromPort(QByteArray &received, int enough, int passes,
                        SleepOrder order = SleepOrder::BeforeTaking);

    void wrCmdSensor(uint8_t infIdx);
    bool isTurnOf(const cmd_ts &command, uint8_t infIdx);
    int awaitResponse(const cmd_ts &command, QByteArray &response);
    int awaitResponseOnBridge(const cmd_ts &command, QByteArray &response);
    int awaitResponseOnPort(const cmd_ts &command, QByteArray &response);
    void finishCommand(uint8_t infIdx, const cmd_ts &command, const QByteArray &response);
    void failAttempt(uint8_t infIdx, const cmd_ts &command, const QByteArray &response);

    // All workers of the process share these; each value survives from one worker to the next.
    static uint8_t curInf;   ///< bus entry of the current tick
    static uint16_t scanCnt; ///< serial ticks since the last sweep step
    static uint8_t tryCnt;   ///< attempts left for the head command

    uint8_t inf;
    class_ch341 *ch341 = nullptr;
    class_ch347 *ch347 = nullptr;
    class_uart *uart = nullptr;
    QList<cmd_ts> cmdList;       ///< being worked off, head first
    QList<cmd_ts> appendCmdList; ///< arrived and not merged yet
    QList<sensor_ts> sensorList; ///< every sensor ever found
    QVector<info_ts> infoList;   ///< the six bus entries
    QVector<QString> ch341List;  ///< the device list reported last
    QTimer *timerRead = nullptr;
    QTimer *timerHz = nullptr;
    QTimer *timerTick = nullptr;
    QTimer *timerLost = nullptr;
    uint16_t readInt = 50;
    uint8_t pcaFind = 0;    ///< 1 when channels are to be selected
    uint16_t sensorNum = 0; ///< live sensors on all buses

    QByteArray m_received; ///< of the serial read in progress
    bool m_stopped = false;
    bool m_inTick = false;
    /// The link went away, or stop() came, while the current tick pumped events: whatever it was about is void.
    bool m_tickIsVoid = false;
};
