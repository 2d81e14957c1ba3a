#include "sim/SimBench.h"

#include "sim/sensor_plan.h"

#include <array>

namespace {

constexpr double kSampleRateHz = 100.0;
constexpr int kLineBaudRate = 460800;
constexpr std::size_t kJournalLimit = 200; // a show may run for days

constexpr std::array<SensorPlan, SimBench::kSerialSensors> kSerialPlans = {{
    {0x02, 0x61, 0},
    {0x11, 0x62, 0},
    {0x14, 0x63, 0},
    {0x1C, 0x64, 0},
    {0x37, 0x65, 0},
    {0x2D, 0x66, 0},
}};

constexpr std::array<SensorPlan, SimBench::kCh341Sensors> kCh341Plans = {{
    {0x13, 0x61, 4},
    {0x1D, 0x61, 5},
    {0x2B, 0x62, 6},
    {0x53, 0x61, 3},
    {0x2A, 0x63, 2},
    {0x1F, 0x64, 0},
}};

constexpr std::array<SensorPlan, SimBench::kCh347Sensors> kCh347Plans = {{
    {0x15, 0x61, 4},
    {0x12, 0x61, 5},
}};

template<typename Plans>
std::shared_ptr<SimI2cBus> makeBus(const Plans &plans)
{
    auto bus = std::make_shared<SimI2cBus>();
    bus->journal().setLimit(kJournalLimit);
    for (const SensorPlan &plan : plans)
        bus->plug(makeSensor(plan, kSampleRateHz), plan.channel);
    return bus;
}

} // namespace

SimBench::SimBench()
    : m_ch341(std::make_shared<SimCh341>(makeBus(kCh341Plans), kCh341Id / 1000, kCh341Id % 1000))
    , m_ch347(std::make_shared<SimCh347>(makeBus(kCh347Plans), kCh347Id))
{
    m_serialBus.journal().setLimit(kJournalLimit);
    for (const SensorPlan &plan : kSerialPlans) {
        const auto sensor = makeSensor(plan, kSampleRateHz);
        sensor->setBaudRate(kLineBaudRate);
        m_serialBus.plug(sensor);
    }
    m_usb.plug(m_ch341);
    m_usb.plug(m_ch347);
}
