#include "sim/SimBench.h"

#include "sim/moving_finger.h"

#include <array>

namespace {

constexpr double kSampleRateHz = 100.0;
constexpr int kLineBaudRate = 460800;
constexpr std::size_t kJournalLimit = 200; // a show may run for days

struct Seat
{
    uint8_t programId;
    uint8_t address;
    int channel;
};

constexpr std::array<Seat, SimBench::kSerialSensors> kSerialSeats = {{
    {0x02, 0x61, 0},
    {0x11, 0x62, 0},
    {0x14, 0x63, 0},
    {0x1C, 0x64, 0},
    {0x37, 0x65, 0},
    {0x2D, 0x66, 0},
}};

constexpr std::array<Seat, SimBench::kCh341Sensors> kCh341Seats = {{
    {0x13, 0x61, 4},
    {0x1D, 0x61, 5},
    {0x2B, 0x62, 6},
    {0x53, 0x61, 3},
    {0x2A, 0x63, 2},
    {0x1F, 0x64, 0},
}};

constexpr std::array<Seat, SimBench::kCh347Sensors> kCh347Seats = {{
    {0x15, 0x61, 4},
    {0x12, 0x61, 5},
}};

std::shared_ptr<SimSensor> makeSensor(const Seat &seat)
{
    auto sensor = std::make_shared<SimSensor>(seat.programId, seat.address);
    sensor->setSampleRateHz(kSampleRateHz);
    sensor->setMotion(movingFinger(0.9 * seat.programId));
    return sensor;
}

template<typename Seats>
std::shared_ptr<SimI2cBus> makeBus(const Seats &seats)
{
    auto bus = std::make_shared<SimI2cBus>();
    bus->journal().setLimit(kJournalLimit);
    for (const Seat &seat : seats)
        bus->plug(makeSensor(seat), seat.channel);
    return bus;
}

} // namespace

SimBench::SimBench()
    : m_ch341(std::make_shared<SimCh341>(makeBus(kCh341Seats), kCh341Id / 1000, kCh341Id % 1000))
    , m_ch347(std::make_shared<SimCh347>(makeBus(kCh347Seats), kCh347Id))
{
    m_serialBus.journal().setLimit(kJournalLimit);
    for (const Seat &seat : kSerialSeats) {
        const auto sensor = makeSensor(seat);
        sensor->setBaudRate(kLineBaudRate);
        m_serialBus.plug(sensor);
    }
    m_usb.plug(m_ch341);
    m_usb.plug(m_ch347);
}
