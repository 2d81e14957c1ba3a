#pragma once

#include "views/models/sensor_outline.h"

#include <QPixmap>
#include <QPointer>
#include <QString>
#include <QVector>
#include <QWidget>

/// A quiet drawing of the sensor that keeps gauges and tiles over its regions at every size.
class SensorPicture : public QWidget
{
    Q_OBJECT

public:
    explicit SensorPicture(Outline outline, QWidget *parent = nullptr);

    /// Marks a region and, if there is a gauge, keeps it there and takes it as a child. With a text, of which
    /// the widest is given, the gauge has the width of the spot, and digits that keep the text on the left of
    /// the disc.
    void addSpot(const Spot &spot, QWidget *gauge = nullptr, const QString &widestText = QString());
    /// Marks the cells of an array and keeps the grid over them, which becomes a child.
    void setTiles(const TileLayout &tiles, QWidget *grid, const QString &widestText);

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
        QPointer<QWidget> gauge;
        QString widestText;
    };

    double scale() const;
    QPointF origin() const;
    void placeGauge(const Region &region) const;
    void placeTiles() const;
    void drawBackdrop();
    void drawMarks(QPainter &painter) const;

    SensorOutline m_outline;
    QVector<Region> m_regions;
    double m_margin = 0; // on either side of the outline, where gauges with a text reach beyond it
    const TileLayout *m_tiles = nullptr;
    QPointer<QWidget> m_grid;
    QString m_widestTileText;
    QPixmap m_backdrop; // null until it is painted at the present size and palette
};
