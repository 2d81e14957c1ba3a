// One update: reset into the boot loader, transfer, result line.

#include "update/fwUpdateForm.h"

#include "link/class_uart.h"
#include "link/forms/hex_text.h"
#include "update/class_ymodem.h"
#include "update/reset_command.h"
#include "update/success_text.h"

#include "ui_fwUpdateForm.h"

#include <QThread>
#include <QTimer>

namespace {

constexpr int kSerialWaitMs = 100;
constexpr int kReopenPauseMs = 5;
constexpr int kSuccessLingerMs = 10;

enum ResetChoice { DefaultReset, CustomReset, NoReset };

} // namespace

bool fwUpdateForm::isBusy() const
{
    return ui->pbtnUpdateStart->text() == QObject::tr("停止");
}

void fwUpdateForm::startClicked()
{
    if (isBusy())
        endUpdate();
    else
        beginUpdate();
}

void fwUpdateForm::endUpdate()
{
    ui->pbtnUpdateStart->setText(QObject::tr("开始"));
    closeLink();
    Q_EMIT si_updateCancel();
}

void fwUpdateForm::beginUpdate()
{
    dropSender();
    if (ui->cbbUpdateDevList->currentText().isEmpty() || ui->cbbInfIdx->currentText().isEmpty()) {
        ui->lbRes->setText(QObject::tr("通信接口未选择"));
        return;
    }
    if (!openLink()) {
        ui->lbRes->setText(QObject::tr("通信接口打开失败"));
        closeLink();
        return;
    }
    if (!selectChannel()) {
        closeLink();
        return;
    }
    ui->pbtnUpdateStart->setText(QObject::tr("停止"));
    Q_EMIT si_updateStart();
}

void fwUpdateForm::runUpdate()
{
    sendResetCommand();
    QString name;
    QByteArray image;
    const bool merge = ui->cbbSensorVersion->currentIndex() == 0;
    if (loadAppFile(getFile(), merge, &name, &image) != 0) {
        ui->lbRes->setText(QObject::tr("文件加载失败"));
        Q_EMIT ui->pbtnUpdateStart->clicked();
        return;
    }
    startTransfer(name, image);
}

void fwUpdateForm::sendResetCommand()
{
    const int choice = ui->cbbResetCmd->currentIndex();
    if (choice == NoReset)
        return;
    QByteArray custom;
    if (choice == CustomReset) {
        custom = bytesFromHexText(ui->leResetCmd->text());
        qDebug("reset cmd:%s", custom.toHex().constData());
    }
    QByteArray &command = choice == CustomReset ? custom : m_defaultReset;
    const auto address = static_cast<uint8_t>(ui->spbResetAddr->value());
    if (m_uart == nullptr) {
        sensorWrite(address, command, static_cast<uint16_t>(command.size()));
        return;
    }
    addressResetCommand(command, address);
    sendResetAtAllRates(command);
}

void fwUpdateForm::sendResetAtAllRates(const QByteArray &command)
{
    for (const unsigned rate : {115200U, 460800U, 576000U, 921600U})
        sendResetAtRate(command, rate);
    reopenAtChosenRate();
}

void fwUpdateForm::sendResetAtRate(const QByteArray &command, unsigned rate)
{
    m_uart->close();
    if (!m_uart->open(ui->cbbUpdateDevList->currentText(), rate)) {
        qDebug("reset cmd err:%u", rate);
        return;
    }
    QSerialPort *port = m_uart->port;
    port->clear();
    qDebug("set baudrate:%u", rate);
    qDebug("%lld", port->write(command));
    port->waitForBytesWritten(kSerialWaitMs);
    port->waitForReadyRead(kSerialWaitMs);
}

void fwUpdateForm::reopenAtChosenRate()
{
    const unsigned rate = ui->cbbInfIdx->currentText().toUInt();
    qDebug("set rate:%u", rate);
    QThread::msleep(kReopenPauseMs);
    m_uart->close();
    if (m_uart->open(ui->cbbUpdateDevList->currentText(), rate))
        m_uart->port->clear();
    else
        qDebug("open err");
}

void fwUpdateForm::startTransfer(const QString &name, const QByteArray &image)
{
    ui->lbRes->setText(QObject::tr("开始更新"));
    m_elapsed.start();
    auto *sender = new class_ymodem(name, image);
    sender->setParent(this);
    m_sender = sender;
    connect(this, &fwUpdateForm::si_updateReceived, sender, &class_ymodem::sl_received1);
    connect(this, &fwUpdateForm::si_updateSended, sender, &class_ymodem::sl_writeSuccess);
    connect(this, &fwUpdateForm::si_updateCancel, sender, &class_ymodem::update_cancel);
    connectRequests(sender);
    connectResults(sender);
    sender->update_start();
}

void fwUpdateForm::connectRequests(class_ymodem *sender)
{
    connect(sender, &class_ymodem::si_read, this, [this](uint16_t len) {
        QByteArray received;
        sensorRead(static_cast<uint8_t>(ui->spbUpdateAddr->value()), &received, len, 0);
        Q_EMIT si_updateReceived(received);
    });
    connect(sender, &class_ymodem::si_write, this, [this](const QByteArray &pack) {
        const auto address = static_cast<uint8_t>(ui->spbUpdateAddr->value());
        sensorWrite(address, pack, static_cast<uint16_t>(pack.size()));
        Q_EMIT si_updateSended();
    });
    connect(sender, &class_ymodem::si_setProgress, ui->pbUpdate, &QProgressBar::setValue);
}

void fwUpdateForm::connectResults(class_ymodem *sender)
{
    connect(sender, &class_ymodem::si_updateSuccess, this, [this, sender] {
        Q_EMIT si_updateSuccess();
        ui->lbRes->setText(updateSuccessText(m_elapsed.elapsed()));
        QTimer::singleShot(kSuccessLingerMs, sender, [this, sender] {
            if (m_sender == sender)
                transferEnded();
        });
    });
    connect(sender, &class_ymodem::si_updateTimeout, this,
            [this] { transferFailed(QObject::tr("更新超时")); });
    connect(sender, &class_ymodem::si_updateCancel, this,
            [this] { transferFailed(QObject::tr("更新取消")); });
}

void fwUpdateForm::transferFailed(const QString &text)
{
    Q_EMIT si_updateFail();
    ui->lbRes->setText(text);
    transferEnded();
}

void fwUpdateForm::transferEnded()
{
    dropSender();
    if (isBusy())
        Q_EMIT ui->pbtnUpdateStart->clicked();
}

void fwUpdateForm::dropSender()
{
    if (m_sender.isNull())
        return;
    disconnect(this, nullptr, m_sender, nullptr);
    m_sender->disconnect(this);
    m_sender->disconnect(ui->pbUpdate);
    m_sender->deleteLater();
    m_sender.clear();
}
