#pragma once

#include <QPointF>
#include <QVector>

class SampleStore;

/// A stretch of one curve as it is drawn: no more than a few points for each column of pixels.
struct CurvePoints
{
    QVector<QPointF> points; ///< y is not a number where the line is broken
    double low = 0;          ///< of the values within the stretch; above high if there are none
    double high = -1;
};

/// The column's values from one time to another. Where they are more than the pixels can show, the lowest and
/// the highest value of each pixel's time stand for all of it, so that no peak is lost. One value before and
/// one after let the line run out of the picture. The times come out later by shift.
CurvePoints curvePoints(const SampleStore &store, int column, double from, double to, int pixels,
                        double shift = 0);
