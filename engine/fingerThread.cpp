#include "engine/fingerThread.h"

#include "link/SerialPortPoller.h"
#include "link/class_ch341.h"
#include "link/class_ch347.h"
#include "link/class_uart.h"
#include "link/pca9548.h"

#include <QDebug>
#include <QEventLoop>
#include <QScopedValueRollback>

#include <array>
#include <utility>

namespace {

constexpr int kReadIntervalMs = 1;
constexpr int kRateIntervalMs = 1000;
constexpr int kTickIntervalMs = 10;
constexpr int kLostIntervalMs = 200;

constexpr int kEntryCount = 6;
/// Channels in the order of the adapter boards 1 to 5, then the channel that needs no board.
constexpr std::array<uint8_t, kEntryCount> kEntryMasks = {0x10, 0x20, 0x40, 0x08, 0x04, 0x01};

/// Room for two of the longest frames and some noise, kept from read to read.
constexpr int kReceiveCapacity = 512;
constexpr unsigned int kBaudRate = 460800;
/// On a serial line the sweep takes a step every this many ticks and one.
constexpr uint16_t kTicksBetweenSweepSteps = 100;
/// An absent multiplexer reads as more than this.
constexpr uint8_t kHighestIdleSelection = 1;
constexpr uint16_t kIdlePeriodMs = 50;

// Who started or stopped the timers; shows in the log only.
constexpr int kTagStop = 0;
constexpr int kTagLinkUp = 1;
constexpr int kTagLinkLost = 2;

} // namespace

uint8_t fingerThread::curInf = 0;
uint16_t fingerThread::scanCnt = 0;

fingerThread::fingerThread(uint8_t kind, QObject *parent)
    : QObject(parent)
    , inf(kind)
{
    qDebug("fingerThread new");
    m_received.reserve(kReceiveCapacity);
}

fingerThread::~fingerThread()
{
    qDebug("fingerThread delete");
    timerStop(kTagStop);
    closeLink();
}

void fingerThread::started()
{
    pcaFind = 1;
    if (inf == kSerial)
        uartInit();
    else if (inf == kCh341)
        ch341Init();
    else if (inf == kCh347)
        ch347Init();
    setUpEntries();
    setUpTimers();

    QEventLoop loop;
    connect(this, &fingerThread::si_stop, &loop, &QEventLoop::quit);
    loop.exec();

    // A thread that is told to quit ends the loop too, and may do so before stop() has had its turn.
    if (!m_stopped)
        stop();
    qDebug("fingerThread exit");
    reportAllGone();
    stop();
    closeLink();
}

void fingerThread::stop()
{
    qDebug("fingerThread stop");
    m_stopped = true;
    m_tickIsVoid = true;
    timerStop(kTagStop);
    Q_EMIT si_stop();
}

void fingerThread::uartInit()
{
    uart = new class_uart(this);
    qDebug("uart init");
    connect(uart, &class_uart::si_close, this, [this] { linkLost("uart disconnect"); });
    connect(uart, &class_uart::si_openSuccess, this, [this] { linkUp("uart connected"); });
    auto *poller = new SerialPortPoller(uart);
    connect(poller, &SerialPortPoller::portsListed, this,
            [this](const QStringList &names) { publishList(names.toVector()); });
    // Only the serial interface has one bus and no turns; an earlier worker may have stopped in the middle of its own.
    curInf = 0;
    uart->scan(false);
}

void fingerThread::ch341Init()
{
    qDebug("ch341 init");
    ch341 = new class_ch341(this);
    wireBridge(ch341, "ch341 connected", "ch341 disconnect");
}

void fingerThread::ch347Init()
{
    ch347 = new class_ch347(this);
    wireBridge(ch347, "ch347 connected", "ch347 disconnect");
}

template<typename Bridge>
void fingerThread::wireBridge(Bridge *bridge, const char *upWords, const char *lostWords)
{
    connect(bridge, &Bridge::si_updateList, this, [this](const QVector<uint16_t> &ids) {
        QVector<QString> names;
        for (const uint16_t id : ids)
            names.append(QString::number(id));
        publishList(names);
    });
    connect(bridge, &Bridge::si_disconnected, this, [this, lostWords] { linkLost(lostWords); });
    connect(bridge, &Bridge::si_connected, this, [this, bridge, upWords] { bridgeUp(bridge, upWords); });
}

void fingerThread::setUpEntries()
{
    infoList.clear();
    infoList.resize(kEntryCount);
    for (int i = 0; i < kEntryCount; ++i)
        infoList[i].pca = kEntryMasks[static_cast<size_t>(i)];
}

void fingerThread::setUpTimers()
{
    timerRead = newTimer(&fingerThread::guardedTick);
    timerHz = newTimer(&fingerThread::publishRates);
    timerTick = newTimer(&fingerThread::advanceTicks);
    timerLost = newTimer(&fingerThread::ageSensors);
    if (ch341 != nullptr)
        connect(timerLost, &QTimer::timeout, ch341, &class_ch341::keepNoticed);
    timerLost->start(kLostIntervalMs);
}

QTimer *fingerThread::newTimer(void (fingerThread::*handler)())
{
    auto *timer = new QTimer(this);
    timer->setTimerType(Qt::PreciseTimer);
    connect(timer, &QTimer::timeout, this, handler);
    return timer;
}

void fingerThread::publishList(const QVector<QString> &names)
{
    if (names == ch341List)
        return;
    Q_EMIT si_ch341ListUpdate(names);
    ch341List = names;
}

