// The gauges by their pixels, the cells and the grid by their widgets.

#include "views/class_ydds.h"
#include "views/dataForm.h"
#include "views/sensorForm.h"
#include "views/ydds.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QMap>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

namespace {

const QColor kDisc(220, 20, 60);

/// The gauge on a white ground, on a screen with so many pixels to a unit.
QImage drawn(ydds &gauge, int pixelRatio = 1)
{
    QImage image(gauge.size() * pixelRatio, QImage::Format_RGB32);
    image.setDevicePixelRatio(pixelRatio);
    image.fill(Qt::white);
    gauge.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

/// An arrow on a gauge of 120 by 120.
QImage drawnArrow(int direction, float scale)
{
    ydds gauge;
    gauge.resize(120, 120);
    gauge.direction = static_cast<uint16_t>(direction);
    gauge.arrowScale = scale;
    return drawn(gauge);
}

/// Every pixel that lies wholly within the circle has the disc's colour, every one wholly outside is white; those in
/// between are covered so far that the area is that of the circle.
void verifyDisc(const QImage &image, QPoint centre, double radius)
{
    double area = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            area += (255.0 - image.pixelColor(x, y).green()) / (255 - kDisc.green());
            const double distance = std::hypot(x + 0.5 - centre.x(), y + 0.5 - centre.y());
            if (distance < radius - 1)
                QCOMPARE(image.pixelColor(x, y), kDisc);
            else if (distance > radius + 1)
                QCOMPARE(image.pixelColor(x, y), QColor(Qt::white));
        }
    }
    QVERIFY(std::abs(std::sqrt(area / M_PI) - radius) < 0.1);
}

bool isInk(const QColor &colour)
{
    return colour.lightness() < 60;
}

} // namespace

class TestGauges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void discFillsItsCircle();
    void arrowPoints();
    void gridMakesTilesOnce();
    void cellTellsItsButtons();
};

void TestGauges::discFillsItsCircle()
{
    struct Case
    {
        QSize size;
        int radius;
    };
    // Half of 60 leaves an arrow width of 3, half of 150 one of 7; a gauge too small for a disc has one of 2 all the same.
    for (const Case &each : {Case{{200, 120}, 57}, Case{{400, 300}, 143}, Case{{9, 40}, 2}}) {
        ydds gauge;
        gauge.resize(each.size);
        for (const int pixelRatio : {1, 2}) {
            gauge.discBrush.setColor(Qt::white);
            const QPoint centre = QPoint(each.size.width() / 2, each.size.height() / 2) * pixelRatio;
            QCOMPARE(drawn(gauge, pixelRatio).pixelColor(centre), QColor(Qt::white));
            gauge.discBrush.setColor(kDisc);
            verifyDisc(drawn(gauge, pixelRatio), centre, each.radius * pixelRatio + 0.5);
        }
    }
}

void TestGauges::arrowPoints()
{
    // Radius 57 about (60, 60), so the shaft of a full arrow is 55 long.
    const QPoint centre(60, 60);
    const QMap<int, QPoint> tips{
        {0, {0, -55}}, {90, {55, 0}}, {180, {0, 55}}, {270, {-55, 0}}, {45, {38, -38}}};
    for (auto tip = tips.begin(); tip != tips.end(); ++tip) {
        const QImage image = drawnArrow(tip.key(), 1.0F);
        QVERIFY(isInk(image.pixelColor(centre + *tip / 2)));
        QVERIFY(isInk(image.pixelColor(centre + *tip * 0.95)));
        QVERIFY(!isInk(image.pixelColor(centre + *tip * 1.07)));
    }
    const QImage stub = drawnArrow(0, 0.0F); // a fifth of 55
    QVERIFY(isInk(stub.pixelColor(60, 51)));
    QVERIFY(!isInk(stub.pixelColor(60, 46)));
    // 360 - 400 is 65496 in 16 bits, which is 336 degrees anticlockwise of up.
    QCOMPARE(drawnArrow(400, 1.0F), drawnArrow(24, 1.0F));
}

void TestGauges::gridMakesTilesOnce()
{
    sensorForm form;
    form.setRowColumnCount(5, 5);
    QCOMPARE(form.yddsList.size(), 25);
    auto *grid = form.findChild<QGridLayout *>(QStringLiteral("gridLayout"));
    QCOMPARE(grid->itemAtPosition(1, 2)->widget(), form.yddsList.at(7));

    const QList<class_ydds *> tiles = form.yddsList;
    form.setRowColumnCount(1, 25);
    QCOMPARE(form.yddsList, tiles);
    form.setRowColumnCount(3, 3);
    QCOMPARE(form.yddsList.size(), 9);
    QCOMPARE(form.findChildren<class_ydds *>().size(), 34); // the old tiles stay below
}

void TestGauges::cellTellsItsButtons()
{
    dataForm cell(200, QStringLiteral("通道3"), 0);
    QSignalSpy resets(&cell, &dataForm::si_reset);
    QSignalSpy enables(&cell, &dataForm::si_en);
    cell.findChild<QPushButton *>(QStringLiteral("pbtnReset"))->click();
    auto *box = cell.findChild<QCheckBox *>(QStringLiteral("chkpbEnable"));
    box->click();
    box->click();
    QCOMPARE(resets.count(), 1);
    QCOMPARE(resets.at(0).at(0).toInt(), 200);
    QCOMPARE(enables.count(), 2);
    QCOMPARE(enables.at(0).at(1).toBool(), true);
    QCOMPARE(enables.at(1).at(1).toBool(), false);
}

QTEST_MAIN(TestGauges)
#include "tst_gauges.moc"
