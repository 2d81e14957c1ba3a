#pragma once

#include <cmath>
#include <limits>

/// The value as it can be drawn: not a number, which leaves a gap, for all that a 32-bit float does not hold.
/// Scales would not survive the difference of two values beyond.
inline double plotValue(double value)
{
    constexpr double largest = std::numeric_limits<float>::max();
    return std::abs(value) <= largest ? value : std::numeric_limits<double>::quiet_NaN();
}
