// What forces look like: colours, arrows and gradients as numbers worked out by hand, gauges by their pixels.

#include "tests/support/log_capture.h"
#include "tests/views/view_probe.h"
#include "views/class_ydds.h"
#include "views/dataForm.h"
#include "views/models/force_colours.h"
#include "views/models/tile_gradient.h"
#include "views/sensorForm.h"
#include "views/ydds.h"

#include <QtTest>
#include <QtWidgets>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr uint16_t kNone = 0xFFFF;
const QColor kRest(240, 240, 240);

/// Forces of `count` channels, one of them pressed.
QVector<float> pressed(int count, int channel, float newtons)
{
    QVector<float> forces(count, 0.0F);
    forces[channel] = newtons;
    return forces;
}

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

class TestViewForces : public QObject
{
    Q_OBJECT

public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        m_paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

private Q_SLOTS:
    void gaugeColours()
    {
        // The ends of the bands, both inside, up to the full scale of 20 N, which is 216.
        const std::tuple<float, float, QColor> bands[] = {
            {-5.0F, 0.9F, kRest},           {0.93F, 3.33F, {255, 165, 165}}, {3.34F, 6.66F, {255, 140, 140}},
            {6.67F, 9.99F, {255, 105, 97}}, {10.0F, 13.33F, {255, 69, 0}},   {13.34F, 16.66F, {220, 20, 60}},
            {16.67F, 19.99F, {139, 0, 0}},  {20.0F, 655.35F, {139, 9, 9}}};
        for (const auto &[from, to, colour] : bands) {
            for (const int number : {20, 19, 17}) { // above full scale, and from it on
                const ViewProbe view(number);
                for (const float newtons : {from, to}) {
                    view.finger->setYdds(0, newtons, 0.0F, 0);
                    QCOMPARE(view.gauge(1)->discBrush.color(), colour);
                }
            }
        }
    }

    void pressColours()
    {
        QCOMPARE(pressColour(-1.0), kRest);
        QCOMPARE(pressColour(0.0), kRest);
        // 0.0001 to the power 0.4 is 0.02512: 5.24 + 233.97 and 0.113 + 233.97
        QCOMPARE(pressColour(0.01), QColor(239, 234, 234));
        QCOMPARE(pressColour(1.0), QColor(235, 202, 202));  // weight 0.15849
        QCOMPARE(pressColour(10.0), QColor(227, 146, 146)); // weight 0.39811
        QCOMPARE(pressColour(50.0), QColor(216, 61, 61));   // weight 0.75786
        QCOMPARE(pressColour(100.0), QColor(208, 4, 4));
        QCOMPARE(pressColour(101.0), QColor(208, 4, 4));
    }

    void channelsThatDoNotFit()
    {
        const ViewProbe palm(42); // 31 discs, full scale 6.25 N, 11 channels
        palm.finger->setPress(0, 6.25F, 6.25F);
        palm.finger->setPress(10, 0.625F, 6.25F);
        palm.finger->setPress(31, 1.0F, 6.25F);
        QCOMPARE(palm.disc(1)->discBrush.color(), QColor(208, 4, 4));
        QCOMPARE(palm.disc(11)->discBrush.color(), QColor(227, 146, 146));
        QCOMPARE(palm.disc(12)->discBrush.color(), QColor(Qt::white));
        QCOMPARE(palm.disc(31)->discBrush.color(), QColor(Qt::white));

        ViewProbe(69).finger->setPress(0, 1.0F, 30.0F); // without discs

        const ViewProbe array(96); // 12 tiles
        array.finger->setPressNList({}, 30.0F);
        array.finger->setPressNList(QVector<float>(5, 30.0F), 30.0F);
        QVERIFY(array.tile(4)->discBrush.color() != QColor(Qt::white));
        QCOMPARE(array.tile(5)->discBrush.color(), QColor(Qt::white));
        array.finger->setPressNList(QVector<float>(40, 30.0F), 30.0F);
        QCOMPARE(array.tile(11)->discBrush.color(), QColor(208, 4, 4));
    }

