// Cost of a sample in the panel against bare setText on as many labels, and of a recorded row against
// opening, appending to and closing a file, each in one run.

#include "bench/compare.h"
#include "bench/offscreen.h"
#include "panel/fingerForm.h"
#include "recording/SampleRecorder.h"
#include "views/class_finger.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QVBoxLayout>

#include <vector>

namespace {

constexpr int kSamples = 400;
constexpr uint8_t kPrg = 19;

QVector<uint8_t> frame(int counter)
{
    QVector<uint8_t> bytes(62, 0);
    bytes[0] = 0x55;
    bytes[1] = 0xAA;
    bytes[3] = 0x85;
    bytes[4] = static_cast<uint8_t>(counter);
    for (int channel = 0; channel < 8; ++channel) {
        // Even, since a finger that stays down changes no colour.
        bytes[6 + 4 * channel] = static_cast<uint8_t>(counter * 2 + channel * 16) & 0xFEU;
        bytes[7 + 4 * channel] = 0x10;
    }
    uint16_t sum = 0;
    for (int i = 0; i < 60; ++i)
        sum = static_cast<uint16_t>(sum + bytes.at(i));
    bytes[60] = static_cast<uint8_t>(sum);
    bytes[61] = static_cast<uint8_t>(sum >> 8U);
    return bytes;
}

void benchPanel(int page, const char *what)
{
    fingerForm panel(0, 0x61);
    sensor_ts info;
    info.addr = 0x61;
    info.prg = kPrg;
    panel.sl_connectedFinger(0, 0x61, info);
    panel.findChild<QTabWidget *>(QStringLiteral("tabWidget"))->setCurrentIndex(page);
    panel.sl_updateData(0, 0x61, frame(0));
    QWidget window;
    window.resize(panel.size());
    window.setFont(panel.font());
    auto *layout = new QVBoxLayout(&window);
    std::vector<QLabel *> labels;
    for (int i = 0; i < panel.view()->dataList.size(); ++i) {
        labels.push_back(new QLabel(&window));
        layout->addWidget(labels.back());
    }
    panel.show();
    window.show();
    compare(
        what, kSamples,
        [&panel](int i) {
            panel.sl_updateData(0, 0x61, frame(i));
            QCoreApplication::processEvents();
        },
        [&labels](int i) {
            const QVector<uint8_t> bytes = frame(i);
            for (size_t k = 0; k < labels.size(); ++k)
                labels.at(k)->setText(QString::number(bytes.at(6) + static_cast<int>(k)));
            QCoreApplication::processEvents();
        });
}

void benchRecording()
{
    struct Decoder : class_finger
    {
        Decoder()
            : class_finger(kPrg, nullptr)
        {}
    } decoder;
    const QVector<uint8_t> bytes = frame(1);
    decoder.parseData(QByteArray(reinterpret_cast<const char *>(bytes.constData()), bytes.size()));
    const QTemporaryDir folder;
    SampleRecorder recorder(folder.path(), 0, 0x61);
    const QString barePath = folder.filePath(QStringLiteral("bare"));
    const QByteArray line(90, 'x');
    compare(
        "recorded row", kSamples, [&](int) { recorder.append(decoder.sample()); },
        [&](int) {
            QFile file(barePath);
            if (file.open(QIODevice::Append | QIODevice::Text))
                file.write(line);
        });
}

} // namespace

int main(int argc, char **argv)
{
    drawOffscreenByDefault();
    QApplication application(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    benchPanel(0, "sample, page with the view");
    benchPanel(1, "sample, page with the values");
    benchPanel(2, "sample, page with the parameters");
    benchRecording();
    return 0;
}
