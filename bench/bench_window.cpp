// The whole window with fourteen sensors at full rate: the time from the press of "connect" to the first
// sample in its panel, and the processor time of the user interface against painting the page in front as
// often, whole and with nothing behind it.

#include "bench/bus_of_sensors.h"
#include "bench/offscreen.h"
#include "monitor/tactViewForm.h"
#include "panel/fingerForm.h"
#include "sim/SimCh347.h"
#include "sim/SimUsb.h"
#include "sim/sensor_plan.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTemporaryDir>

#include <cstdio>
#include <ctime>
#include <functional>

namespace {

constexpr int kSensors = 14;
constexpr uint8_t kPrg = 0x02;
constexpr double kRateHz = 100;
/// Of the multiplexer, in the order in which the tool numbers its buses.
constexpr int kChannels[] = {4, 5, 6, 3, 2, 0};
constexpr int kMeasureMs = 10000;
/// What the panels ask of fourteen sensors, and how they are found.
constexpr int kSettleMs = 45000;
constexpr int kPatienceMs = 60000;
constexpr int kRepaints = 200;

double threadSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// Counts how often a window brings what has changed to the screen.
class Updates : public QObject
{
public:
    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        count += event->type() == QEvent::UpdateRequest ? 1 : 0;
        return false;
    }
    int count = 0;
};

bool waitFor(const std::function<bool()> &condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition() && !timer.hasExpired(kPatienceMs))
        runFor(1);
    return condition();
}

/// The share of a core that this thread takes.
double share(int ms)
{
    const double before = threadSeconds();
    runFor(ms);
    return (threadSeconds() - before) * 1000 / ms;
}

} // namespace

int main(int argc, char **argv)
{
    drawOffscreenByDefault();
    const QTemporaryDir settings;
    qputenv("XDG_DATA_HOME", settings.path().toLocal8Bit());
    QApplication application(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});

    const auto bridge = std::make_shared<SimCh347>(std::make_shared<SimI2cBus>(), 7001);
    // The bus takes no time, so that the window has more to do than on any bus.
    for (int i = 0; i < kSensors; ++i)
        bridge->bus().plug(makeSensor({kPrg, static_cast<uint8_t>(0x61 + i)}, kRateHz), kChannels[i % 6]);
    SimUsb usb;
    usb.plug(bridge);
    tactViewForm form;
    form.resize(1000, 600);
    form.show();
    form.start();
    form.findChild<QComboBox *>(QStringLiteral("cbbSensorInf"))->setCurrentIndex(2);
    const auto *devices = form.findChild<QComboBox *>(QStringLiteral("cbbCh341List"));
    if (!waitFor([devices] { return devices->count() > 0; }))
        return 1;

    int samples = 0;
    QElapsedTimer sinceConnect;
    double firstMs = 0;
    sinceConnect.start();
    form.findChild<QPushButton *>(QStringLiteral("pbtnCh341Connect"))->click();
    auto *area = form.findChild<QMdiArea *>();
    if (!waitFor([area] { return !area->subWindowList().isEmpty(); }))
        return 1;
    auto *panel = area->subWindowList().constFirst()->findChild<fingerForm *>();
    QObject::connect(panel, &fingerForm::si_sendDataStrList, panel, [&] {
        if (++samples == 1)
            firstMs = static_cast<double>(sinceConnect.nsecsElapsed()) / 1e6;
    });
    if (!waitFor([&samples] { return samples > 0; }))
        return 1;
    std::printf("connect to the first sample: %.0f ms\n", firstMs);

    runFor(kSettleMs);
    auto *front = area->activeSubWindow()->findChild<fingerForm *>();
    Updates updates;
    form.installEventFilter(&updates);
    samples = 0;
    const double live = share(kMeasureMs);
    const double updateRate = updates.count * 1000.0 / kMeasureMs;
    // No event is handled meanwhile, so nothing else takes part.
    const double before = threadSeconds();
    for (int i = 0; i < kRepaints; ++i)
        front->repaint();
    const double bare = (threadSeconds() - before) / kRepaints * updateRate;
    std::printf(
        "window with %d panels, %.0f samples/s each, %.0f updates/s: %.3f of a core against %.3f, ratio "
        "%.2f\n",
        area->subWindowList().size(), samples * 1000.0 / kMeasureMs, updateRate, live, bare, live / bare);
    form.stop();
    return 0;
}
