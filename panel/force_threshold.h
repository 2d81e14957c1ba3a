#pragma once

#include <QVector>

#include <cstdint>

/// Raw threshold of a channel for a force, read off the channel's calibration curve.
///
/// forces: the force points in newtons, ascending, at least one; values: the curve, one raw value for each
/// point, 0 where one is missing. Between two points the curve is a straight line where it rises and 0 where
/// it does not; below the first point it starts at the origin; from the last point on it has the last of the
/// values, be they more or fewer than the points.
uint32_t thresholdForForce(const QVector<float> &forces, const QVector<uint32_t> &values, float newtons);
