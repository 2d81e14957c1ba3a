// Every program id: which view it gets, and what that view is made of. The table is stated here once more.

#include "tests/support/log_capture.h"
#include "tests/views/view_probe.h"
#include "views/gauge_painting.h"
#include "views/models/finger_forms.h"
#include "views/models/view_layout.h"

#include <QtTest>
#include <QtWidgets>

#include <algorithm>

namespace {

/// What the views of some numbers have in common.
struct Expected
{
    QVector<int> numbers;
    int barMaximum;
    int deepRed;
    int middleRed;
    int gauges;
    int discs;
    int sProxBars;
    int mProxBars;
    bool showsNumbers;
    const char *titles;
};

// clang-format off
const Expected kViews[] = {
    {{2}, 300000, 139, 140, 1, 0, 1, 0, false, "三维力 压力 接近 数据"},
    {{17}, 300000, 139, 140, 2, 0, 2, 1, false, "三维力 压力 接近"},
    {{18}, 300000, 139, 140, 2, 0, 1, 0, false, "三维力 接近"},
    {{19}, 300000, 139, 140, 1, 0, 1, 0, true, "三维力 压力 接近"},
    {{20}, 300000, 139, 140, 2, 0, 1, 0, false, "三维力 压力 接近"},
    {{21, 22, 23}, 300000, 139, 140, 3, 0, 2, 1, false, "三维力 压力 接近"},
    {{24, 46}, 300000, 139, 140, 2, 0, 1, 0, true, "压力 接近"},
    {{25, 26}, 300000, 139, 140, 0, 0, 0, 0, false, ""},
    {{27, 28, 30}, 300000, 139, 140, 1, 0, 1, 0, false, ""},
    {{29}, 300000, 139, 140, 2, 0, 2, 1, false, "接近"},
    {{31}, 300000, 139, 140, 1, 0, 0, 0, false, ""},
    {{34}, 340000, 139, 140, 0, 0, 0, 0, false, ""},
    {{37, 47, 49, 57, 58}, 370000, 139, 140, 1, 0, 1, 0, false, "压力 接近"},
    {{38}, 380000, 139, 140, 2, 0, 1, 1, false, "压力 接近"},
    {{39}, 390000, 139, 140, 1, 0, 1, 0, false, "压力 接近"},
    {{40}, 400000, 140, 140, 1, 0, 1, 0, false, "压力 接近"},
    {{41}, 410000, 141, 141, 1, 0, 1, 0, false, "压力 接近"},
    {{42}, 450000, 145, 145, 3, 31, 1, 0, false, "压力 接近"},
    {{43}, 430000, 143, 143, 2, 0, 2, 1, false, "三维力 压力 接近"},
    {{44}, 450000, 145, 145, 1, 13, 1, 0, true, "三维力 压力 接近"},
    {{45}, 450000, 145, 145, 15, 0, 1, 0, false, "三维力 压力 接近"},
    {{48}, 370000, 139, 140, 2, 0, 2, 1, false, "压力 接近"},
    {{50, 54}, 370000, 139, 140, 1, 0, 1, 0, true, "压力 接近"},
    {{52}, 370000, 139, 140, 2, 0, 2, 1, true, "压力 接近"},
    {{55, 56, 96}, 370000, 139, 140, 1, 0, 1, 0, true, "三维力 压力 接近"},
    {{59}, 370000, 139, 140, 4, 0, 1, 0, true, "压力 接近"},
    {{64, 95}, 370000, 139, 140, 1, 0, 1, 0, false, "压力 接近"},
    {{67, 70}, 300000, 139, 140, 2, 0, 1, 0, false, "压力 接近"},
    {{69}, 410000, 141, 141, 1, 0, 1, 0, false, "三维力 压力 接近"},
    {{76}, 450000, 145, 145, 3, 12, 1, 0, false, "压力 接近"},
    {{81}, 370000, 139, 140, 1, 0, 1, 0, false, "三维力 压力 接近"},
    {{83}, 450000, 145, 145, 1, 5, 1, 0, false, ""},
    {{85}, 450000, 145, 145, 1, 10, 2, 1, false, ""},
    {{86}, 450000, 145, 145, 1, 10, 1, 0, false, ""},
    {{98}, 450000, 145, 145, 1, 0, 1, 0, false, "接近"},
    {{102}, 370000, 139, 140, 1, 0, 1, 0, true, "接近"},
    {{110, 111}, 370000, 139, 140, 1, 12, 1, 0, true, ""},
};
// clang-format on

/// Ids that are shown by another model's view.
const QMap<int, int> kElsewhere{{60, 20},  {61, 21},  {62, 23},  {63, 24},  {64, 50},  {65, 50},   {66, 50},
                                {75, 50},  {108, 50}, {68, 67},  {80, 67},  {82, 81},  {84, 83},   {87, 86},
                                {88, 85},  {91, 64},  {92, 64},  {93, 64},  {94, 64},  {97, 76},   {99, 52},
                                {100, 54}, {104, 54}, {105, 54}, {106, 54}, {107, 54}, {103, 102}, {113, 19}};

/// How the arrows of some views differ from all others, which show tangential force in directions below 360.
struct ExpectedArrow
{
    bool byNormal; ///< and without a limit for the direction
    int rotation;
};
const QMap<int, ExpectedArrow> kArrows{{17, {false, 90}},   {55, {false, 270}}, {56, {false, 270}},
                                       {102, {false, 270}}, {83, {true, 0}},    {85, {true, 0}},
                                       {86, {true, 0}},     {98, {true, 0}}};

int viewNumber(int programId)
{
    return kElsewhere.value(programId, programId);
}

const Expected *expectedView(int programId)
{
    const int number = viewNumber(programId);
    for (const Expected &each : kViews) {
        if (each.numbers.contains(number))
            return &each;
    }
    return nullptr;
}

ViewProbe probe(int programId)
{
    const int number = viewNumber(programId);
    return ViewProbe(programId, number == 102 || number == 111 ? number : 0);
}

/// How many there are of a row of names that count from 1 without a gap.
template<typename Kind>
int countOf(const ViewProbe &view, const char *name)
{
    int found = 0;
    while (view.find<Kind>(name, found + 1) != nullptr)
        ++found;
    return found;
}

QString titles(const ViewProbe &view)
{
    QStringList texts;
    const auto *pages = view.widget->findChild<QTabWidget *>(QStringLiteral("tabWidget"));
    for (int i = 0; pages != nullptr && i < pages->count(); ++i)
        texts.append(pages->tabText(i));
    return texts.join(QLatin1Char(' '));
}

void showWideNumbers(class_finger *view)
{
    view->setShowData(true);
    const float full = view->info != nullptr ? view->info->range : 20.0F;
    // The floats of the long block have a sign.
    const float block = std::max(full, 20.0F) * (view->info != nullptr && view->info->yddsFmt == 2 ? -1 : 1);
    for (unsigned char i = 0; i < 16; ++i) {
        view->setYdds(i, block, block, 359);
        view->setPress(i, full, full);
    }
    view->setPressNList(QVector<float>(25, full), full);
}

/// True when what the gauge shows stands wholly on the left of its disc, in a size that can be read.
bool textIsFree(const QLabel &gauge)
{
    const QSize text = gauge.fontMetrics().size(0, gauge.text());
    const int disc = gaugeSize(gauge.width(), gauge.height(), false).radius;
    return std::max(gauge.indent(), 0) + text.width() <= gauge.width() / 2 - disc &&
           text.height() <= gauge.height() && gauge.font().pixelSize() >= 8;
}

/// A row for every id, or for one of each view only; 64 itself shows 50.
void addRows(bool everyId)
{
    QTest::addColumn<int>("id");
    for (int id = 0; id < 256; ++id) {
        if (everyId || (expectedView(id) != nullptr && (viewNumber(id) == id || id == 91)))
            QTest::addRow("id %d", id) << id;
    }
}

} // namespace

