#include "engine/fingerThread.h"

#include "engine/CommandQueue.h"
#include "engine/Discovery.h"
#include "engine/Sampling.h"
#include "engine/SensorBus.h"
#include "link/SensorLink.h"

#include <QDebug>
#include <QEventLoop>
#include <QScopedValueRollback>
#include <QTimer>

#include <array>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto kReadInterval = 1ms;
constexpr auto kRateInterval = 1000ms;
constexpr auto kTickInterval = 10ms;
constexpr auto kLostInterval = 200ms;

constexpr int kEntryCount = 6;
/// Channels in the order of the adapter boards 1 to 5, then the channel that needs no board.
constexpr std::array<uint8_t, kEntryCount> kEntryMasks = {0x10, 0x20, 0x40, 0x08, 0x04, 0x01};

/// On a serial line the sweep takes a step every this many ticks and one.
constexpr uint16_t kTicksBetweenSweepSteps = 100;

// Who started or stopped the timers; shows in the log only.
constexpr int kTagStop = 0;
constexpr int kTagLinkUp = 1;
constexpr int kTagLinkLost = 2;

} // namespace

/// The link and the steps that a tick is made of.
struct fingerThread::Work
{
    Work(SensorLink::Kind kind, QVector<info_ts> &entries)
        : link(kind)
        , discovery(bus, entries)
        , sampling(bus, entries)
        , commands(bus, entries)
    {}

    SensorLink link;
    SensorBus bus{link};
    Discovery discovery;
    Sampling sampling;
    CommandQueue commands;
};

uint8_t fingerThread::curInf = 0;
uint16_t fingerThread::scanCnt = 0;

fingerThread::fingerThread(uint8_t kind, QObject *parent)
    : QObject(parent)
    , inf(kind)
{
    qDebug("fingerThread new");
}

fingerThread::~fingerThread()
{
    qDebug("fingerThread delete");
    timerStop(kTagStop);
    closeLink();
}

void fingerThread::started()
{
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
    if (m_work)
        m_work->bus.invalidate();
    timerStop(kTagStop);
    Q_EMIT si_stop();
}

void fingerThread::uartInit()
{
    makeLink();
    qDebug("uart init");
    // Only the serial interface has one bus and no turns; an earlier worker may have stopped in the middle of
    // its own.
    curInf = 0;
    m_work->link.scan();
}

void fingerThread::ch341Init()
{
    qDebug("ch341 init");
    makeLink();
}

void fingerThread::ch347Init()
{
    makeLink();
}

void fingerThread::makeLink()
{
    m_work = std::make_unique<Work>(static_cast<SensorLink::Kind>(inf), infoList);
    connect(&m_work->link, &SensorLink::devicesListed, this, &fingerThread::publishList);
    connect(&m_work->link, &SensorLink::opened, this, &fingerThread::linkUp);
    connect(&m_work->link, &SensorLink::closed, this, &fingerThread::linkLost);
    connect(&m_work->discovery, &Discovery::found, this, &fingerThread::announce);
    connect(&m_work->sampling, &Sampling::sampled, this, &fingerThread::si_updateData1);
    connect(&m_work->sampling, &Sampling::rates, this, &fingerThread::si_setHz1);
    connect(&m_work->sampling, &Sampling::lost, this, &fingerThread::si_disconnectedSensor);
    connect(&m_work->commands, &CommandQueue::answered, this, &fingerThread::si_cmdRsp1);
    connect(&m_work->commands, &CommandQueue::failed, this, &fingerThread::si_cmdRspErr1);
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
    timerRead = newTimer([this] { guardedTick(); });
    timerHz = newTimer([this] { m_work->sampling.publishRates(); });
    timerTick = newTimer([this] { m_work->sampling.advanceTicks(kTickInterval); });
    timerLost = newTimer([this] {
        if (m_work)
            m_work->sampling.ageSensors(kLostInterval);
    });
    timerLost->start(kLostInterval);
}