    void childrenThatAreGone()
    {
        const ViewProbe array(55);
        auto *grid = array.widget->findChild<sensorForm *>();
        const auto pressAll = [&array] { array.finger->setPressNList(QVector<float>(25, 3.0F), 3.0F); };
        grid->setRowColumnCount(3, 3);
        pressAll(); // channel 10 lies at row 0, column 2 after the turn
        QCOMPARE(array.tile(2)->discBrush.color(), QColor(208, 4, 4));
        grid->rows = 9; // more than there are tiles
        pressAll();
        delete grid;
        pressAll();

        const ViewProbe view(85);
        delete view.gauge(1);
        delete view.disc(1);
        for (auto *bar : view.widget->findChildren<QProgressBar *>())
            delete bar;
        view.finger->setYdds(0, 5.0F, 1.0F, 0);
        view.finger->setPress(0, 5.0F, 20.0F);
        view.finger->setPress(1, 20.0F, 20.0F);
        view.finger->setSProx(0, 1);
        view.finger->setMProx(0, 1);
        QCOMPARE(view.disc(2)->discBrush.color(), QColor(208, 4, 4));
        for (const ViewProbe *each : {&array, &view}) {
            each->widget->resize(700, 500);
            each->widget->grab();
        }
    }

    void angleTable()
    {
        const QVector<SinCos> &table = sinCosTable();
        QCOMPARE(table.size(), 360);
        for (int i = 0; i < table.size(); ++i) {
            const double angle = qDegreesToRadians(static_cast<double>(i));
            QVERIFY(qAbs(static_cast<double>(table.at(i).sine) - qSin(angle)) <= 6.5e-6);
            QVERIFY(qAbs(static_cast<double>(table.at(i).cosine) - qCos(angle)) <= 6.5e-6);
        }
    }

    void onePressedTile()
    {
        const ViewProbe view(81);
        view.finger->setPressNList(pressed(10, 4, 25.0F), 25.0F);
        // The pressed tile shows half of itself and no arrow, for its neighbours rest.
        QCOMPARE(view.tile(4)->discBrush.color(), QColor(216, 61, 61));
        QCOMPARE(view.tile(4)->direction, kNone);
        // A corner has one of three neighbours pressed: half of 33.3 percent. A side has one of five: half of
        // 20.
        const QColor corner(224, 124, 124);
        const QColor side(227, 146, 146);
        // The last corner looks at its neighbour by 314 degrees, which truncates towards zero from -45.9999.
        const int towards[9] = {135, 180, 225, 90, 0, 270, 45, 0, 315};
        for (const int cell : {0, 1, 2, 3, 5, 6, 7, 8}) {
            QCOMPARE(view.tile(cell)->discBrush.color(), cell % 2 == 0 ? corner : side);
            QCOMPARE(int(view.tile(cell)->direction), towards[cell]);
            QVERIFY(qAbs(view.tile(cell)->arrowScale - 1.0F) < 1e-4F);
        }
        view.finger->setPressNList(pressed(10, 4, 2.5F), 25.0F);
        QVERIFY(qAbs(view.tile(3)->arrowScale - 0.1F) < 1e-5F);
        view.finger->setPressNList(QVector<float>(10, 0.0F), 25.0F);
        QCOMPARE(view.tile(3)->direction, kNone);
        QCOMPARE(view.tile(3)->discBrush.color(), kRest);
    }

    void neighboursThatBalance()
    {
        const ViewProbe view(81);
        const auto directionBetween = [&view](int one, int other) {
            QVector<float> forces = pressed(10, one, 8.1F);
            forces[other] = 8.1F;
            view.finger->setPressNList(forces, 25.0F);
            return view.tile(4)->direction;
        };
        QCOMPARE(directionBetween(3, 5), kNone);
        QVERIFY(view.tile(4)->discBrush.color() != kRest);
        QCOMPARE(directionBetween(1, 7), kNone);
        // Opposite corners balance on one diagonal only; on the other the odd angle leaves a rest.
        QCOMPARE(directionBetween(2, 6), kNone);
        QVERIFY(directionBetween(0, 8) != kNone);
    }

    void tilesStandTurned()
    {
        for (const int number : {55, 56}) {
            const ViewProbe view(number);
            view.finger->setPressNList(pressed(25, 0, 3.0F), 3.0F);
            QCOMPARE(view.tile(4)->discBrush.color(), QColor(216, 61, 61)); // row 0, column 4
            // Channel 7 lies above the pressed 12 and shows it below, which is left after the turn.
            view.finger->setPressNList(pressed(25, 12, 3.0F), 3.0F);
            QCOMPARE(int(view.tile(13)->direction), 270);
            // Channel 13 lies right of it and shows it left, which is up after the turn.
            QCOMPARE(int(view.tile(17)->direction), 0);
        }
    }

