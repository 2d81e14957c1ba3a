#include "plotting/window/curve_colours.h"

#include <array>
#include <cmath>

QColor curveColour(int index)
{
    static constexpr std::array<QRgb, 10> first{0xFF1F77B4, 0xFFD62728, 0xFF2CA02C, 0xFFFF7F0E, 0xFF9467BD,
                                                0xFF17A2B8, 0xFF8C564B, 0xFFE377C2, 0xFF7F7F7F, 0xFFA5A516};
    if (index < static_cast<int>(first.size()))
        return QColor(first.at(static_cast<size_t>(index)));
    // Steps of the golden angle never come back to a hue that was there.
    constexpr double goldenPart = 0.61803398875;
    double whole = 0;
    const double hue = std::modf(index * goldenPart, &whole);
    return QColor::fromHsvF(hue, index % 2 == 0 ? 0.85 : 0.6, index % 3 == 0 ? 0.6 : 0.8);
}