void fingerThread::sl_connectCh341(QString id)
{
    if (linkIsOpen() || !ch341List.contains(id))
        return;
    if (uart != nullptr) {
        qDebug("uart connect");
        uart->open(id, kBaudRate);
    } else if (ch341 != nullptr) {
        qDebug("ch341 connect");
        ch341->open(static_cast<uint16_t>(id.toUInt()));
    } else if (ch347 != nullptr) {
        qDebug("ch347 connect");
        ch347->open(static_cast<uint16_t>(id.toUInt()));
    }
    sensorNum = 0;
}

void fingerThread::sl_disconnectCh341()
{
    if (!linkIsOpen())
        return;
    if (uart != nullptr)
        uart->close();
    else if (ch341 != nullptr)
        ch341->close();
    else if (ch347 != nullptr)
        ch347->close();
}

bool fingerThread::linkIsOpen() const
{
    if (uart != nullptr)
        return uart->port->isOpen();
    if (ch341 != nullptr)
        return ch341->isOpen();
    return ch347 != nullptr && ch347->isOpen();
}

void fingerThread::closeLink()
{
    for (QObject *link : std::initializer_list<QObject *>{uart, ch341, ch347}) {
        if (link != nullptr)
            link->disconnect(this);
    }
    sl_disconnectCh341();
}

void fingerThread::linkUp(const char *words)
{
    qDebug("%s", words);
    Q_EMIT si_ch341Connected();
    timerStart(kTagLinkUp);
}

template<typename Bridge>
void fingerThread::bridgeUp(Bridge *bridge, const char *words)
{
    qDebug("%s", words);
    Q_EMIT si_ch341Connected();
    setUpSensorBus(*bridge);
    pulsePcaReset(*bridge);
    probeMultiplexer();
    timerStart(kTagLinkUp);
}

void fingerThread::probeMultiplexer()
{
    setPcaState(0);
    const bool found = getPcaState() <= kHighestIdleSelection;
    qDebug("%s", found ? "find pca" : "not find pca");
    pcaFind = found ? 1 : 0;
}

void fingerThread::linkLost(const char *words)
{
    qDebug("%s", words);
    m_tickIsVoid = true;
    reportAllGone();
    Q_EMIT si_ch341Disconnected();
    timerStop(kTagLinkLost);
}

void fingerThread::reportAllGone()
{
    for (info_ts &entry : infoList) {
        const QVector<sensor_ts> gone = std::exchange(entry.sensors, {});
        for (const sensor_ts &sensor : gone)
            Q_EMIT si_disconnectedSensor(sensor);
    }
}

uint8_t fingerThread::setPcaState(uint8_t value)
{
    const bool onBridge = ch341 != nullptr || ch347 != nullptr;
    if (onBridge && pcaFind == 1)
        writeInf(kPca9548Address, &value, 1);
    return value;
}

uint8_t fingerThread::getPcaState()
{
    uint8_t state = 0;
    readBridge(kPca9548Address, &state, 1);
    return state;
}

void fingerThread::timerStart(int tag)
{
    qDebug("start:%d", tag);
    timerRead->start(kReadIntervalMs);
    timerHz->start(kRateIntervalMs);
    timerTick->start(kTickIntervalMs);
}

void fingerThread::timerStop(int tag)
{
    qDebug("stop:%d", tag);
    for (QTimer *timer : {timerRead, timerHz, timerTick}) {
        if (timer != nullptr)
            timer->stop();
    }
}

void fingerThread::guardedTick()
{
    // A link that is closed and opened again while a tick pumps events has started the timer anew, and a timer started
    // anew does fire inside its own handler.
    if (m_inTick)
        return;
    const QScopedValueRollback<bool> inTick(m_inTick, true);
    m_tickIsVoid = false;
    tick();
}

void fingerThread::tick()
{
    setPcaState(infoList[curInf].pca);
    if (sweepIsDue())
        scanSensor(curInf);
    if (!m_tickIsVoid)
        readSensor(curInf);
    if (m_tickIsVoid)
        return;
    setPcaState(infoList[curInf].pca);
    wrCmdSensor(curInf);
    if (inf != kSerial)
        curInf = static_cast<uint8_t>((curInf + 1) % kEntryCount);
    setPcaState(0);
}

bool fingerThread::sweepIsDue()
{
    if (inf != kSerial)
        return true;
    if (++scanCnt <= kTicksBetweenSweepSteps)
        return false;
    scanCnt = 0;
    return true;
}

template<typename Action>
void fingerThread::forEachSensor(Action action)
{
    for (info_ts &entry : infoList) {
        for (sensor_ts &sensor : entry.sensors)
            action(sensor);
    }
}

void fingerThread::publishRates()
{
    forEachSensor([this](sensor_ts &sensor) {
        Q_EMIT si_setHz1(sensor.infIdx, sensor.addr, sensor.hz, sensor.rHz);
        sensor.periodMs = sensor.hz == 0 ? kIdlePeriodMs : static_cast<uint16_t>(1000 / sensor.hz);
        sensor.hz = 0;
        sensor.rHz = 0;
    });
}

void fingerThread::advanceTicks()
{
    forEachSensor([](sensor_ts &sensor) {
        if (sensor.tick < sensor.periodMs)
            sensor.tick = static_cast<uint16_t>(sensor.tick + kTickIntervalMs);
    });
}

void fingerThread::ageSensors()
{
    forEachSensor([](sensor_ts &sensor) {
        sensor.silentMs = static_cast<uint16_t>(sensor.silentMs + kLostIntervalMs);
    });
}
