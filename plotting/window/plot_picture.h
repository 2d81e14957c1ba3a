#pragma once

#include <QString>

class CurvePlot;

/// Draws the plot with a legend into a file, as PNG or SVG by the end of its name. False if the file cannot
/// be written.
bool savePlotPicture(CurvePlot &plot, const QString &path);

/// True if the name ends like a picture that can be saved.
bool isPicturePath(const QString &path);
