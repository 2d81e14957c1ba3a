// How long an update of 64 KiB takes against the waits that its rules prescribe: a poll or a pause of 10 ms
// around every frame, and the time of the bits on the bus or the line. What the machine oversleeps on the
// simulated bus is told apart.

#include "bench/offscreen.h"
#include "sim/SimCh341.h"
#include "sim/SimCh347.h"
#include "sim/SimSerialBus.h"
#include "sim/SimUsb.h"
#include "update/fwUpdateForm.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>

#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>

namespace {

constexpr uint8_t kProgramId = 0x02;
constexpr int kAddress = 0x05;
constexpr int kChannel = 4; // of board 1
constexpr int kImageSize = 64 * 1024;
constexpr int kBlocks = kImageSize / 1024;
constexpr double kWaitMs = 10.0;
constexpr double kBitsPerByte = 10.0;
constexpr int kListedMs = 400;

void runFor(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

/// The tab, ready to be started but for the choice of the interface.
class Tab
{
public:
    explicit Tab(const QString &imagePath)
    {
        find<QLineEdit>("leUpdateFilePath")->setText(imagePath);
        find<QSpinBox>("spbUpdateAddr")->setValue(kAddress);
        find<QSpinBox>("spbResetAddr")->setValue(kAddress);
    }

    void choose(const char *radioButton, const QString &device, int row)
    {
        find<QRadioButton>(radioButton)->setChecked(true);
        m_form.start();
        runFor(kListedMs);
        find<QComboBox>("cbbUpdateDevList")->setCurrentText(device);
        find<QComboBox>("cbbInfIdx")->setCurrentIndex(row);
    }

    /// Milliseconds from the header to the success, not a number when the update fails; begun is called at
    /// the header. What goes before depends on when the receiver asks for it.
    double runMs(const std::function<void()> &begun = [] {})
    {
        QEventLoop loop;
        double elapsedMs = std::nan("");
        QElapsedTimer timer;
        QObject::connect(&m_form, &fwUpdateForm::si_updateSuccess, &loop, [&] {
            elapsedMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
            loop.quit();
        });
        QObject::connect(&m_form, &fwUpdateForm::si_updateSended, &loop, [&] {
            if (timer.isValid())
                return;
            begun();
            timer.start();
        });
        QObject::connect(&m_form, &fwUpdateForm::si_updateFail, &loop, &QEventLoop::quit);
        find<QPushButton>("pbtnUpdateStart")->click();
        loop.exec();
        runFor(50);
        return elapsedMs;
    }

private:
    template<typename Widget>
    Widget *find(const char *name)
    {
        return m_form.findChild<Widget *>(QLatin1String(name));
    }

    fwUpdateForm m_form;
};

void report(const char *name, double tookMs, double waitsMs, double wireMs, double lateMs)
{
    std::printf("%-15s %6.0f ms: waits %5.0f, wire %5.0f, overslept %5.0f, ratio %.3f\n", name, tookMs,
                waitsMs, wireMs, lateMs, (tookMs - lateMs) / (waitsMs + wireMs));
}

double inMs(std::chrono::nanoseconds time)
{
    return std::chrono::duration<double, std::milli>(time).count();
}

/// Polls and pauses of a transfer whose every frame is answered at the first poll: two around every block and
/// the end of file, four for the requests and the headers.
double bridgeWaitsMs()
{
    return kWaitMs * (2 * kBlocks + 6);
}

void measureBridge(Tab &tab, const char *radioButton, const std::shared_ptr<SimBridge> &bridge,
                   const char *id)
{
    const auto sensor = std::make_shared<SimSensor>(kProgramId, uint8_t{kAddress});
    bridge->bus().plug(sensor, kChannel);
    SimUsb usb;
    usb.plug(bridge);
    tab.choose(radioButton, QString::fromLatin1(id), 1);
    bridge->bus().setTimed(true);
    std::chrono::nanoseconds busBefore{0};
    std::chrono::nanoseconds lateBefore{0};
    const SimI2cBus &bus = bridge->bus();
    const double tookMs = tab.runMs([&] {
        busBefore = bus.busTime();
        lateBefore = bus.lateness();
    });
    report(radioButton, tookMs, bridgeWaitsMs(), inMs(bus.busTime() - busBefore),
           inMs(bus.lateness() - lateBefore));
}

/// On a line the polls go on while a frame is still on its way, so that only whole waits count. The receiver
/// takes 25 ms from each of two acknowledgements to its request, which costs one poll more.
double serialWaitsMs(int baud)
{
    const auto polls = [baud](int frameSize) {
        return std::ceil(frameSize * kBitsPerByte * 1000.0 / baud / kWaitMs);
    };
    return kWaitMs * (4 + kBlocks * (1 + polls(1032)) + 1 + polls(4) + 2 * polls(136));
}

void measureSerial(Tab &tab, int row, int baud)
{
    SimSerialBus line;
    const auto sensor = std::make_shared<SimSensor>(kProgramId, uint8_t{kAddress});
    sensor->bootLoader().setBaudRate(baud);
    line.plug(sensor);
    tab.choose("rbtnUart", line.portName(), row);
    const double tookMs = tab.runMs();
    report(QByteArray("rbtnUart " + QByteArray::number(baud)).constData(), tookMs, serialWaitsMs(baud), 0.0,
           0.0);
}

} // namespace

int main(int argc, char *argv[])
{
    drawOffscreenByDefault();
    QStandardPaths::setTestModeEnabled(true);
    const QApplication application(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    const QTemporaryDir folder;
    QFile image(folder.filePath(QStringLiteral("image.bin")));
    if (!image.open(QIODevice::WriteOnly) || image.write(QByteArray(kImageSize, 'U')) != kImageSize)
        return 1;
    image.close();
    Tab tab(image.fileName());
    measureBridge(tab, "rbtnIIC", std::make_shared<SimCh341>(std::make_shared<SimI2cBus>(), 5, 2), "5002");
    measureBridge(tab, "rbtnIICCh347", std::make_shared<SimCh347>(std::make_shared<SimI2cBus>(), 7001),
                  "7001");
    measureSerial(tab, 0, 115200);
    measureSerial(tab, 1, 460800);
    measureSerial(tab, 2, 921600);
    return 0;
}
