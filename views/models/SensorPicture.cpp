#include "views/models/SensorPicture.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>

#include <algorithm>

namespace {

/// A gauge with numbers has a smaller disc, and as much width as the numbers need on one side of it.
constexpr double kDiscWithNumbers = 0.66;
constexpr double kWidthWithNumbers = 2.3;
/// Height of the digits, in diameters: three lines fit beside the disc.
constexpr double kDigitHeight = 0.25;

QColor mixed(const QColor &back, const QColor &front, double part)
{
    const auto mix = [part](int from, int to) { return static_cast<int>(from + (to - from) * part); };
    return {mix(back.red(), front.red()), mix(back.green(), front.green()), mix(back.blue(), front.blue())};
}

void setDigitHeight(QWidget *widget, double diameter)
{
    const int pixels = std::clamp(static_cast<int>(diameter * kDigitHeight), 8, 18);
    QFont font = widget->font();
    if (font.pixelSize() == pixels)
        return;
    font.setPixelSize(pixels);
    widget->setFont(font);
}

} // namespace

SensorPicture::SensorPicture(Outline outline, QWidget *parent)
    : QWidget(parent)
    , m_outline(sensorOutline(outline))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void SensorPicture::addSpot(const Spot &spot, QWidget *gauge, bool withNumbers)
{
    m_regions.append({spot, gauge, withNumbers});
    if (gauge == nullptr)
        return;
    gauge->setParent(this);
    placeGauge(m_regions.constLast());
}

void SensorPicture::setTiles(const TileLayout &tiles, QWidget *grid)
{
    m_tiles = &tiles;
    m_grid = grid;
    m_grid->setParent(this);
    placeTiles();
}

QSize SensorPicture::sizeHint() const
{
    return m_outline.size * 2;
}

QSize SensorPicture::minimumSizeHint() const
{
    return m_outline.size;
}

double SensorPicture::scale() const
{
    return std::min(static_cast<double>(width()) / m_outline.size.width(),
                    static_cast<double>(height()) / m_outline.size.height());
}

QPointF SensorPicture::origin() const
{
    const QSizeF drawn = QSizeF(m_outline.size) * scale();
    return {(width() - drawn.width()) / 2, (height() - drawn.height()) / 2};
}

double SensorPicture::discDiameter(const Region &region)
{
    return region.withNumbers ? region.spot.diameter * kDiscWithNumbers : region.spot.diameter;
}

void SensorPicture::placeGauge(const Region &region) const
{
    const double diameter = discDiameter(region) * scale();
    const QPointF centre = origin() + QPointF(region.spot.x, region.spot.y) * scale();
    const double across = region.withNumbers ? diameter * kWidthWithNumbers : diameter;
    // Whole pixels downwards, so that neighbours never grow into each other.
    const QSize size(static_cast<int>(across), static_cast<int>(diameter));
    region.gauge->setGeometry(
        QRect(QPointF(centre.x() - size.width() / 2.0, centre.y() - size.height() / 2.0).toPoint(), size));
    setDigitHeight(region.gauge, diameter);
}

void SensorPicture::placeTiles() const
{
    const QPointF corner = origin() + QPointF(m_tiles->x, m_tiles->y) * scale();
    m_grid->setGeometry(QRectF(corner, QSizeF(m_tiles->width, m_tiles->height) * scale()).toRect());
    // A label with a style sheet does not take its parent's font, so each tile is told.
    for (QLabel *tile : m_grid->findChildren<QLabel *>())
        setDigitHeight(tile, m_tiles->height * scale() / m_tiles->rows);
}

void SensorPicture::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_backdrop = QPixmap();
    for (const Region &region : qAsConst(m_regions)) {
        if (region.gauge != nullptr)
            placeGauge(region);
    }
    if (m_grid != nullptr)
        placeTiles();
}

void SensorPicture::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange) {
        m_backdrop = QPixmap();
        update();
    }
    QWidget::changeEvent(event);
}

void SensorPicture::paintEvent(QPaintEvent *)
{
    // Every sample repaints what lies below the gauges that changed, so the drawing is kept ready.
    if (m_backdrop.isNull() || m_backdrop.devicePixelRatioF() != devicePixelRatioF())
        drawBackdrop();
    QPainter(this).drawPixmap(0, 0, m_backdrop);
}

void SensorPicture::drawBackdrop()
{
    m_backdrop = QPixmap(size() * devicePixelRatioF());
    m_backdrop.setDevicePixelRatio(devicePixelRatioF());
    const QColor paper = palette().color(QPalette::Base);
    const QColor ink = palette().color(QPalette::Text);
    m_backdrop.fill(paper);

    QPainter painter(&m_backdrop);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(origin());
    painter.scale(scale(), scale());
    QPen pen(mixed(paper, ink, 0.38), 1.5);
    pen.setJoinStyle(Qt::RoundJoin);
    pen.setCosmetic(true);
    painter.setPen(pen);
    painter.setBrush(mixed(paper, ink, 0.05));
    painter.drawPath(m_outline.body);
    pen.setColor(mixed(paper, ink, 0.22));
    pen.setWidthF(1);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(m_outline.lines);
    drawMarks(painter);
}

void SensorPicture::drawMarks(QPainter &painter) const
{
    const QColor paper = palette().color(QPalette::Base);
    const QColor ink = palette().color(QPalette::Text);
    QPen pen(mixed(paper, ink, 0.3), 1);
    pen.setCosmetic(true);
    painter.setPen(pen);
    painter.setBrush(mixed(paper, ink, 0.02));
    for (const Region &region : m_regions) {
        const double radius = discDiameter(region) / 2 - 0.5;
        painter.drawEllipse(QPointF(region.spot.x, region.spot.y), radius, radius);
    }
    if (m_tiles == nullptr)
        return;
    const QSizeF cell(m_tiles->width / m_tiles->columns, m_tiles->height / m_tiles->rows);
    for (int row = 0; row < m_tiles->rows; ++row) {
        for (int column = 0; column < m_tiles->columns; ++column) {
            const QPointF corner(m_tiles->x + column * cell.width(), m_tiles->y + row * cell.height());
            painter.drawRoundedRect(QRectF(corner, cell).adjusted(1, 1, -1, -1), 3, 3);
        }
    }
}