class TestViewFamily : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyProgramId_data() { addRows(true); }

    void everyProgramId()
    {
        QFETCH(int, id);
        const LogCapture log;
        const ViewProbe view = probe(id);
        QVERIFY(view.boxesCame());
        const Expected *expected = expectedView(id);
        if (expected == nullptr) {
            QVERIFY(view.finger == nullptr);
            QCOMPARE(log.lines(), QStringList(QStringLiteral("not found finger:%1").arg(id)));
            return;
        }
        QVERIFY(view.finger != nullptr);
        const int number = viewNumber(id);
        const QString name = QStringLiteral("fingerForm_%1").arg(number);
        QCOMPARE(QString::fromLatin1(view.widget->metaObject()->className()), name);
        QCOMPARE(log.count(name + (id == 2 ? QStringLiteral(" new:8") : QStringLiteral(" new"))), 1);
        const bool hasRow = number != 102 && number != 111;
        QCOMPARE(view.finger->info, hasRow ? findFingerInfoByPrg(static_cast<uint8_t>(number)) : nullptr);
        QCOMPARE(view.finger->widget, hasRow ? view.widget.get() : nullptr);

        QCOMPARE(countOf<ydds>(view, "label_"), expected->gauges);
        QCOMPARE(countOf<ydds>(view, "lbPress_"), expected->discs);
        QCOMPARE(countOf<QProgressBar>(view, "pbSProx_"), expected->sProxBars);
        QCOMPARE(countOf<QProgressBar>(view, "pbMProx_"), expected->mProxBars);
        for (const QProgressBar *bar : view.widget->findChildren<QProgressBar *>()) {
            QCOMPARE(bar->minimum(), 0);
            QCOMPARE(bar->maximum(), expected->barMaximum);
        }
        QCOMPARE(titles(view), QString::fromUtf8(expected->titles));
        const auto *pages = view.widget->findChild<QTabWidget *>();
        QCOMPARE(pages == nullptr, expected->titles[0] == '\0');
        QVERIFY(pages == nullptr || pages->currentIndex() == 0);
    }

    void numbersAndShades_data() { addRows(false); }

    void numbersAndShades()
    {
        QFETCH(int, id);
        const Expected *expected = expectedView(id);
        const ViewProbe view = probe(id);
        for (unsigned char i = 0; i < 16; ++i) // one more than any view has
            view.finger->setYdds(i, 5.0F, 1.234F, 77);
        // A quarter of the scale: 54. View 18 is a static picture.
        const QColor middling(255, expected->middleRed, expected->middleRed);
        for (int i = 1; i <= expected->gauges; ++i)
            QCOMPARE(view.gauge(i)->discBrush.color(), id == 18 ? QColor(Qt::white) : middling);
        if (expected->gauges == 0 || id == 18)
            return;
        view.finger->setShowData(true);
        view.finger->setYdds(0, 19.0F, 1.234F, 77); // 205.2
        QCOMPARE(view.gauge(1)->discBrush.color(), QColor(expected->deepRed, 0, 0));
        QCOMPARE(view.gauge(1)->text(),
                 expected->showsNumbers ? QStringLiteral("19.00\n1.23\n77") : QString());
        view.finger->setShowData(false);
        view.finger->setYdds(0, 20.5F, 1.234F, 77);
        QCOMPARE(view.gauge(1)->discBrush.color(), QColor(expected->deepRed, 9, 9));
        QCOMPARE(view.gauge(1)->text(), QString());
    }

    void arrows_data() { addRows(false); }

    void arrows()
    {
        QFETCH(int, id);
        const ViewProbe view = probe(id);
        if (view.gauge(1) == nullptr || id == 18)
            return;
        const ExpectedArrow expected = kArrows.value(viewNumber(id));
        const auto shown = [&view](float normal, float tangential, uint16_t direction) {
            view.finger->setYdds(0, normal, tangential, direction);
            return int(view.gauge(1)->direction);
        };
        const int turned = (359 + expected.rotation) % 360;
        QCOMPARE(shown(0.01F, 0.0F, 359), expected.byNormal ? turned : 0xFFFF);
        QCOMPARE(shown(0.0F, 0.01F, 359), expected.byNormal ? 0xFFFF : turned);
        QCOMPARE(shown(0.01F, 0.01F, 0), expected.rotation);
        for (const auto &[tangential, scale] : {std::pair{0.01F, 0.0005F}, {5.0F, 0.25F}, {25.0F, 1.0F}}) {
            shown(9.0F, tangential, 360);
            QCOMPARE(view.gauge(1)->arrowScale, scale);
        }
        for (const int direction : {360, 400})
            QCOMPARE(shown(0.01F, 0.01F, static_cast<uint16_t>(direction)),
                     expected.byNormal ? direction : 0xFFFF);
    }

    void nothingOverlaps_data() { addRows(false); }

    void nothingOverlaps()
    {
        QFETCH(int, id);
        const ViewProbe view = probe(id);
        auto *pages = view.widget->findChild<QTabWidget *>();
        showWideNumbers(view.finger);
        // The font of a panel, and the room that it has for a view while the window has its first size.
        // Gauges have style sheets and so fonts of their own: the narrow letters around them must not count.
        QFont font = view.widget->font();
        font.setPointSize(15);
        font.setLetterSpacing(QFont::PercentageSpacing, 50);
        view.widget->setFont(font);
        QCOMPARE(view.widget->minimumSizeHint().boundedTo({499, 239}), view.widget->minimumSizeHint());
        for (const QSize &size : {QSize(1, 1), QSize(333, 257), QSize(700, 300), QSize(300, 900)}) {
            view.widget->resize(size.expandedTo(view.widget->minimumSizeHint()));
            for (int page = 0; page < (pages != nullptr ? pages->count() : 1); ++page) {
                if (pages != nullptr)
                    pages->setCurrentIndex(page);
                view.widget->grab(); // lays out as if it were shown
            }
            QMap<const QWidget *, QRegion> taken; // by page
            for (const QWidget *one : view.widget->findChildren<QWidget *>()) {
                if (qobject_cast<const ydds *>(one) == nullptr &&
                    qobject_cast<const sensorForm *>(one) == nullptr)
                    continue;
                QVERIFY(one->height() >= 10);
                QVERIFY2(one->parentWidget()->rect().contains(one->geometry()),
                         qPrintable(one->objectName()));
                QVERIFY2(!taken[one->parentWidget()].intersects(one->geometry()),
                         qPrintable(one->objectName()));
                taken[one->parentWidget()] += one->geometry();
            }
            for (const QLabel *label : view.widget->findChildren<QLabel *>()) {
                if (qobject_cast<const ydds *>(label) != nullptr ||
                    qobject_cast<const class_ydds *>(label) != nullptr)
                    QVERIFY2(label->text().isEmpty() || textIsFree(*label), qPrintable(label->objectName()));
            }
        }
    }

    void barsCutTheirValues()
    {
        const ViewProbe view = probe(85);
        view.finger->setSProx(0, 449999);
        view.finger->setSProx(1, 0xFFFFFFFF);
        view.finger->setSProx(2, 5);
        view.finger->setMProx(0, 450001);
        view.finger->setMProx(1, 5);
        QCOMPARE(view.find<QProgressBar>("pbSProx_", 1)->value(), 449999);
        QCOMPARE(view.find<QProgressBar>("pbSProx_", 2)->value(), 450000);
        QCOMPARE(view.find<QProgressBar>("pbMProx_", 1)->value(), 450000);
    }
};

QTEST_MAIN(TestViewFamily)
#include "tst_view_family.moc"
