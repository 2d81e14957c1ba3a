#include "sim/SimSettings.h"

namespace {

constexpr std::size_t kNormalCurvePoints = 22;

std::vector<uint32_t> risingCurve(std::size_t points)
{
    std::vector<uint32_t> curve;
    for (std::size_t i = 0; i < points; ++i)
        curve.push_back(static_cast<uint32_t>(1000 * (i + 1)));
    return curve;
}

std::vector<float> forcePointsOf(const finger_info_ts &model)
{
    std::vector<float> points;
    for (int i = 1; i <= model.caliNum; ++i)
        points.push_back(model.range * static_cast<float>(i) / static_cast<float>(model.caliNum));
    return points;
}

} // namespace

SimSettings::SimSettings(const finger_info_ts &model, uint8_t busAddress)
    : address(busAddress)
    , serialNumber("KV-" + QByteArray::number(100000000 + model.prg * 1000 + busAddress))
{
    restoreFactory(model);
}

void SimSettings::restoreFactory(const finger_info_ts &model)
{
    const std::size_t channels = model.chNum;
    text = QByteArrayLiteral("simulated");
    sendType = 0;
    measuringMode = 0;
    autoDacAtPowerUp = 0;
    startPosition = 0;
    thresholds.assign(channels, 100);
    touchTimeoutsMs.assign(channels, 60000);
    excitations.assign(channels, 12);
    ranges.assign(channels, 3);
    filterDepths.assign(channels, 4);
    filterLimits.assign(channels, 2);
    filterFactors.assign(channels, 0.5F);
    enabled.assign(channels, 1);
    pressReleaseMaximum = 5000;
    pressReleaseScale = 10;
    proximityReleaseMaximum = 8000;
    proximityReleaseScale = 20;
    proximityClearsTouch = 0;
    proximityClearDelayMs = 1000;
    temperatureCalibration = 0.0F;
    forcePoints = forcePointsOf(model);
    curves.assign(static_cast<std::size_t>(model.forceChNum) + model.yddsNum, risingCurve(model.caliNum));
    normalCurve = risingCurve(kNormalCurvePoints);
}
