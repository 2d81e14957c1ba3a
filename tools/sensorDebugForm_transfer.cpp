// What the debug tab sends and reads once a link is open: multiplexer channels, bytes typed by hand, the log of both.

#include "tools/sensorDebugForm.h"

#include "link/class_ch341.h"
#include "link/class_ch347.h"
#include "link/class_uart.h"
#include "link/forms/hex_text.h"
#include "link/pca9548.h"
#include "protocol/frames.h"
#include "tools/debug_entry.h"
#include "ui_sensorDebugForm.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QPointer>
#include <QTimer>
#include <QtAlgorithms>

#include <array>

namespace {

constexpr int kFrameAddressAt = 2;
constexpr int kShortestSealed = 4; // a shorter text keeps the sum that was typed or shown for it

std::array<QCheckBox *, 8> channelBoxes(const Ui_sensorDebugForm &form)
{
    return {form.chkbCh0, form.chkbCh1, form.chkbCh2, form.chkbCh3,
            form.chkbCh4, form.chkbCh5, form.chkbCh6, form.chkbCh7};
}

std::array<QCheckBox *, 6> boardBoxes(const Ui_sensorDebugForm &form)
{
    return {form.chkbInf1, form.chkbInf2, form.chkbInf3, form.chkbInf4, form.chkbInf5, form.chkbInf6};
}

/// The byte that two digits of a text name, 0 when they are not there.
char byteOfDigits(const QString &text, int at)
{
    return static_cast<char>(text.midRef(at, 2).toUShort(nullptr, 16));
}

/// Keeps the window alive for a while.
void spinEvents(int durationMs)
{
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    timer.start(durationMs);
    while (timer.isActive())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

} // namespace

void sensorDebugForm::coupleBoardsAndChannels()
{
    const auto channels = channelBoxes(*ui);
    int board = 0;
    for (QCheckBox *boardBox : boardBoxes(*ui)) {
        const uint channel = qCountTrailingZeroBits(adapterBoardMask(++board));
        QCheckBox *channelBox = channels.at(channel);
        connect(boardBox, &QCheckBox::toggled, channelBox, &QCheckBox::setChecked);
        connect(channelBox, &QCheckBox::toggled, boardBox, &QCheckBox::setChecked);
    }
}

void sensorDebugForm::setChannels()
{
    uint8_t mask = 0;
    uint8_t bit = 0x01;
    for (const QCheckBox *box : channelBoxes(*ui)) {
        if (box->isChecked())
            mask |= bit;
        bit = static_cast<uint8_t>(bit << 1);
    }
    qDebug("set pca:%d", mask);
    if (isLinkOpen())
        writeBridge(kPca9548Address, &mask, 1);
}

void sensorDebugForm::getChannels()
{
    uint8_t mask = 0;
    readBridge(kPca9548Address, &mask, 1);
    qDebug("get pca:%d", mask);
    unsigned int bit = 0x01;
    for (QCheckBox *box : channelBoxes(*ui)) {
        box->setChecked((mask & bit) != 0);
        bit <<= 1;
    }
}

uint16_t sensorDebugForm::writeBridge(uint8_t address, const uint8_t *bytes, uint16_t length)
{
    if (ch341 != nullptr)
        return ch341->write(address, bytes, length);
    return ch347 != nullptr ? ch347->write(address, bytes, length) : uint16_t{0};
}

uint16_t sensorDebugForm::readBridge(uint8_t address, uint8_t *buffer, uint16_t length)
{
    if (ch341 != nullptr)
        return ch341->read(address, buffer, length);
    return ch347 != nullptr ? ch347->read(address, buffer, length) : uint16_t{0};
}

void sensorDebugForm::showSum(const QString &hexText)
{
    const uint16_t sum = frameSum(bytesFromHexText(hexText));
    ui->lbChk->setText(QString::asprintf("%02x%02x", sum & 0xFF, sum >> 8));
}

void sensorDebugForm::writeBytes()
{
    if (isBridgeChosen() && !isLinkOpen()) {
        Q_EMIT si_appendDebugLog(notConnectedEntry());
        return;
    }
    const auto address = static_cast<uint8_t>(ui->spbCh341Addr->value());
    QByteArray bytes = typedBytes();
    if (isBridgeChosen())
        writeBridge(address, frameBytes(bytes), static_cast<uint16_t>(bytes.size()));
    else
        writeSerial(address, bytes);
    Q_EMIT si_appendDebugLog(writeEntry(address, bytes));
}

QByteArray sensorDebugForm::typedBytes() const
{
    QByteArray bytes = bytesFromHexText(ui->leCh341Write->text());
    if (ui->chkbtnChk->isChecked()) {
        const QString sum = ui->lbChk->text();
        bytes.append(byteOfDigits(sum, 0));
        bytes.append(byteOfDigits(sum, 2));
    }
    return bytes;
}

void sensorDebugForm::writeSerial(uint8_t address, QByteArray &bytes)
{
    if (bytes.size() > kFrameAddressAt)
        bytes[kFrameAddressAt] = static_cast<char>(address);
    if (ui->chkbtnChk->isChecked() && bytes.size() >= kShortestSealed)
        sealFrame(bytes);
    if (uart == nullptr || !uart->port->isOpen())
        return;
    uart->port->clear();
    uart->port->write(bytes);
}

void sensorDebugForm::readBytes()
{
    if (isBridgeChosen() && !isLinkOpen()) {
        Q_EMIT si_appendDebugLog(notConnectedEntry());
        return;
    }
    const auto address = static_cast<uint8_t>(ui->spbCh341Addr->value());
    Q_EMIT si_appendDebugLog(readEntry(address, isBridgeChosen() ? bytesOfBridge(address) : bytesOfPort()));
}

QByteArray sensorDebugForm::bytesOfBridge(uint8_t address)
{
    QByteArray bytes(ui->spbCh341Read->value(), '\0');
    const auto length = static_cast<uint16_t>(bytes.size());
    const uint16_t got = readBridge(address, reinterpret_cast<uint8_t *>(bytes.data()), length);
    if (got == 0 && ch347 != nullptr)
        bytes.clear();
    return bytes;
}

QByteArray sensorDebugForm::bytesOfPort()
{
    return uart != nullptr && uart->port->isOpen() ? uart->port->readAll() : QByteArray();
}

void sensorDebugForm::writeAndRead()
{
    if (m_waitsToRead)
        return;
    const QPointer<QObject> writtenTo = link();
    if (!isLinkOpen()) {
        Q_EMIT si_appendDebugLog(notConnectedEntry());
        return;
    }
    Q_EMIT ui->pbtnCh341Write->clicked();

    const QPointer<sensorDebugForm> self = this;
    m_waitsToRead = true;
    spinEvents(ui->spbDelay->value());
    if (!self)
        return;
    m_waitsToRead = false;
    if (writtenTo == link() && isLinkOpen())
        Q_EMIT ui->pbtnCh341Read->clicked();
    else
        Q_EMIT si_appendDebugLog(notConnectedEntry());
}

void sensorDebugForm::appendLog(const QString &text)
{
    ui->txtDebugLog->moveCursor(QTextCursor::End);
    ui->txtDebugLog->insertPlainText(stampedEntry(QDateTime::currentDateTime(), text));
    ui->txtDebugLog->moveCursor(QTextCursor::End);
}
