#include "sim/moving_finger.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kCycleSeconds = 10.0;
constexpr double kTouchSeconds = 1.0; // from here to kReleaseSeconds the finger touches
constexpr double kReleaseSeconds = 9.2;
constexpr double kPressSeconds = 4.0;
constexpr double kFullScaleNewtons = 20.0;
constexpr double kProximityFullScale = 280000.0;

struct Finger
{
    double nearness; ///< 0 far away, 1 touching
    double pressure; ///< 0 to 1
    double x;        ///< on the pad, 0 to 1
    double y;
    double direction; ///< of the shear, degrees
    double shear;     ///< tangential part of the force, 0 to 1
};

double turn(double seconds, double period)
{
    return 2.0 * kPi * seconds / period;
}

Finger wanderingAt(double seconds)
{
    const double inCycle = std::fmod(seconds, kCycleSeconds);
    const double approach = inCycle / kTouchSeconds;
    const double retreat = (kCycleSeconds - inCycle) / (kCycleSeconds - kReleaseSeconds);
    const double touching = (inCycle - kTouchSeconds) / (kReleaseSeconds - kTouchSeconds);
    Finger finger{};
    finger.nearness = std::clamp(std::min(approach, retreat), 0.0, 1.0);
    finger.pressure = touching > 0.0 && touching < 1.0 ? std::pow(std::sin(kPi * touching), 0.5) : 0.0;
    finger.x = 0.5 + 0.4 * std::sin(turn(seconds, 5.0));
    finger.y = 0.5 + 0.4 * std::sin(turn(seconds, 3.1));
    finger.direction = std::fmod(seconds * 72.0, 360.0);
    finger.shear = 0.55 + 0.35 * std::sin(turn(seconds, 4.3));
    return finger;
}

/// Channels are taken to lie in rows on a square pad.
double closeness(const Finger &finger, std::size_t index, std::size_t count)
{
    const auto columns = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count))));
    const std::size_t rows = (count + columns - 1) / columns;
    const std::size_t column = index % columns;
    const std::size_t row = index / columns;
    const double x = (static_cast<double>(column) + 0.5) / static_cast<double>(columns);
    const double y = (static_cast<double>(row) + 0.5) / static_cast<double>(rows);
    const double distance = std::pow(x - finger.x, 2) + std::pow(y - finger.y, 2);
    return std::exp(-distance / 0.12);
}

void pressChannels(const Finger &finger, const finger_info_ts &model, SimValues &values)
{
    const double peak = 0.4 * std::min(kFullScaleNewtons, static_cast<double>(model.range));
    for (std::size_t i = 0; i < model.forceChNum; ++i)
        values.channels[i] = simChannelValue(peak * finger.pressure * closeness(finger, i, model.forceChNum));
    for (std::size_t i = model.forceChNum; i < values.channels.size(); ++i)
        values.channels[i] = static_cast<uint32_t>(kProximityFullScale * finger.nearness) & ~1U;
}

void pressForces(const Finger &finger, SimValues &values)
{
    const std::size_t count = values.forces.size();
    for (std::size_t i = 0; i < count; ++i) {
        const double normal =
            0.9 * kFullScaleNewtons * finger.pressure * (0.4 + 0.6 * closeness(finger, i, count));
        const double direction = std::fmod(finger.direction + 40.0 * static_cast<double>(i), 360.0);
        values.forces[i] = {static_cast<float>(normal), static_cast<float>(normal * finger.shear),
                            static_cast<uint16_t>(direction)};
    }
}

void approach(const Finger &finger, SimValues &values)
{
    const auto proximity = static_cast<uint32_t>(kProximityFullScale * finger.nearness * finger.nearness);
    for (std::size_t i = 0; i < values.selfProximity.size(); ++i)
        values.selfProximity[i] = proximity / static_cast<uint32_t>(i + 1);
    for (uint32_t &mutual : values.mutualProximity)
        mutual = proximity / 2;
}

Finger pressingAt(double seconds)
{
    Finger finger{};
    finger.nearness = 1.0;
    finger.pressure = std::pow(std::sin(kPi * seconds / kPressSeconds), 2);
    finger.x = 0.5;
    finger.y = 0.5;
    return finger;
}

SimMotion motionOf(Finger (*fingerAt)(double seconds), double phase)
{
    return [fingerAt, phase](double seconds, const finger_info_ts &model, SimValues &values) {
        const Finger finger = fingerAt(seconds + phase);
        pressChannels(finger, model, values);
        pressForces(finger, values);
        approach(finger, values);
    };
}

} // namespace

SimMotion movingFinger(double phase)
{
    return motionOf(wanderingAt, phase);
}

SimMotion pressingFinger(double phase)
{
    return motionOf(pressingAt, phase);
}
