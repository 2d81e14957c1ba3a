#include "companions/tactile-log/LogRun.h"

#include "engine/fingerThread.h"
#include "protocol/class_sensorCmd.h"
#include "protocol/command.h"
#include "protocol/payloads.h"

#include <QCoreApplication>
#include <QFileInfo>

using namespace std::chrono_literals;

namespace {

constexpr auto kLookInterval = 250ms;
/// Ports are listed twice a second, bridges at once.
constexpr auto kPatienceForDevice = 3s;
/// A serial port does not say that it was unplugged. A look at every address takes half as long.
constexpr auto kLongestSilence = 10s;

bool isOver(const QElapsedTimer &timer, std::chrono::milliseconds limit)
{
    return timer.hasExpired(limit.count());
}

bool isPath(const QString &device)
{
    return device.startsWith(QLatin1Char('/'));
}

} // namespace

LogRun::LogRun(LogOptions options, QObject *parent)
    : QObject(parent)
    , m_options(std::move(options))
    , m_log(m_options.format, m_options.folder)
    , m_worker(new fingerThread(m_options.link))
{
    registerSensorTypes();
    if (isPath(m_options.device))
        m_worker->offerAlso(m_options.device);
    m_worker->moveToThread(&m_thread);
    wireWorker();
    connect(&m_look, &QTimer::timeout, this, &LogRun::lookForDevice);
    m_look.start(kLookInterval);
    m_waiting.start();
    if (m_options.duration)
        QTimer::singleShot(*m_options.duration, this, &LogRun::end);
    m_thread.start();
}

LogRun::~LogRun()
{
    stopWorker();
}

void LogRun::wireWorker()
{
    connect(&m_thread, &QThread::started, m_worker, &fingerThread::started);
    connect(&m_thread, &QThread::finished, m_worker, &fingerThread::deleteLater);
    connect(this, &LogRun::connectWanted, m_worker, &fingerThread::sl_connectCh341);
    connect(this, &LogRun::disconnectWanted, m_worker, &fingerThread::sl_disconnectCh341);
    connect(m_worker, &fingerThread::si_ch341ListUpdate, this, &LogRun::takeList);
    connect(m_worker, &fingerThread::si_ch341Connected, this, [this] {
        m_connected = true;
        m_wasConnected = true;
        m_silence.restart();
    });
    connect(m_worker, &fingerThread::si_ch341Disconnected, this, [this] {
        m_connected = false;
        m_asked = false;
    });
    connect(this, &LogRun::requestWanted, m_worker, &fingerThread::sl_cmdReq1);
    connect(m_worker, &fingerThread::si_connectedSensor, this, &LogRun::addSensor);
    connect(m_worker, &fingerThread::si_disconnectedSensor, this, [this](const sensor_ts &sensor) {
        --m_liveSensors;
        m_silence.restart();
        m_log.removeSensor(sensor);
    });
    connect(m_worker, &fingerThread::si_updateData1, this, &LogRun::take);
}

bool LogRun::isWanted(uint8_t addr) const
{
    return m_options.addresses.isEmpty() || m_options.addresses.contains(addr);
}

void LogRun::addSensor(const sensor_ts &sensor)
{
    ++m_liveSensors;
    if (!isWanted(sensor.addr))
        return;
    // A sensor tells forces only when it is asked to, as the first page of a panel does.
    const auto command = static_cast<uint8_t>(Command::SetSendType);
    Q_EMIT requestWanted(sensor.infIdx, sensor.addr,
                         requestFrame(sensor.type, command, payloadByte7(kForceSendType)),
                         class_sensorCmd::getRspLen(command));
    const QString notice = m_log.addSensor(sensor);
    if (!notice.isEmpty())
        Q_EMIT noticed(notice);
}

void LogRun::takeList(const QVector<QString> &devices)
{
    m_devices = QStringList(devices.begin(), devices.end());
}

void LogRun::lookForDevice()
{
    if (m_options.listsOnly) {
        if (!m_devices.isEmpty() || isOver(m_waiting, kPatienceForDevice)) {
            Q_EMIT listed(m_devices);
            finish(LogEnd::Done, {});
        }
        return;
    }
    if (m_connected) {
        lookAtLine();
        return;
    }
    if (m_options.device.isEmpty() && m_devices.size() > 1) {
        finish(LogEnd::DeviceUnclear, QStringLiteral("several devices: %1. Name one with --device.")
                                          .arg(m_devices.join(QStringLiteral(", "))));
        return;
    }
    const QString device = m_options.device.isEmpty() ? m_devices.value(0) : m_options.device;
    const bool isThere = m_devices.contains(device) && (!isPath(device) || QFileInfo::exists(device));
    if (isThere && !m_asked) {
        m_asked = true;
        m_waiting.restart();
        Q_EMIT connectWanted(device);
    } else if (m_wasConnected) {
        m_asked = false; // it has been there and may come back
    } else if (isOver(m_waiting, kPatienceForDevice)) {
        giveUpOn(device);
    }
}

void LogRun::giveUpOn(const QString &device)
{
    if (m_asked)
        finish(LogEnd::DeviceRefused,
               QStringLiteral("%1 cannot be opened. End other programs that use it; docs/connecting.md tells "
                              "who may.")
                   .arg(device));
    else if (device.isEmpty())
        finish(LogEnd::DeviceMissing, QStringLiteral("no device. Plug one in, or choose another --link."));
    else
        finish(LogEnd::DeviceMissing, QStringLiteral("%1 is not there. --list tells what is.").arg(device));
}

void LogRun::lookAtLine()
{
    if (m_options.link == fingerThread::kSerial && m_liveSensors == 0 && isOver(m_silence, kLongestSilence))
        Q_EMIT disconnectWanted();
}

void LogRun::take(uint8_t infIdx, uint8_t addr, const QVector<uint8_t> &pack)
{
    if (m_ended || m_log.take(infIdx, addr, pack))
        return;
    const QString place = m_options.folder.isEmpty() ? QStringLiteral("standard output") : m_log.lastFile();
    if (m_log.isReaderGone())
        finish(LogEnd::ReaderGone, QStringLiteral("nobody reads the output any more."));
    else
        finish(LogEnd::NotWritten, QStringLiteral("%1: %2. Make room, or choose another place with --out.")
                                       .arg(place, m_log.error()));
}

void LogRun::end()
{
    // What the worker has handed over waits in the queue of events.
    stopWorker();
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
    if (m_log.samples() > 0 || m_options.listsOnly)
        finish(LogEnd::Done, {});
    else
        finish(LogEnd::NoSample,
               QStringLiteral("no sensor of a known model was heard. Look at power, cable and --sensor."));
}

void LogRun::stopWorker()
{
    m_look.stop();
    m_thread.quit();
    m_thread.wait();
}

void LogRun::finish(LogEnd why, const QString &complaint)
{
    if (m_ended)
        return;
    m_ended = true;
    m_complaint = complaint;
    m_look.stop();
    Q_EMIT ended(why);
}

QString LogRun::status() const
{
    const QString device = m_connected ? QString() : QStringLiteral("waiting for the device, ");
    return device +
           QStringLiteral("sensors: %1, samples: %2, lost: %3%4")
               .arg(m_log.sensorCount())
               .arg(m_log.samples())
               .arg(m_log.lost())
               .arg(m_log.lastFile().isEmpty() ? QString() : QStringLiteral(", ") + m_log.lastFile());
}
