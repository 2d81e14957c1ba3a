#include "panel/force_threshold.h"

#include <limits>

namespace {

// Toward zero, and within range whatever a sensor gave as its force points.
uint32_t truncated(float value)
{
    if (!(value > 0.0F))
        return 0;
    constexpr float beyond = 4294967296.0F;
    return value < beyond ? static_cast<uint32_t>(value) : std::numeric_limits<uint32_t>::max();
}

uint32_t between(float force0, float force1, uint32_t value0, uint32_t value1, float newtons)
{
    if (value0 >= value1)
        return 0;
    const float rise = static_cast<float>(value1 - value0);
    return truncated(static_cast<float>(value0) + (newtons - force0) * rise / (force1 - force0));
}

} // namespace

uint32_t thresholdForForce(const QVector<float> &forces, const QVector<uint32_t> &values, float newtons)
{
    if (newtons >= forces.last())
        return values.isEmpty() ? 0 : values.last();
    if (newtons < forces.first())
        return truncated(static_cast<float>(values.value(0)) / forces.first() * newtons);
    for (int i = 0; i + 1 < forces.size(); ++i) {
        if (newtons == forces.at(i))
            return values.value(i);
        if (forces.at(i + 1) > newtons)
            return between(forces.at(i), forces.at(i + 1), values.value(i), values.value(i + 1), newtons);
    }
    return 0;
}
