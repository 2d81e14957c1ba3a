#include "views/models/force_colours.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

struct Step
{
    double below;
    QColor colour;
};

int channel(double value)
{
    return std::clamp(static_cast<int>(value), 0, 255);
}

QColor fullColour(const Shades &shades)
{
    return {shades.deepRed, 9, 9};
}

} // namespace

QColor gaugeColour(float normalNewtons, const Shades &shades, bool fullAtScale)
{
    const double normal = static_cast<double>(normalNewtons);
    if (fullAtScale ? normal >= kGaugeFullScaleNewtons : normal > kGaugeFullScaleNewtons)
        return fullColour(shades);
    const std::array<Step, 7> steps{{{10, QColor(240, 240, 240)},
                                     {36, QColor(255, 165, 165)},
                                     {72, QColor(255, shades.middleRed, shades.middleRed)},
                                     {108, QColor(255, 105, 97)},
                                     {144, QColor(255, 69, 0)},
                                     {180, QColor(220, 20, 60)},
                                     {216, QColor(shades.deepRed, 0, 0)}}};
    const double step = normal / kGaugeFullScaleNewtons * 216;
    const auto *found =
        std::find_if(steps.begin(), steps.end(), [step](const Step &each) { return step < each.below; });
    return found == steps.end() ? fullColour(shades) : found->colour;
}

QColor pressColour(double percent)
{
    const double part = percent > 100 ? 1.0 : percent > 0 ? percent / 100 : 0.0;
    const double weight = std::pow(part, 0.4);
    const double rest = (1 - weight) * 240;
    const int greenAndBlue = channel(weight * 9 * 0.5 + rest);
    return {channel(weight * 139 * 1.5 + rest), greenAndBlue, greenAndBlue};
}
