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

namespace {

const QColor kDisc(220, 20, 60);

/// The gauge on a white ground.
QImage drawn(ydds &gauge)
{
    QImage image(gauge.size(), QImage::Format_RGB32);
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
    ydds gauge;
    gauge.resize(200, 120); // half of 60, arrow width 3, radius 57 about (100, 60)
    QCOMPARE(drawn(gauge).pixelColor(100, 60), QColor(Qt::white));
    gauge.discBrush.setColor(kDisc);
    const QImage image = drawn(gauge);
    for (const QPoint &inside : {QPoint(45, 60), QPoint(155, 60), QPoint(100, 5), QPoint(61, 21)})
        QCOMPARE(image.pixelColor(inside), kDisc);
    for (const QPoint &outside : {QPoint(41, 60), QPoint(159, 60), QPoint(100, 1), QPoint(58, 18)})
        QCOMPARE(image.pixelColor(outside), QColor(Qt::white));
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
