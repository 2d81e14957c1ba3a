#include "tests/update/UpdateBench.h"

#include <QFile>
#include <QtTest>

namespace {
constexpr uint8_t kFingertip = 28;
}

UpdateBench::UpdateBench()
    : ch341Sensor(std::make_shared<SimSensor>(kFingertip, kAddress))
    , ch347Sensor(std::make_shared<SimSensor>(kFingertip, kAddress))
    , serialSensor(std::make_shared<SimSensor>(kFingertip, kAddress))
{
    ch341Bus->plug(ch341Sensor, kChannel);
    ch347Bus->plug(ch347Sensor, kChannel);
    line.plug(serialSensor);
    usb.plug(ch341);
    usb.plug(ch347);
}

SimBridge &UpdateBench::bridge(Road road)
{
    if (road == Road::Ch341)
        return *ch341;
    return *ch347;
}

QStringList UpdateBench::writes(Road road, uint8_t to)
{
    QStringList texts;
    for (const SimRecord &record : bridge(road).bus().journal().records(SimRecord::Kind::Write)) {
        if (record.address == to)
            texts.append(QString::fromLatin1(record.bytes.toHex()));
    }
    return texts;
}

bool UpdateTab::enter(UpdateBench &bench, Road road)
{
    QRadioButton *const choice = road == Road::Ch341 ? ch341 : road == Road::Ch347 ? ch347 : uart;
    choice->setChecked(true);
    form.start();
    const QString device = road == Road::Ch341   ? QStringLiteral("5002")
                           : road == Road::Ch347 ? QStringLiteral("7001")
                                                 : bench.line.portName();
    if (!QTest::qWaitFor([this, &device] { return devices->findText(device) >= 0; }, 20000))
        return false;
    devices->setCurrentText(device);
    board->setCurrentIndex(1);
    address->setValue(UpdateBench::kAddress);
    resetAddress->setValue(UpdateBench::kAddress);
    return true;
}

void UpdateTab::chooseFile(const QByteArray &content, const QString &name, bool masked)
{
    QFile file(m_folder.filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64{content.size()});
    path->setText(file.fileName());
    version->setCurrentIndex(masked ? 0 : 1);
}

bool UpdateTab::runToEnd(int timeoutMs)
{
    start->click();
    return QTest::qWaitFor([this] { return !isBusy(); }, timeoutMs);
}

QByteArray testImage(int size)
{
    QByteArray image;
    image.reserve(size);
    quint32 state = 1;
    for (int i = 0; i < size; ++i) {
        state = state * 1664525U + 1013904223U;
        image.append(static_cast<char>(state >> 24U));
    }
    return image;
}
