#include "sim/SimSerialBus.h"

#include "sim/SimPty.h"
#include "sim/SimRegistry.h"
#include "sim/punctual_wait.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>

namespace {

constexpr int kBitsPerByte = 10;

/// Two talkers at once: a zero bit of either wins.
QByteArray overlay(const QByteArray &one, const QByteArray &other)
{
    QByteArray mixed = one.size() >= other.size() ? one : other;
    const int shared = std::min(one.size(), other.size());
    for (int i = 0; i < shared; ++i)
        mixed[i] = static_cast<char>(one.at(i) & other.at(i));
    return mixed;
}

std::chrono::nanoseconds byteTimeAt(int baud)
{
    using namespace std::chrono_literals;
    return baud > 0 ? std::chrono::nanoseconds(1s) * kBitsPerByte / baud : 0ns;
}

std::optional<SimTime> earlier(std::optional<SimTime> one, std::optional<SimTime> other)
{
    if (one && other)
        return std::min(*one, *other);
    return one ? one : other;
}

timespec toTimespec(std::chrono::nanoseconds time)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    return {seconds.count(), (time - seconds).count()};
}

} // namespace

SimSerialBus::SimSerialBus()
    : m_wakeEvent(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC))
    , m_pty(std::make_unique<SimPty>())
{
    m_thread = std::thread([this] { run(); });
    SimRegistry::instance().add(this);
}

SimSerialBus::~SimSerialBus()
{
    SimRegistry::instance().remove(this);
    m_stop = true;
    wake();
    m_thread.join();
    close(m_wakeEvent);
}

QString SimSerialBus::portName() const
{
    const std::lock_guard lock(m_mutex);
    return m_pty ? m_pty->portName() : QString();
}

int SimSerialBus::baudRate() const
{
    const std::lock_guard lock(m_mutex);
    return m_pty ? m_pty->baudRate() : 0;
}

void SimSerialBus::plug(const std::shared_ptr<SimSensor> &sensor)
{
    sensor->powerCycle();
    const std::lock_guard lock(m_mutex);
    m_sensors.push_back(sensor);
    wake(); // its boot loader may have something to say
}

void SimSerialBus::unplug(const std::shared_ptr<SimSensor> &sensor)
{
    const std::lock_guard lock(m_mutex);
    m_sensors.erase(std::remove(m_sensors.begin(), m_sensors.end(), sensor), m_sensors.end());
}

std::vector<std::shared_ptr<SimSensor>> SimSerialBus::sensors() const
{
    const std::lock_guard lock(m_mutex);
    return m_sensors;
}

void SimSerialBus::removePort()
{
    setWantPort(false);
}

void SimSerialBus::restorePort()
{
    setWantPort(true);
}

void SimSerialBus::setPaced(bool paced)
{
    const std::lock_guard lock(m_mutex);
    m_paced = paced;
}

void SimSerialBus::run()
{
    makeThreadPunctual();
    while (!m_stop) {
        waitForEvent();
        const std::lock_guard lock(m_mutex);
        followPort();
        if (!m_pty)
            continue;
        m_wire.setByteTime(m_paced ? byteTimeAt(m_pty->baudRate()) : std::chrono::nanoseconds(0));
        readHost();
        collectFromBootLoaders(SimClock::now());
        const QByteArray due = m_wire.takeDue(SimClock::now());
        if (!due.isEmpty())
            m_pty->write(due);
    }
}

void SimSerialBus::wake()
{
    eventfd_write(m_wakeEvent, 1);
}

// Only this thread opens and closes the terminal, so its descriptor cannot change under the wait.
void SimSerialBus::waitForEvent()
{
    std::array<pollfd, 2> descriptors{
        {{m_wakeEvent, POLLIN, 0}, {m_pty ? m_pty->descriptor() : -1, POLLIN, 0}}};
    const std::optional<SimTime> due = earlier(m_wire.nextDue(), m_bootLoaderDue);
    const auto wait =
        due ? std::max(*due - SimClock::now(), SimClock::duration::zero()) : SimClock::duration::zero();
    const timespec timeout = toTimespec(wait);
    ppoll(descriptors.data(), descriptors.size(), due ? &timeout : nullptr, nullptr);
    eventfd_t ignored = 0;
    eventfd_read(m_wakeEvent, &ignored);
}