QTimer *fingerThread::newTimer(std::function<void()> handler)
{
    auto *timer = new QTimer(this);
    timer->setTimerType(Qt::PreciseTimer);
    connect(timer, &QTimer::timeout, this, std::move(handler));
    return timer;
}

void fingerThread::publishList(const QStringList &names)
{
    QVector<QString> list = names.toVector();
    if (!m_offered.isEmpty())
        list.append(m_offered);
    if (list == ch341List)
        return;
    Q_EMIT si_ch341ListUpdate(list);
    ch341List = list;
}

void fingerThread::sl_connectCh341(QString id)
{
    if (!m_work || linkIsOpen() || !ch341List.contains(id))
        return;
    qDebug("%s connect", m_work->link.name());
    m_work->link.open(id);
}

void fingerThread::sl_disconnectCh341()
{
    if (linkIsOpen())
        m_work->link.close();
}

void fingerThread::sl_cmdReq1(uint8_t infIdx, uint8_t addr, QByteArray cmd, uint16_t rspLen)
{
    if (m_work)
        m_work->commands.append({infIdx, addr, cmd, rspLen});
}

int fingerThread::readInf(uint8_t addr, QByteArray &out, int len, int /*timeout*/)
{
    if (!m_work)
        return 0;
    SensorLink &link = m_work->link;
    return link.isBridge() ? link.read(addr, reinterpret_cast<uint8_t *>(out.data()), len)
                           : link.takeReceived(out);
}

int fingerThread::writeInf(uint8_t addr, const uint8_t *data, int len)
{
    return m_work ? m_work->link.write(addr, data, len) : 0;
}

uint8_t fingerThread::setSync()
{
    if (m_work)
        m_work->discovery.setSync();
    return 0;
}

bool fingerThread::linkIsOpen() const
{
    return m_work && m_work->link.isOpen();
}

void fingerThread::closeLink()
{
    if (m_work)
        m_work->link.disconnect(this);
    sl_disconnectCh341();
}

void fingerThread::linkUp()
{
    qDebug("%s connected", m_work->link.name());
    Q_EMIT si_ch341Connected();
    if (m_work->link.isBridge()) {
        m_work->link.setUpSensorBus();
        m_work->link.pulsePcaReset();
        m_work->bus.probeMultiplexer();
    }
    timerStart(kTagLinkUp);
}

void fingerThread::linkLost()
{
    qDebug("%s disconnect", m_work->link.name());
    m_work->bus.invalidate();
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

void fingerThread::timerStart(int tag)
{
    qDebug("start:%d", tag);
    timerRead->start(kReadInterval);
    timerHz->start(kRateInterval);
    timerTick->start(kTickInterval);
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
    // A link that is closed and opened again while a tick pumps events has started the timer anew, and a
    // timer started anew does fire inside its own handler.
    if (m_inTick)
        return;
    const QScopedValueRollback<bool> inTick(m_inTick, true);
    tick();
}

void fingerThread::tick()
{
    SensorBus &bus = m_work->bus;
    bus.beginTick();
    bus.setPcaState(infoList[curInf].pca);
    if (sweepIsDue() && m_work->discovery.scanSensor(curInf) == Outcome::Void)
        return;
    if (m_work->sampling.readSensors() == Outcome::Void)
        return;
    bus.setPcaState(infoList[curInf].pca);
    m_work->commands.wrCmdSensor(curInf);
    if (inf != kSerial)
        curInf = static_cast<uint8_t>((curInf + 1) % kEntryCount);
    bus.setPcaState(0);
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

void fingerThread::announce(const sensor_ts &sensor)
{
    qDebug("find sensor：%d inf:%d addr:0x%02x pack:%d sn:%s", sensor.prg, sensor.infIdx, sensor.addr,
           sensor.pack.size(), sensor.sn.toUtf8().constData());
    Q_EMIT si_connectedSensor(sensor);
    infoList[sensor.infIdx].sensors.append(sensor);
}
