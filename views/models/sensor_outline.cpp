#include "views/models/sensor_outline.h"

#include <QtMath>

namespace {

/// A cap with a domed top between x = margin and width - margin, closed at the bottom with rounded corners.
QPainterPath cap(double width, double margin, double top, double shoulder, double bottom)
{
    const double left = margin;
    const double right = width - margin;
    const double middle = width / 2;
    const double reach = (right - left) * 0.21;
    constexpr double kCorner = 10;
    QPainterPath path(QPointF(left, bottom - kCorner));
    path.lineTo(left, shoulder);
    path.cubicTo(left, top + (shoulder - top) * 0.38, left + reach, top, middle, top);
    path.cubicTo(right - reach, top, right, top + (shoulder - top) * 0.38, right, shoulder);
    path.lineTo(right, bottom - kCorner);
    path.quadTo(right, bottom, right - kCorner, bottom);
    path.lineTo(left + kCorner, bottom);
    path.quadTo(left, bottom, left, bottom - kCorner);
    path.closeSubpath();
    return path;
}

QPainterPath roundedRect(double x, double y, double width, double height, double radius)
{
    QPainterPath path;
    path.addRoundedRect(x, y, width, height, radius, radius);
    return path;
}

void addLine(QPainterPath &path, QPointF from, QPointF to)
{
    path.moveTo(from);
    path.lineTo(to);
}

/// The foot by which a cap sits on its finger.
void addFoot(QPainterPath &lines, double width, double top, double bottom)
{
    const double inset = width * 0.24;
    lines.moveTo(inset, top);
    lines.lineTo(inset + 3, bottom);
    lines.lineTo(width - inset - 3, bottom);
    lines.lineTo(width - inset, top);
}

SensorOutline fingertip(int width)
{
    SensorOutline outline{{width, 128}, cap(width, 5, 4, 66, 121), {}};
    addFoot(outline.lines, width, 121, 127);
    outline.lines.addPath(cap(width, 9, 8, 66, 117));
    return outline;
}

SensorOutline nailedFingertip()
{
    SensorOutline outline{{120, 128}, cap(120, 5, 12, 66, 121), {}};
    addFoot(outline.lines, 120, 121, 127);
    outline.lines.moveTo(26, 26);
    outline.lines.cubicTo(34, 8, 46, 3, 60, 3);
    outline.lines.cubicTo(74, 3, 86, 8, 94, 26);
    outline.lines.addPath(cap(120, 16, 28, 68, 110));
    return outline;
}

SensorOutline fingerPad()
{
    SensorOutline outline{{100, 168}, cap(100, 5, 4, 54, 160), {}};
    addFoot(outline.lines, 100, 160, 167);
    outline.lines.addPath(cap(100, 9, 8, 54, 156));
    return outline;
}

SensorOutline palm()
{
    SensorOutline outline{{190, 164}, roundedRect(32, 44, 146, 112, 22), {}};
    for (int finger = 0; finger < 4; ++finger) {
        const double top = finger == 0 || finger == 3 ? 14 : 5;
        outline.body = outline.body.united(roundedRect(35 + finger * 36.0, top, 32, 64, 15));
    }
    QPainterPath thumb(QPointF(36, 128));
    thumb.cubicTo(14, 118, 4, 96, 4, 78);
    thumb.cubicTo(4, 64, 22, 62, 25, 76);
    thumb.cubicTo(27, 86, 32, 90, 44, 92);
    thumb.closeSubpath();
    outline.body = outline.body.united(thumb);
    for (int finger = 0; finger < 4; ++finger)
        addLine(outline.lines, {41 + finger * 36.0, 45}, {61 + finger * 36.0, 45});
    addLine(outline.lines, {62, 156}, {64, 163});
    addLine(outline.lines, {148, 156}, {146, 163});
    addLine(outline.lines, {64, 163}, {146, 163});
    return outline;
}

SensorOutline gripper()
{
    SensorOutline outline{{140, 124}, roundedRect(6, 4, 60, 98, 9), {}};
    outline.body.addPath(roundedRect(74, 4, 60, 98, 9));
    outline.lines.addPath(roundedRect(11, 9, 50, 88, 6));
    outline.lines.addPath(roundedRect(79, 9, 50, 88, 6));
    outline.lines.addPath(roundedRect(16, 108, 108, 14, 5));
    for (const double x : {26.0, 46.0, 94.0, 114.0})
        addLine(outline.lines, {x, 102}, {x, 108});
    return outline;
}

SensorOutline massageHead()
{
    constexpr QPointF kCentre(65, 65);
    constexpr double kOuter = 61;
    constexpr double kInner = 40;
    SensorOutline outline{{130, 130}, {}, {}};
    outline.body.addEllipse(kCentre, kOuter, kOuter);
    outline.lines.addEllipse(kCentre, kInner, kInner);
    outline.lines.addEllipse(kCentre, kOuter - 5, kOuter - 5);
    for (const int degrees : {45, 135, 225, 315}) {
        const double angle = qDegreesToRadians(static_cast<double>(degrees));
        const QPointF along(qCos(angle), qSin(angle));
        addLine(outline.lines, kCentre + along * kInner, kCentre + along * (kOuter - 5));
    }
    return outline;
}

SensorOutline array(int width)
{
    SensorOutline outline{{width, 136}, roundedRect(3, 2, width - 6, 122, 9), {}};
    const double plug = width / 2.0 - 26;
    outline.lines.addPath(roundedRect(plug, 124, 52, 11, 3));
    for (int pin = 0; pin < 6; ++pin)
        addLine(outline.lines, {plug + 8 + pin * 7.2, 128}, {plug + 8 + pin * 7.2, 132});
    return outline;
}

} // namespace

SensorOutline sensorOutline(Outline outline)
{
    switch (outline) {
    case Outline::Fingertip:
        return fingertip(120);
    case Outline::WideFingertip:
        return fingertip(232);
    case Outline::NailedFingertip:
        return nailedFingertip();
    case Outline::FingerPad:
        return fingerPad();
    case Outline::Palm:
        return palm();
    case Outline::Gripper:
        return gripper();
    case Outline::MassageHead:
        return massageHead();
    case Outline::Array:
        return array(260);
    case Outline::WideArray:
        break;
    }
    return array(404);
}
