#pragma once

#include "views/models/sensor_outline.h"

#include <QPixmap>
#include <QVector>
#include <QWidget>

/// A quiet drawing of the sensor that keeps gauges and tiles over its regions at every size.
class SensorPicture : public QWidget
{
    Q_OBJECT

public:
    explicit SensorPicture(Outline outline, QWidget *parent = nullptr);

    /// Marks a region and, if there is a gauge, keeps it there and takes it as a child. `withNumbers` widens the gauge,
    /// so that its text stands free on the left of the disc.
    void addSpot(const Spot &spot, QWidget *gauge = nullptr, bool withNumbers = false);
    /// Marks the cells of an array and keeps the grid over them, which becomes a child.
    void setTiles(const TileLayout &tiles, QWidget *grid);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    struct Region
    {
        Spot spot;
        QWidget *gauge;
        bool withNumbers;
    };

    static double discDiameter(const Region &region);
    double scale() const;
    QPointF origin() const;
    void placeGauge(const Region &region) const;
    void placeTiles() const;
    void drawBackdrop();
    void drawMarks(QPainter &painter) const;

    SensorOutline m_outline;
    QVector<Region> m_regions;
    const TileLayout *m_tiles = nullptr;
    QWidget *m_grid = nullptr;
    QPixmap m_backdrop; // null until it is painted at the present size and palette
};
