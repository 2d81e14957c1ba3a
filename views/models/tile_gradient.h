#pragma once

#include <QVector>

#include <cstdint>

/// One neighbour of a tile.
struct member_ts
{
    uint8_t channel; ///< tile index of the neighbour
    uint16_t angle;  ///< degrees clockwise from up, from the tile towards the neighbour
};

/// Sine and cosine of a whole degree, to five places.
struct SinCos
{
    float sine;
    float cosine;
};

/// What a tile's neighbours say about it.
struct TileGradient
{
    double averagePercent = 0; ///< mean force of the neighbours in percent of the range
    double magnitude = 0;      ///< length of the sum of the neighbours' pulls, percent of the range
    int angle = 360;           ///< degrees clockwise from up where they press hardest; 360 when they balance
};

/// Entry i is for i degrees, 0 to 359. The quarters are exact, so that neighbours that balance give no arrow.
const QVector<SinCos> &sinCosTable();

/// Neighbours of every tile of a grid, in tile order.
QVector<QVector<member_ts>> tileNeighbours(int rows, int columns);

/// Forces in newtons by tile index. A neighbour without a force counts as unpressed.
TileGradient tileGradient(const QVector<member_ts> &neighbours, const QVector<SinCos> &sinCos,
                          const QVector<float> &newtons, float range);
