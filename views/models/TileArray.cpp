#include "views/models/TileArray.h"

#include "views/class_ydds.h"
#include "views/models/force_colours.h"
#include "views/models/gauge_writing.h"
#include "views/models/view_layout.h"
#include "views/sensorForm.h"

#include <algorithm>
#include <utility>

TileArray::TileArray(const TileLayout &layout, sensorForm *grid)
    : sensorList(tileNeighbours(layout.rows, layout.columns))
    , sinCos(sinCosTable())
    , m_grid(grid)
    , m_layout(layout)
{
    m_grid->setRowColumnCount(static_cast<unsigned char>(layout.rows),
                              static_cast<unsigned char>(layout.columns));
    for (class_ydds *each : qAsConst(m_grid->yddsList))
        each->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void TileArray::show(const QVector<float> &newtons, float range, bool withTexts)
{
    const int count = std::min(sensorList.size(), newtons.size());
    for (int index = 0; index < count; ++index) {
        class_ydds *each = tile(index);
        if (each == nullptr)
            continue;
        showTile(each, index, newtons, range);
        each->setText(withTexts ? forceText(newtons.at(index)) : QString());
    }
}

class_ydds *TileArray::tile(int index) const
{
    int row = index / m_layout.columns;
    int column = index % m_layout.columns;
    if (m_layout.quarterTurn) {
        std::swap(row, column);
        column = m_layout.columns - 1 - column;
    }
    if (!m_grid || row >= m_grid->rows || column >= m_grid->columns)
        return nullptr;
    return m_grid->yddsList.value(row * m_grid->columns + column);
}

void TileArray::showTile(class_ydds *tile, int index, const QVector<float> &newtons, float range) const
{
    const TileGradient gradient = tileGradient(sensorList.at(index), sinCos, newtons, range);
    const double ownPercent = 100.0 * static_cast<double>(newtons.at(index)) / static_cast<double>(range);
    setDisc(tile, pressColour((ownPercent + gradient.averagePercent) * 0.5));
    if (gradient.angle >= 360) {
        setArrow(tile, kNoArrow, tile->arrowScale);
        return;
    }
    const int direction = m_layout.quarterTurn ? (gradient.angle + 90) % 360 : gradient.angle;
    setArrow(tile, static_cast<uint16_t>(direction),
             static_cast<float>(std::min(gradient.magnitude / 100.0, 1.0)));
}
