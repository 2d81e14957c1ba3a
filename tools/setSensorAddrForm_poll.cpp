// The address tab's talk with the sensor: poll, answers, watchdog.

#include "tools/setSensorAddrForm.h"

#include "link/class_ch341.h"
#include "link/class_ch347.h"
#include "link/class_uart.h"
#include "protocol/frames.h"
#include "ui_setSensorAddrForm.h"

#include <QThread>

#include <array>

namespace {

constexpr int kAliveIntervalMs = 100;
constexpr uint8_t kGoneTicks = 5;
constexpr int kResultShownMs = 3000;

constexpr int kSetAnswerWaitMs = 100;
constexpr int kPollAnswerWaitMs = 10;
constexpr unsigned long kReplyDelayMs = 10;

constexpr uint8_t kGeneralAddress = 0;
constexpr uint8_t kReadAddress = 0x71;
constexpr uint8_t kSetAddress = 0x70;

constexpr int kFrameAddressAt = 2;
constexpr int kReadAddressAt = 7;
constexpr int kShortestFrame = 6;

bool startsLikeAnswer(const QByteArray &bytes)
{
    return bytes.startsWith("\x55\xAA");
}

template<typename Bridge>
void writeToAll(Bridge &bridge, const QByteArray &frame)
{
    bridge.write(kGeneralAddress, frameBytes(frame), static_cast<uint16_t>(frame.size()));
}

} // namespace

void setSensorAddrForm::requestSet()
{
    if (timerScan->isActive())
        setReq = 1;
}

QByteArray setSensorAddrForm::takeSetFrame()
{
    const auto target = static_cast<uint8_t>(ui->spbTarAddrHex->value());
    qDebug("set addr:0x%02x", target);
    setReq = 0;
    QByteArray frame = requestFrame(kGeneralAddress, kSetAddress, {0, 0, 0, target, 0});
    qDebug("%s", frame.toHex().constData());
    return frame;
}

void setSensorAddrForm::poll()
{
    if (uart)
        pollSerial();
    else if (ch341)
        pollBridge(*ch341);
    else if (ch347)
        pollBridge(*ch347);
}

void setSensorAddrForm::pollSerial()
{
    QSerialPort *port = uart->port;
    if (setReq != 0) {
        port->write(takeSetFrame());
        port->waitForReadyRead(kSetAnswerWaitMs);
    }
    // Either wait may find that the device is gone, and then the port is closed.
    if (port->isOpen()) {
        port->write(QByteArray::fromHex("00FF"));
        port->waitForReadyRead(kPollAnswerWaitMs);
    }
    if (port->isOpen())
        takeSerialAnswers(port->readAll());
}

void setSensorAddrForm::takeSerialAnswers(const QByteArray &bytes)
{
    static QByteArray buffer;
    buffer.append(bytes);
    while (buffer.size() >= kShortestFrame) {
        if (!startsLikeAnswer(buffer)) {
            buffer.remove(0, 1);
            continue;
        }
        sensorAnswered(frameBytes(buffer)[kCommandAt]);
        ui->spbCurrAddrDec->setValue(frameBytes(buffer)[kFrameAddressAt]);
        buffer.clear();
    }
}

template<typename Bridge>
void setSensorAddrForm::pollBridge(Bridge &bridge)
{
    if (setReq != 0)
        writeToAll(bridge, takeSetFrame());
    writeToAll(bridge, requestFrame(kGeneralAddress, kReadAddress));
    QThread::msleep(kReplyDelayMs);

    std::array<uint8_t, kRequestLength> reply = {};
    bridge.read(kGeneralAddress, reply.data(), kRequestLength);
    if (reply[0] != 0x55 || reply[1] != 0xAA)
        return;
    sensorAnswered(reply[kCommandAt]);
    if (reply[kCommandAt] == (kReadAddress | kResponseBit))
        ui->spbCurrAddrDec->setValue(reply[kReadAddressAt]);
}

void setSensorAddrForm::sensorAnswered(uint8_t command)
{
    if (alive == 0) {
        ui->lbFingerState->setText(QObject::tr("已连接"));
        timerAlive->start(kAliveIntervalMs);
    }
    if (command == (kSetAddress | kResponseBit)) {
        ui->lbCmdState->setText(QObject::tr("成功"));
        QTimer::singleShot(kResultShownMs, ui->lbCmdState, &QLabel::clear);
    }
    alive = 1;
}

void setSensorAddrForm::countSilence()
{
    if (!isLinkOpen()) {
        timerAlive->stop();
        return;
    }
    ++alive;
    if (alive < kGoneTicks)
        return;
    alive = 0;
    ui->lbFingerState->setText(QObject::tr("断开"));
    timerAlive->stop();
}
