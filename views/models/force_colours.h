#pragma once

#include <QColor>

/// Shades that differ between the views.
struct Shades
{
    int deepRed;   ///< red of a force at and near full scale
    int middleRed; ///< green and blue of a middling force
};

/// The force in newtons at which every gauge is saturated, whatever the range of its model.
constexpr double kGaugeFullScaleNewtons = 20.0;

/// Colour of a gauge's disc. `fullAtScale` counts the full scale itself as beyond the scale.
QColor gaugeColour(float normalNewtons, const Shades &shades, bool fullAtScale);

/// Colour of a press disc, from grey at 0 percent of the range to dark red at 100. The scale is bent so that
/// a light touch is visible: a tenth of the range is four tenths of the way.
QColor pressColour(double percent);
