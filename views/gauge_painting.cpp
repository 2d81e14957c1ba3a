#include "views/gauge_painting.h"

#include <QCache>
#include <QImage>
#include <QPainter>
#include <QtMath>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr int kSmallestRadius = 2;
constexpr int kLargestSmallRadius = 64;
constexpr int kKeptDiscBytes = 2 * 1024 * 1024;

/// A length that never falls below a fifth, so that an arrow that is shown can be seen.
int scaledLength(int length, float scale)
{
    return static_cast<int>(length * static_cast<double>(scale) * 0.8 + length * 0.2);
}

QPoint truncated(double x, double y)
{
    return {static_cast<int>(x), static_cast<int>(y)};
}

/// A disc with an outline of its own colour, one pixel of the device wide.
void drawPlainDisc(QPainter &painter, QPoint centre, int radius, const QColor &colour, QPen pen = QPen())
{
    pen.setColor(colour);
    pen.setWidth(0);
    painter.setPen(pen);
    painter.setBrush(colour);
    painter.drawEllipse(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
}

QImage makeDisc(int radius, const QColor &colour, double pixelRatio)
{
    const int side = static_cast<int>(std::ceil((2 * radius + 2) * pixelRatio));
    QImage disc(side, side, QImage::Format_ARGB32_Premultiplied);
    disc.setDevicePixelRatio(pixelRatio);
    disc.fill(Qt::transparent);
    QPainter painter(&disc);
    painter.setRenderHint(QPainter::Antialiasing);
    drawPlainDisc(painter, QPoint(radius + 1, radius + 1), radius, colour);
    painter.end();
    // An image that has been painted on keeps what it was painted with, which is larger than a small disc.
    return disc.copy();
}

/// Small discs come in few sizes and colours and change with every sample, so each is kept once it is drawn.
QImage smallDisc(int radius, const QColor &colour, double pixelRatio)
{
    static QCache<quint64, QImage> kept(kKeptDiscBytes);
    const quint64 key =
        quint64(colour.rgba()) | quint64(radius) << 32U | quint64(qRound(pixelRatio * 64)) << 48U;
    if (const QImage *found = kept.object(key); found != nullptr)
        return *found;
    QImage disc = makeDisc(radius, colour, pixelRatio);
    kept.insert(key, new QImage(disc), static_cast<int>(disc.sizeInBytes()));
    return disc;
}

/// True where the pixels of a kept image fall on those of the device. Between them it would stand beside the
/// arrow.
bool fallsOnPixels(const QTransform &toDevice, QPoint corner)
{
    const QPointF place = toDevice.map(QPointF(corner));
    return toDevice.type() <= QTransform::TxScale && qFuzzyCompare(toDevice.m11(), toDevice.m22()) &&
           place == place.toPoint();
}

void drawDisc(QPainter &painter, QPoint centre, int radius, const QColor &colour, const QPen &pen)
{
    const QPoint corner = centre - QPoint(radius + 1, radius + 1);
    if (radius <= kLargestSmallRadius && pen.style() == Qt::SolidLine &&
        fallsOnPixels(painter.deviceTransform(), corner))
        painter.drawImage(corner, smallDisc(radius, colour, painter.deviceTransform().m11()));
    else
        drawPlainDisc(painter, centre, radius, colour, pen);
}

QLine barb(QPoint tip, int degrees, int length)
{
    const double angle = qDegreesToRadians(static_cast<double>(degrees % 360));
    return {tip, truncated(tip.x() - qSin(angle) * length, tip.y() - qCos(angle) * length)};
}

void drawArrow(QPainter &painter, QPoint centre, const GaugeSize &size, const GaugeLook &look)
{
    QPen pen(look.arrowPen);
    pen.setWidth(look.arrowExtraWidth + size.arrowWidth);
    painter.setPen(pen);

    // A direction beyond 360 wraps at 16 bits before it is used as an angle.
    const auto degrees = static_cast<uint16_t>(360 - look.direction);
    const double angle = qDegreesToRadians(static_cast<double>(degrees)) - M_PI_2;
    const int length = scaledLength(size.radius - 2, look.arrowScale);
    const QPoint tip = truncated(centre.x() - qCos(angle) * length, centre.y() + qSin(angle) * length);

    const int barbLength = scaledLength(size.radius / 3, look.arrowScale);
    const std::array<QLine, 3> lines{QLine(centre, tip), barb(tip, degrees + 135, barbLength),
                                     barb(tip, degrees + 225, barbLength)};
    painter.drawLines(lines.data(), static_cast<int>(lines.size()));
}

} // namespace

GaugeSize gaugeSize(int width, int height, bool halo)
{
    const int half = std::min(width / 2, height / 2);
    const int bound = halo ? static_cast<int>(half / 1.5) : half;
    const int arrowWidth = bound >= 40 ? bound / 20 : 2;
    return {std::max(bound - arrowWidth, kSmallestRadius), arrowWidth};
}

void paintGauge(QPainter &painter, int width, int height, const GaugeLook &look)
{
    painter.setRenderHint(QPainter::Antialiasing);
    const QPoint centre(width / 2, height / 2);
    const GaugeSize size = gaugeSize(width, height, look.halo);
    if (look.halo && look.haloBrush.color() != QColor(Qt::white)) {
        painter.setOpacity(0.8);
        drawPlainDisc(painter, centre, static_cast<int>(size.radius * 1.5), look.haloBrush.color());
        painter.setOpacity(1.0);
    }
    if (look.discBrush.color() != QColor(Qt::white))
        drawDisc(painter, centre, size.radius, look.discBrush.color(), look.discPen);
    if (look.direction != kNoArrow)
        drawArrow(painter, centre, size, look);
}