    void numbersWhenAsked()
    {
        const ViewProbe dots(44);
        const ViewProbe ring(110);
        const ViewProbe tiles(96);
        const ViewProbe plainTiles(81);
        const auto press = [&](bool asked) {
            for (const ViewProbe *view : {&dots, &ring, &tiles, &plainTiles}) {
                view->finger->setShowData(asked);
                view->finger->setPress(1, 2.346F, 25.0F);
                view->finger->setPressNList(pressed(12, 1, 2.346F), 25.0F);
            }
            return dots.disc(2)->text() + QLatin1Char('|') + tiles.tile(1)->text() + tiles.tile(0)->text() +
                   QLatin1Char('|') + ring.disc(2)->text() + plainTiles.tile(1)->text();
        };
        QCOMPARE(press(true), QStringLiteral("2.35|2.350.00|"));
        QCOMPARE(press(false), QStringLiteral("||"));
    }

    void cellsOfView2()
    {
        const ViewProbe view(2);
        const auto *list = view.widget->findChild<QScrollArea *>(QStringLiteral("sawgDataList"));
        const auto texts = [list](const char *name) {
            QString all;
            for (const QLabel *label : list->findChildren<QLabel *>(QLatin1String(name)))
                all += label->text() +
                       QLatin1Char(label->styleSheet().contains(QLatin1String("255")) ? '!' : ' ');
            return all;
        };
        QCOMPARE(texts("lbIdx"),
                 QStringLiteral(
                     "通道0 通道1 通道2 通道3 通道4 通道5 通道6 通道7 法向力0 切向力0 方向0 自电容接近0 "));
        view.finger->parseData(
            QByteArray::fromHex("55aa0085 01 00"
                                "00000000 01000000 02000000 01000080 07000000 88130000 ffffff7f"
                                "2c000000 00004841 11223344 00005040 55667788 0e01 78563412 f30a"));
        // Touched channels are red; the proximity value stands where the direction was.
        QCOMPARE(texts("lbData"),
                 QStringLiteral("0 1!2 2147483649!7!5000 2147483647!44 12.50 3.25 305419896  "));
        const LogCapture log;
        view.finger->setData(12, 1);
        view.finger->setYdds(1, 1.0F, 1.0F, 1);
        // The buttons of the last channel are told to whoever listens to the view.
        QSignalSpy resets(&view.finger->signals, &class_fingerSignals::si_channelReset);
        QSignalSpy enables(&view.finger->signals, &class_fingerSignals::si_channelEn);
        list->findChildren<QPushButton *>(QStringLiteral("pbtnReset")).at(7)->click();
        list->findChildren<QCheckBox *>(QStringLiteral("chkpbEnable")).at(7)->click();
        QCOMPARE(resets, (QList<QVariantList>{{QVariant::fromValue<unsigned char>(7)}}));
        QCOMPARE(enables, (QList<QVariantList>{{QVariant::fromValue<unsigned char>(7), true}}));
        QVERIFY(log.contains(QStringLiteral("list len:12")) && log.contains(QStringLiteral("not found lb")));
    }

    void unchangedSampleIsNotPainted()
    {
        const ViewProbe view(55);
        view.widget->findChild<QTabWidget *>()->setCurrentIndex(1);
        view.widget->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.widget.get()));
        view.tile(12)->installEventFilter(this);
        view.gauge(1)->installEventFilter(this); // on a page that is covered
        const auto paintsOfForce = [&](float newtons) {
            m_paints = 0;
            view.finger->setPressNList(QVector<float>(25, newtons), 3.0F);
            view.finger->setYdds(0, newtons, 0.0F, 0);
            QCoreApplication::processEvents();
            return m_paints;
        };
        QCOMPARE(paintsOfForce(3.0F), 1);
        QCOMPARE(paintsOfForce(3.0F), 0);
        QCOMPARE(paintsOfForce(1.0F), 1);
    }

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

    void styleSheetIsPainted()
    {
        for (const bool isPolished : {false, true}) {
            QWidget parent;
            ydds gauge(&parent);
            gauge.resize(40, 40);
            if (isPolished)
                gauge.ensurePolished();
            parent.setStyleSheet(QStringLiteral("QLabel { background: blue; }"));
            gauge.ensurePolished();
            QCOMPARE(drawn(gauge).pixelColor(1, 20), QColor(Qt::blue));
        }
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

private:
    int m_paints = 0;
};

QTEST_MAIN(TestViewForces)
#include "tst_view_forces.moc"
