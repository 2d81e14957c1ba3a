#include "soak/SoakWorld.h"

#include "sim/moving_finger.h"
#include "sim/sensor_plan.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <sys/resource.h>

using namespace std::chrono_literals;

namespace {

constexpr double kSampleRateHz = 100.0;
constexpr int kBridgeSensors = 14;
constexpr int kSerialSensors = 6;
constexpr uint8_t kFirstAddress = 0x61;
/// In the order in which the tool numbers its buses.
constexpr std::array<int, 6> kChannels{4, 5, 6, 3, 2, 0};
constexpr std::size_t kGuests = 3;
constexpr std::size_t kJournalLimit = 100;
/// Files end there while the disk is full.
constexpr rlim_t kFullDiskBytes = 16384;

std::shared_ptr<SimSensor> newSensor(int number, unsigned seed)
{
    const auto &model = finger_infos[static_cast<std::size_t>(number * 5) % std::size(finger_infos)];
    auto sensor = makeSensor({model.prg, static_cast<uint8_t>(kFirstAddress + number)}, kSampleRateHz);
    letErr(*sensor, seed);
    return sensor;
}

std::shared_ptr<SimI2cBus> newBus(unsigned seed)
{
    auto bus = std::make_shared<SimI2cBus>();
    bus->journal().setLimit(kJournalLimit);
    for (int i = 0; i < kBridgeSensors; ++i)
        bus->plug(newSensor(i, seed), kChannels[static_cast<std::size_t>(i) % kChannels.size()]);
    return bus;
}

void setLargestFile(rlim_t bytes)
{
    rlimit limit = {};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = std::min(bytes, limit.rlim_max);
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

} // namespace

SoakWorld::SoakWorld(unsigned seed)
    : m_chance(seed)
    , m_ch341(std::make_shared<SimCh341>(newBus(seed), kCh341Id / 1000, kCh341Id % 1000))
    , m_ch347(std::make_shared<SimCh347>(newBus(seed), kCh347Id))
{
    // A write that goes too far is to fail, not to end the program.
    std::signal(SIGXFSZ, SIG_IGN);
    m_line.journal().setLimit(kJournalLimit);
    for (int i = 0; i < kSerialSensors; ++i)
        m_line.plug(newSensor(i, seed));
    m_usb.plug(m_ch341);
    m_usb.plug(m_ch347);
}

void SoakWorld::setTrouble(bool on)
{
    if (m_trouble.exchange(on) == on)
        return;
    if (m_thread.joinable())
        m_thread.join();
    if (on)
        m_thread = std::thread([this] { run(); });
}

void SoakWorld::run()
{
    while (m_trouble) {
        rest(std::chrono::milliseconds(1000 + m_chance.draw(5000)));
        act();
    }
    restore();
}

void SoakWorld::act()
{
    plugBridges();
    const int what = m_chance.draw(16);
    if (what < 2)
        pullAndPlug();
    else if (what < 5)
        exchangeGuest();
    else if (what < 12)
        disturbTransfers();
    else
        fillDisk();
}

void SoakWorld::pullAndPlug()
{
    ++m_pulls;
    // As many short gaps as long ones, from 2 ms to 5 s.
    const auto gap =
        std::chrono::milliseconds(static_cast<int>(2 * std::pow(2500.0, m_chance.draw(1000) / 999.0)));
    const int which = m_chance.draw(3);
    if (which == 0) {
        m_line.removePort();
        rest(gap);
        m_line.restorePort();
    } else {
        const auto bridge = which == 1 ? std::shared_ptr<SimUsbDevice>(m_ch341) : m_ch347;
        m_usb.unplug(bridge);
        rest(gap);
        m_usb.plug(bridge);
    }
}

void SoakWorld::exchangeGuest()
{
    if (m_guests.size() >= kGuests) {
        std::swap(m_chance.oneOf(m_guests), m_guests.back());
        m_line.unplug(m_guests.back());
        m_ch341->bus().unplug(m_guests.back());
        m_ch347->bus().unplug(m_guests.back());
        m_guests.pop_back();
    }
    // Half of them are of models that nobody knows.
    const int model = m_chance.oneIn(2) ? 0x80 + m_chance.draw(0x80) : m_chance.oneOf(finger_infos).prg;
    const auto address = static_cast<uint8_t>(kFirstAddress + m_chance.draw(kBridgeSensors));
    const auto guest = std::make_shared<SimSensor>(static_cast<uint8_t>(model), address);
    guest->setMotion(movingFinger(m_chance.draw(10)));
    m_guests.push_back(guest);
    if (m_chance.oneIn(3))
        m_line.plug(guest);
    else
        anyBridge().bus().plug(guest, m_chance.draw(8));
}

void SoakWorld::disturbTransfers()
{
    SimBridge &bridge = anyBridge();
    const int way = m_chance.draw(8);
    if (way == 0) {
        bridge.pullOutAfter(1 + m_chance.draw(300));
        rest(std::chrono::milliseconds(2 + m_chance.draw(500)));
        const auto device = &bridge == m_ch341.get() ? std::shared_ptr<SimUsbDevice>(m_ch341) : m_ch347;
        if (!device->isPlugged())
            m_usb.plug(device);
    } else if (way == 1) {
        // An endpoint that is stalled: all transfers fail for a while.
        bridge.failTransfers(200 + m_chance.draw(800));
    } else if (way == 2) {
        bridge.bus().setMultiplexerDead(true);
        rest(std::chrono::milliseconds(m_chance.draw(300)));
        bridge.bus().setMultiplexerDead(false);
    } else if (way == 3) {
        bridge.shortenReads(m_chance.draw(20));
    } else if (way < 6) {
        bridge.failTransfers(m_chance.draw(20), m_chance.draw(50));
    } else {
        const auto sensors = m_line.sensors();
        sensors.front()->faults().schedule(static_cast<SimFault>(m_chance.draw(kSimFaultCount)),
                                           m_chance.oneIn(2) ? SimTarget::samples() : SimTarget::answers(),
                                           m_chance.draw(30));
    }
}

void SoakWorld::fillDisk()
{
    ++m_disksFilled;
    setLargestFile(kFullDiskBytes);
    rest(std::chrono::milliseconds(200 + m_chance.draw(2000)));
    setLargestFile(RLIM_INFINITY);
}

void SoakWorld::rest(std::chrono::milliseconds time)
{
    const auto end = std::chrono::steady_clock::now() + time;
    while (m_trouble && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(
            std::min<std::chrono::nanoseconds>(end - std::chrono::steady_clock::now(), 20ms));
}

SimBridge &SoakWorld::anyBridge()
{
    return m_chance.oneIn(2) ? static_cast<SimBridge &>(*m_ch341) : *m_ch347;
}

void SoakWorld::restore()
{
    setLargestFile(RLIM_INFINITY);
    plugBridges();
    if (m_line.portName().isEmpty())
        m_line.restorePort();
}

// Those that were to go after some transfers may have gone only now.
void SoakWorld::plugBridges()
{
    for (const auto &device :
         {std::shared_ptr<SimUsbDevice>(m_ch341), std::shared_ptr<SimUsbDevice>(m_ch347)}) {
        if (!device->isPlugged())
            m_usb.plug(device);
    }
}
