// The gauges by their pixels, the cells and the grid by their widgets.

#include "views/class_ydds.h"
#include "views/dataForm.h"
#include "views/sensorForm.h"
#include "views/ydds.h"

#include <QApplication>
#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QMap>
#include <QPainter>
#include <QPushButton>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <cstdlib>
#include <functional>

namespace {

const QColor kDisc(220, 20, 60);

/// The gauge on a white ground, on a screen with so many pixels to a unit.
QImage drawn(ydds &gauge, double pixelRatio = 1)
{
    QImage image((QSizeF(gauge.size()) * pixelRatio).toSize(), QImage::Format_RGB32);
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

/// Largest difference of two pictures in a channel of a pixel.
int difference(const QImage &one, const QImage &other)
{
    int most = 0;
    for (int i = 0; i < one.height() * one.bytesPerLine(); ++i)
        most = std::max(most, std::abs(one.constBits()[i] - other.constBits()[i]));
    return most;
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
    void discIsPaintedAsStated()
    {
        struct Case
        {
            QSize size;
            int radius;
        };
        // Half of 60 leaves an arrow width of 3, half of 150 one of 7; a gauge too small for a disc has one
        // of 2 all the same.
        for (const Case &each :
             {Case{{200, 120}, 57}, Case{{37, 24}, 10}, Case{{400, 300}, 143}, Case{{9, 40}, 2}}) {
            for (const double pixelRatio : {1.0, 1.25, 1.5, 2.0}) {
                for (const Qt::PenStyle style : {Qt::SolidLine, Qt::DotLine, Qt::NoPen}) {
                    ydds gauge;
                    gauge.resize(each.size);
                    QImage expected = drawn(gauge, pixelRatio);
                    QVERIFY(expected.allGray());
                    gauge.discBrush.setColor(kDisc);
                    gauge.discPen.setStyle(style);
                    QPainter painter(&expected);
                    painter.setRenderHint(QPainter::Antialiasing);
                    painter.setPen(QPen(kDisc, 0, style));
                    painter.setBrush(kDisc);
                    painter.drawEllipse(each.size.width() / 2 - each.radius,
                                        each.size.height() / 2 - each.radius, 2 * each.radius,
                                        2 * each.radius);
                    painter.end();
                    QVERIFY(difference(drawn(gauge, pixelRatio), expected) <= 2);
                }
            }
        }
    }

    void labelPaintsWhatItIsGiven()
    {
        const auto corner = [](const std::function<void(QWidget &, ydds &)> &give) {
            QWidget parent;
            ydds gauge(&parent);
            gauge.resize(40, 40);
            give(parent, gauge);
            gauge.ensurePolished();
            return drawn(gauge).pixelColor(1, 20);
        };
        QPixmap blue(40, 40);
        blue.fill(Qt::blue);
        const QString sheet = QStringLiteral("QLabel { background: blue; }");
        QCOMPARE(corner([&](QWidget &, ydds &gauge) { gauge.setPixmap(blue); }), QColor(Qt::blue));
        QCOMPARE(corner([&](QWidget &, ydds &gauge) { gauge.setStyleSheet(sheet); }), QColor(Qt::blue));
        QCOMPARE(corner([&](QWidget &parent, ydds &) { parent.setStyleSheet(sheet); }), QColor(Qt::blue));
        QCOMPARE(corner([&](QWidget &parent, ydds &gauge) {
                     gauge.ensurePolished();
                     parent.setStyleSheet(sheet);
                 }),
                 QColor(Qt::blue));
    }

    void arrowPoints()
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

    void gridMakesTilesOnce()
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

    void cellKeepsItsSizeOfText()
    {
        const QFont before = QApplication::font();
        const auto back = qScopeGuard([&before] { QApplication::setFont(before); });
        QFont small = before;
        small.setPointSize(9);
        QApplication::setFont(small);
        dataForm cell(0, QStringLiteral("通道0"), 0);
        cell.show();
        for (const bool touched : {false, true}) {
            if (touched)
                cell.setTouched(true);
            for (const char *name : {"lbIdx", "lbData", "pbtnReset", "chkpbEnable"})
                QCOMPARE(cell.findChild<QWidget *>(QLatin1String(name))->font().pointSize(), 12);
        }
    }
};

QTEST_MAIN(TestGauges)
#include "tst_gauges.moc"
