#include "views/models/tile_gradient.h"

#include <QtMath>

#include <cmath>

namespace {

constexpr int kDegrees = 360;
constexpr double kDegreesPerRadian = 57.29578;

/// Angle towards the neighbour, by dy = 1, 0, -1 and dx = -1, 0, 1. The first one stands one degree short.
constexpr uint16_t kAngles[3][3] = {{314, 0, 45}, {270, 0, 90}, {225, 180, 135}};

float fivePlaces(double value)
{
    return static_cast<float>(std::round(value * 1e5) / 1e5);
}

QVector<SinCos> makeSinCosTable()
{
    QVector<SinCos> table;
    table.reserve(kDegrees);
    for (int degrees = 0; degrees < kDegrees; ++degrees) {
        const double angle = qDegreesToRadians(static_cast<double>(degrees));
        table.append({fivePlaces(std::sin(angle)), fivePlaces(std::cos(angle))});
    }
    return table;
}

QVector<member_ts> neighboursOf(int row, int column, int rows, int columns)
{
    QVector<member_ts> members;
    for (int dy = 1; dy >= -1; --dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const int r = row - dy;
            const int c = column + dx;
            const bool inside = r >= 0 && r < rows && c >= 0 && c < columns;
            if (!inside || (dx == 0 && dy == 0))
                continue;
            members.append({static_cast<uint8_t>(r * columns + c), kAngles[1 - dy][dx + 1]});
        }
    }
    return members;
}

int wholeDegrees(double sine, double cosine)
{
    const int degrees = static_cast<int>(std::atan2(sine, cosine) * kDegreesPerRadian);
    return degrees < 0 ? degrees + kDegrees : degrees;
}

} // namespace

const QVector<SinCos> &sinCosTable()
{
    static const QVector<SinCos> table = makeSinCosTable();
    return table;
}

QVector<QVector<member_ts>> tileNeighbours(int rows, int columns)
{
    QVector<QVector<member_ts>> tiles;
    tiles.reserve(rows * columns);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column)
            tiles.append(neighboursOf(row, column, rows, columns));
    }
    return tiles;
}

TileGradient tileGradient(const QVector<member_ts> &neighbours, const QVector<SinCos> &sinCos,
                          const QVector<float> &newtons, float range)
{
    double along = 0;
    double across = 0;
    double sum = 0;
    for (const member_ts &neighbour : neighbours) {
        const double percent =
            100.0 * static_cast<double>(newtons.value(neighbour.channel)) / static_cast<double>(range);
        const SinCos &angle = sinCos.at(neighbour.angle);
        along += static_cast<double>(angle.cosine) * percent;
        across += static_cast<double>(angle.sine) * percent;
        sum += percent;
    }
    TileGradient gradient;
    if (!neighbours.isEmpty())
        gradient.averagePercent = sum / neighbours.size();
    if (along != 0.0 || across != 0.0) {
        gradient.magnitude = std::hypot(along, across);
        gradient.angle = wholeDegrees(across, along);
    }
    return gradient;
}
