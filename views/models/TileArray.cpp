#include "views/models/TileArray.h"

#include "views/class_ydds.h"
#include "views/models/force_colours.h"
#include "views/models/gauge_writing.h"
#include "views/models/view_layout.h"
#include "views/sensorForm.h"

#include <algorithm>

TileArray::TileArray(const TileLayout &layout, sensorForm *grid)
    : sensorList(tileNeighbours(layout.rows, layout.columns))
    , sinCos(sinCosTable())
    , m_grid(grid)
    , m_quarterTurn(layout.quarterTurn)
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
        showTile(each, index, newtons, range);
        each->setText(withTexts ? forceText(newtons.at(index)) : QString());
    }
}

class_ydds *TileArray::tile(int index) const
{
    const int columns = m_grid->columns;
    const int row = index / columns;
    const int column = index % columns;
    const int cell = m_quarterTurn ? column * columns + (columns - 1 - row) : index;
    return m_grid->yddsList.at(cell);
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
    const int direction = m_quarterTurn ? (gradient.angle + 90) % 360 : gradient.angle;
    setArrow(tile, static_cast<uint16_t>(direction),
             static_cast<float>(std::min(gradient.magnitude / 100.0, 1.0)));
}
