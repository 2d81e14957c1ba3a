#pragma once

#include <QColor>

/// A colour for each curve that reads well on white; the first ones differ the most.
QColor curveColour(int index);
