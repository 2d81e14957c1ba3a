#pragma once

#include "views/models/tile_gradient.h"

#include <QVector>

class class_ydds;
class sensorForm;
struct TileLayout;

/// The tiles of an array view: each shows the force of its channel, blended with its neighbours, and an arrow towards
/// where they press hardest.
class TileArray
{
public:
    /// A tile's neighbourhood.
    using sensor_ts = QVector<member_ts>;

    /// Shapes `grid`, which must outlive the array.
    TileArray(const TileLayout &layout, sensorForm *grid);

    /// Forces by channel in newtons. Tiles beyond the last force stay as they are, forces beyond the last tile are not
    /// shown.
    void show(const QVector<float> &newtons, float range, bool withTexts);

    QVector<sensor_ts> sensorList;
    QVector<SinCos> sinCos;

private:
    class_ydds *tile(int index) const;
    void showTile(class_ydds *tile, int index, const QVector<float> &newtons, float range) const;

    sensorForm *m_grid;
    bool m_quarterTurn;
};
