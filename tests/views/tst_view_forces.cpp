// What forces look like: colours, arrows and gradients as numbers worked out by hand.

#include "tests/support/log_capture.h"
#include "tests/views/view_probe.h"
#include "views/models/force_colours.h"
#include "views/models/tile_gradient.h"

#include <QCheckBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>
#include <QtMath>

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

    void arrows()
    {
        struct Arrow
        {
            int view;
            float normal;
            float tangential;
            uint16_t given;
            uint16_t shown;
            float scale;
        };
        // None, the least one, beyond the scale, a whole turn, a stub by normal force.
        for (const Arrow &arrow : {Arrow{20, 9.0F, 0.0F, 90, kNone, 0.0F},
                                   {20, 0.0F, 0.01F, 359, 359, 0.0005F},
                                   {20, 0.0F, 25.0F, 1, 1, 1.0F},
                                   {20, 0.0F, 5.0F, 360, kNone, 0.25F},
                                   {83, 0.01F, 0.0F, 90, 90, 0.0F}}) {
            const ViewProbe shown(arrow.view);
            shown.finger->setYdds(0, 1.0F, 1.0F, 45);
            shown.finger->setYdds(0, arrow.normal, arrow.tangential, arrow.given);
            QCOMPARE(shown.gauge(1)->direction, arrow.shown);
            QCOMPARE(shown.gauge(1)->arrowScale, arrow.scale);
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

private:
    int m_paints = 0;
};

QTEST_MAIN(TestViewForces)
#include "tst_view_forces.moc"