void SimSerialBus::followPort()
{
    if (m_wantPort == (m_pty != nullptr))
        return;
    m_wire.clear();
    m_parser = SimRequestParser();
    if (m_wantPort)
        m_pty = std::make_unique<SimPty>();
    else
        m_pty.reset();
    m_portFollowed.notify_all();
}

void SimSerialBus::setWantPort(bool want)
{
    std::unique_lock lock(m_mutex);
    m_wantPort = want;
    wake();
    m_portFollowed.wait(lock, [this] { return m_wantPort == (m_pty != nullptr); });
}

void SimSerialBus::readHost()
{
    const SimTime now = SimClock::now();
    const QByteArray bytes = m_pty->readAll();
    if (bytes.isEmpty())
        return;
    m_hostLineFree = std::max(m_hostLineFree, now);
    if (passToBootLoaders(bytes))
        return;
    for (const SimRequestParser::Item &item : m_parser.feed(bytes, now)) {
        m_hostLineFree += item.bytes.size() * m_wire.byteTime();
        dispatch(item, m_hostLineFree);
    }
}

// While an image comes in, the line belongs to the loader: blocks may hold anything that looks like a poll.
bool SimSerialBus::passToBootLoaders(const QByteArray &bytes)
{
    bool claimed = false;
    for (const auto &sensor : m_sensors) {
        SimBootLoader &loader = sensor->bootLoader();
        if (loader.baudRate() != m_pty->baudRate() || !loader.claims(bytes, SimClock::now()))
            continue;
        loader.receiveStream(bytes, m_hostLineFree + bytes.size() * m_wire.byteTime());
        claimed = true;
    }
    if (claimed) {
        m_hostLineFree += bytes.size() * m_wire.byteTime();
        m_journal.add(SimRecord::Kind::BootLoader, 0, bytes);
    }
    return claimed;
}

void SimSerialBus::collectFromBootLoaders(SimTime now)
{
    m_bootLoaderDue.reset();
    for (const auto &sensor : m_sensors) {
        SimBootLoader &loader = sensor->bootLoader();
        if (!loader.isActive(now))
            continue;
        const QByteArray bytes = loader.takeDue(now);
        // At another baud rate the host could not make sense of it.
        if (!bytes.isEmpty() && loader.baudRate() == m_pty->baudRate())
            m_wire.schedule(bytes, now);
        m_bootLoaderDue = earlier(m_bootLoaderDue, loader.nextDue());
    }
}

void SimSerialBus::dispatch(const SimRequestParser::Item &item, SimTime end)
{
    const bool poll = item.kind == SimRecord::Kind::Poll;
    m_journal.add(item.kind, poll ? static_cast<uint8_t>(item.bytes.at(0)) : uint8_t(0), item.bytes);
    if (item.kind != SimRecord::Kind::Rubbish)
        send(deliveriesFor(item, m_pty->baudRate()), end);
}

std::vector<SimDelivery> SimSerialBus::deliveriesFor(const SimRequestParser::Item &item, int baud)
{
    std::vector<SimDelivery> deliveries;
    for (const auto &sensor : m_sensors) {
        if (sensor->baudRate() != 0 && sensor->baudRate() != baud)
            continue;
        const bool poll = item.kind == SimRecord::Kind::Poll;
        const SimDelivery delivery = poll ? sensor->answerPoll(static_cast<uint8_t>(item.bytes.at(0)))
                                          : sensor->answerRequest(item.bytes);
        if (delivery.bytes.isEmpty())
            continue;
        m_journal.add(poll ? SimRecord::Kind::Sample : SimRecord::Kind::Answer, sensor->address(),
                      delivery.bytes);
        deliveries.push_back(delivery);
    }
    return deliveries;
}

void SimSerialBus::send(const std::vector<SimDelivery> &deliveries, SimTime start)
{
    QByteArray mixed;
    for (const SimDelivery &delivery : deliveries) {
        if (delivery.delay.count() > 0)
            m_wire.schedule(delivery.bytes, start + delivery.delay);
        else
            mixed = overlay(mixed, delivery.bytes);
    }
    if (!mixed.isEmpty())
        m_wire.schedule(mixed, start);
}
