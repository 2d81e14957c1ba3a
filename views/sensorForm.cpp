#include "views/sensorForm.h"

#include "views/class_ydds.h"

#include <QGridLayout>

sensorForm::sensorForm(QWidget *parent)
    : QWidget(parent)
    , m_grid(new QGridLayout)
{
    setObjectName(QStringLiteral("sensorForm"));
    resize(749, 503);
    auto *outer = new QGridLayout(this);
    outer->setObjectName(QStringLiteral("gridLayout_2"));
    outer->setContentsMargins(0, 0, 0, 0);
    m_grid->setObjectName(QStringLiteral("gridLayout"));
    m_grid->setSpacing(0);
    outer->addLayout(m_grid, 0, 0);
    qDebug("sensorForm init");
}

void sensorForm::setRowColumnCount(unsigned char rowCount, unsigned char columnCount)
{
    const int count = rowCount * columnCount;
    const bool sameCount = count == yddsList.size();
    rows = rowCount;
    columns = columnCount;
    if (sameCount)
        return;
    yddsList.clear();
    while (yddsList.size() < count) {
        auto *tile = new class_ydds(this);
        // The texts of the tiles must not pull at the widths of the columns.
        tile->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
        const int position = yddsList.size();
        yddsList.append(tile);
        m_grid->addWidget(tile, position / columns, position % columns);
    }
}
