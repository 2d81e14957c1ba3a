#include "sim/sensor_plan.h"

#include "sim/moving_finger.h"

#include <QStringList>

namespace {

constexpr double kFaultChance = 0.005; // of each kind, for samples and for answers

/// A number from 1 to `largest`; 0 for anything else.
int positive(const QString &text, int largest)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber, 0);
    return isNumber && number >= 1 && number <= largest ? number : 0;
}

} // namespace

std::optional<SensorPlan> SensorPlan::parse(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char('@'));
    if (parts.size() != 2)
        return std::nullopt;
    const int programId = positive(parts.at(0), 0xFF);
    const int address = positive(parts.at(1), 0x6F);
    if (address == 0 || findFingerInfoByPrg(static_cast<uint8_t>(programId)) == nullptr)
        return std::nullopt;
    return SensorPlan{static_cast<uint8_t>(programId), static_cast<uint8_t>(address)};
}

std::shared_ptr<SimSensor> makeSensor(const SensorPlan &plan, double rateHz, FingerPlay play)
{
    auto sensor = std::make_shared<SimSensor>(plan.programId, plan.address);
    sensor->setSampleRateHz(rateHz);
    const double phase = 0.9 * plan.programId; // no two fingers move alike
    if (play == FingerPlay::Sweep)
        sensor->setMotion(movingFinger(phase));
    else if (play == FingerPlay::Press)
        sensor->setMotion(pressingFinger(phase));
    return sensor;
}

void letErr(SimSensor &sensor, uint32_t seed)
{
    SimFaults &faults = sensor.faults();
    faults.seed(seed + sensor.address());
    for (int i = 0; i < kSimFaultCount; ++i) {
        faults.setChance(static_cast<SimFault>(i), SimTarget::samples(), kFaultChance);
        faults.setChance(static_cast<SimFault>(i), SimTarget::answers(), kFaultChance);
    }
}
