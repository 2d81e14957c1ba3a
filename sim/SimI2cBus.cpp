#include "sim/SimI2cBus.h"

#include "sim/punctual_wait.h"

#include <algorithm>

namespace {

constexpr int kBitsPerByte = 9;
constexpr int kBitsPerCondition = 1;

} // namespace

SimI2cBus::SimI2cBus(Multiplexer multiplexer)
{
    if (multiplexer == Multiplexer::Present)
        m_multiplexer.emplace();
}

void SimI2cBus::plug(const std::shared_ptr<SimSensor> &sensor, int channel)
{
    sensor->powerCycle();
    const std::lock_guard lock(m_mutex);
    m_places.push_back({sensor, channel});
}

void SimI2cBus::unplug(const std::shared_ptr<SimSensor> &sensor)
{
    const std::lock_guard lock(m_mutex);
    const auto isPlace = [&sensor](const Place &place) { return place.sensor == sensor; };
    m_places.erase(std::remove_if(m_places.begin(), m_places.end(), isPlace), m_places.end());
    const auto listens = [&sensor](const Listener &listener) { return listener.sensor == sensor; };
    m_listeners.erase(std::remove_if(m_listeners.begin(), m_listeners.end(), listens), m_listeners.end());
}

uint8_t SimI2cBus::selectedChannels() const
{
    const std::lock_guard lock(m_mutex);
    return controlByte();
}

void SimI2cBus::setMultiplexerDead(bool dead)
{
    const std::lock_guard lock(m_mutex);
    if (m_multiplexer)
        m_multiplexer->setDead(dead);
}

void SimI2cBus::setChannelStuck(int channel, SimPca9548::Stuck stuck)
{
    const std::lock_guard lock(m_mutex);
    if (m_multiplexer)
        m_multiplexer->setStuck(channel, stuck);
}

void SimI2cBus::refuse(uint8_t address, int times)
{
    const std::lock_guard lock(m_mutex);
    m_refusals[address] += times;
}

void SimI2cBus::setTimed(bool timed)
{
    const std::lock_guard lock(m_mutex);
    m_timed = timed;
}

std::chrono::nanoseconds SimI2cBus::busTime() const
{
    const std::lock_guard lock(m_mutex);
    return m_busTime;
}

std::chrono::nanoseconds SimI2cBus::lateness() const
{
    const std::lock_guard lock(m_mutex);
    return m_lateness;
}

void SimI2cBus::setClockHz(int clockHz)
{
    const std::lock_guard lock(m_mutex);
    m_bitTime = std::chrono::nanoseconds(1000000000 / clockHz);
}

void SimI2cBus::setResetLevel(bool high)
{
    const std::lock_guard lock(m_mutex);
    if (m_multiplexer)
        m_multiplexer->setResetLevel(high);
}

void SimI2cBus::start()
{
    const std::lock_guard lock(m_mutex);
    finish();
    m_expectsAddress = true;
    spendBits(kBitsPerCondition);
}

bool SimI2cBus::send(uint8_t byte)
{
    const std::lock_guard lock(m_mutex);
    spendBits(kBitsPerByte);
    if (m_expectsAddress)
        return address(byte);
    m_bytes.append(static_cast<char>(byte));
    return m_acknowledged;
}

uint8_t SimI2cBus::receive()
{
    const std::lock_guard lock(m_mutex);
    spendBits(kBitsPerByte);
    const int position = m_bytes.size();
    uint8_t byte = 0xFF;
    if (m_acknowledged && m_addressByte >> 1 == SimPca9548::kAddress)
        byte = controlByte();
    for (const Listener &listener : m_listeners) {
        if (listener.toRead.isEmpty())
            continue;
        byte &= position < listener.toRead.size() ? static_cast<uint8_t>(listener.toRead.at(position))
                                                  : uint8_t(0);
    }
    m_bytes.append(static_cast<char>(byte));
    return byte;
}

void SimI2cBus::stop()
{
    const std::lock_guard lock(m_mutex);
    finish();
    spendBits(kBitsPerCondition);
}

void SimI2cBus::pause(std::chrono::nanoseconds time)
{
    const std::lock_guard lock(m_mutex);
    m_busTime += time;
    m_unsettled += time;
}

void SimI2cBus::settle()
{
    std::unique_lock lock(m_mutex);
    if (!m_timed) {
        m_unsettled = std::chrono::nanoseconds(0);
        return;
    }
    m_busFree = std::max(m_busFree, SimClock::now()) + m_unsettled;
    m_unsettled = std::chrono::nanoseconds(0);
    const SimTime end = m_busFree;
    lock.unlock();
    waitPunctually(end);
    lock.lock();
    m_lateness += SimClock::now() - end;
}

bool SimI2cBus::address(uint8_t byte)
{
    m_expectsAddress = false;
    m_inTransfer = true;
    m_addressByte = byte;
    const auto address = static_cast<uint8_t>(byte >> 1);
    const bool reads = (byte & 1) != 0;
    m_acknowledged = false;
    if (isRefused())
        return false;
    for (const Place &place : m_places) {
        if (reaches(place) && place.sensor->acknowledges(address))
            m_listeners.push_back({place.sensor, reads ? place.sensor->beginReadI2c() : QByteArray()});
    }
    m_acknowledged = !m_listeners.empty() || (m_multiplexer && m_multiplexer->acknowledges(address));
    return m_acknowledged;
}

bool SimI2cBus::isRefused()
{
    int &refusals = m_refusals[m_addressByte >> 1];
    if (refusals == 0)
        return false;
    --refusals;
    return true;
}

void SimI2cBus::finish()
{
    if (m_inTransfer) {
        const bool reads = (m_addressByte & 1) != 0;
        const auto done = reads ? SimRecord::Kind::Read : SimRecord::Kind::Write;
        m_journal.add(m_acknowledged ? done : SimRecord::Kind::Refused, m_addressByte >> 1, m_bytes,
                      controlByte());
        if (!reads && m_acknowledged)
            deliver();
    }
    m_inTransfer = false;
    m_expectsAddress = false;
    m_acknowledged = false;
    m_listeners.clear();
    m_bytes.clear();
}

void SimI2cBus::deliver()
{
    if (m_bytes.isEmpty())
        return;
    if (m_multiplexer && m_multiplexer->acknowledges(m_addressByte >> 1))
        m_multiplexer->write(static_cast<uint8_t>(m_bytes.back()));
    for (const Listener &listener : m_listeners)
        listener.sensor->writeI2c(m_bytes);
}

void SimI2cBus::spendBits(int bits)
{
    m_busTime += bits * m_bitTime;
    m_unsettled += bits * m_bitTime;
}

bool SimI2cBus::reaches(const Place &place) const
{
    return place.channel == kTrunk || (m_multiplexer && m_multiplexer->connects(place.channel));
}

uint8_t SimI2cBus::controlByte() const
{
    return m_multiplexer ? m_multiplexer->read() : uint8_t(0);
}
