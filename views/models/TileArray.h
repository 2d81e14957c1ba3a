#pragma once

#include "views/models/tile_gradient.h"

#include <QPointer>
#include <QVector>

class class_ydds;
class sensorForm;
struct TileLayout;

/// The tiles of an array view: each shows the force of its channel, blended with its neighbours, and an arrow
/// towards where they press hardest.
class TileArray
{
public:
    /// A tile's neighbourhood.
    using sensor_ts = QVector<member_ts>;

    /// Shapes `grid`. The layout must outlive the array.
    TileArray(const TileLayout &layout, sensorForm *grid);

    /// Forces by channel in newtons. Tiles beyond the last force stay as they are, forces beyond the last
    /// tile are not shown.
    void show(const QVector<float> &newtons, float range, bool withTexts);

    QVector<sensor_ts> sensorList;
    QVector<SinCos> sinCos;

private:
    /// Null where the grid has been given another shape since, or has gone.
    class_ydds *tile(int index) const;
    void showTile(class_ydds *tile, int index, const QVector<float> &newtons, float range) const;

    QPointer<sensorForm> m_grid;
    const TileLayout &m_layout;
};
