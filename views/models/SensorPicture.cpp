#include "views/models/SensorPicture.h"

#include "views/gauge_painting.h"

#include <QEvent>
#include <QFontMetrics>
#include <QLabel>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kSmallestDigits = 8;
constexpr int kLargestDigits = 24;
constexpr int kGapBeforeDisc = 1;
/// Keeps the text of a tile off the edge of its cell.
constexpr int kTileIndent = 3;

QColor mixed(const QColor &back, const QColor &front, double part)
{
    const auto mix = [part](int from, int to) { return static_cast<int>(from + (to - from) * part); };
    return {mix(back.red(), front.red()), mix(back.green(), front.green()), mix(back.blue(), front.blue())};
}

/// Pixel size of the largest digits with which `text` fits on the left of the disc of a gauge. The font has
/// to be the gauge's own: a label with a style sheet does not take its parent's.
int digitSize(QFont font, QSize gauge, const QString &text, int indent = 0)
{
    const int disc = gaugeSize(gauge.width(), gauge.height(), false).radius;
    const QSize room(gauge.width() / 2 - disc - kGapBeforeDisc - indent, gauge.height());
    int pixels = kLargestDigits + 1;
    QSize needed;
    do {
        font.setPixelSize(--pixels);
        needed = QFontMetrics(font).size(0, text);
    } while (pixels > kSmallestDigits && (needed.width() > room.width() || needed.height() > room.height()));
    return pixels;
}

void setDigitSize(QWidget *gauge, int pixels)
{
    QFont font = gauge->font();
    if (font.pixelSize() == pixels)
        return;
    font.setPixelSize(pixels);
    gauge->setFont(font);
}

} // namespace

SensorPicture::SensorPicture(Outline outline, QWidget *parent)
    : QWidget(parent)
    , m_outline(sensorOutline(outline))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void SensorPicture::addSpot(const Spot &spot, QWidget *gauge, const QString &widestText)
{
    m_regions.append({spot, gauge, widestText});
    if (gauge == nullptr)
        return;
    if (!widestText.isEmpty())
        m_margin =
            std::max({m_margin, spot.width / 2 - spot.x, spot.x + spot.width / 2 - m_outline.size.width()});
    gauge->setParent(this);
    placeGauge(m_regions.constLast());
}

void SensorPicture::setTiles(const TileLayout &tiles, QWidget *grid, const QString &widestText)
{
    m_tiles = &tiles;
    m_grid = grid;
    m_widestTileText = widestText;
    m_grid->setParent(this);
    placeTiles();
}

QSize SensorPicture::sizeHint() const
{
    return minimumSizeHint() * 2;
}

QSize SensorPicture::minimumSizeHint() const
{
    return m_outline.size + QSize(static_cast<int>(std::ceil(2 * m_margin)), 0);
}

double SensorPicture::scale() const
{
    const QSize smallest = minimumSizeHint();
    return std::min(static_cast<double>(width()) / smallest.width(),
                    static_cast<double>(height()) / smallest.height());
}

QPointF SensorPicture::origin() const
{
    const QSizeF drawn = QSizeF(m_outline.size) * scale();
    return {(width() - drawn.width()) / 2, (height() - drawn.height()) / 2};
}

void SensorPicture::placeGauge(const Region &region) const
{
    const Spot &spot = region.spot;
    const double across = region.widestText.isEmpty() ? spot.diameter : spot.width;
    const QPointF centre = origin() + QPointF(spot.x, spot.y) * scale();
    // Whole pixels downwards, so that neighbours never grow into each other.
    const QSize size(static_cast<int>(across * scale()), static_cast<int>(spot.diameter * scale()));
    region.gauge->setGeometry(
        QRect(QPointF(centre.x() - size.width() / 2.0, centre.y() - size.height() / 2.0).toPoint(), size));
    if (!region.widestText.isEmpty())
        setDigitSize(region.gauge, digitSize(region.gauge->font(), size, region.widestText));
}

void SensorPicture::placeTiles() const
{
    const QPointF corner = origin() + QPointF(m_tiles->x, m_tiles->y) * scale();
    const QRect place = QRectF(corner, QSizeF(m_tiles->width, m_tiles->height) * scale()).toRect();
    m_grid->setGeometry(place);
    const QSize tileSize(place.width() / m_tiles->columns, place.height() / m_tiles->rows);
    const QList<QLabel *> all = m_grid->findChildren<QLabel *>();
    if (all.isEmpty())
        return;
    const int pixels = digitSize(all.constFirst()->font(), tileSize, m_widestTileText, kTileIndent);
    for (QLabel *tile : all) {
        setDigitSize(tile, pixels);
        tile->setIndent(kTileIndent);
    }
}

void SensorPicture::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_backdrop = QPixmap();
    for (const Region &region : qAsConst(m_regions)) {
        if (region.gauge != nullptr)
            placeGauge(region);
    }
    if (m_grid)
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
        const double radius = region.spot.diameter / 2 - 0.5;
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
