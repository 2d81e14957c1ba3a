#include "update/UpdateJob.h"

#include "update/UpdateLink.h"
#include "update/class_ymodem.h"
#include "update/reset_command.h"

#include <QSerialPort>
#include <QTimer>

#include <thread>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kSerialWait{100};
constexpr milliseconds kReopenPause{5};
constexpr milliseconds kSuccessLinger{10};

} // namespace

UpdateJob::UpdateJob(UpdateLink &link)
    : m_link(link)
    , m_defaultReset(defaultResetCommand())
{}

void UpdateJob::start(const UpdatePlan &plan)
{
    abandon();
    sendReset(plan);
    const FirmwareFile file = plan.load();
    if (file.error != 0) {
        Q_EMIT failed(Failure::File);
        Q_EMIT ended();
        return;
    }
    transfer(file);
}

void UpdateJob::sendReset(const UpdatePlan &plan)
{
    if (plan.reset == UpdatePlan::Reset::None)
        return;
    QByteArray custom = plan.customReset;
    QByteArray &command = plan.reset == UpdatePlan::Reset::Custom ? custom : m_defaultReset;
    if (!m_link.isSerial()) {
        m_link.write(plan.resetAddress, command, static_cast<uint16_t>(command.size()));
        return;
    }
    addressResetCommand(command, plan.resetAddress);
    // The sensor may listen at any of its rates.
    for (const unsigned rate : {115200U, 460800U, 576000U, 921600U})
        sendResetAtRate(command, plan.device, rate);
    reopen(plan.device, plan.baudRate);
}

void UpdateJob::sendResetAtRate(const QByteArray &command, const QString &device, unsigned rate)
{
    m_link.close();
    if (!m_link.open(device, rate)) {
        qDebug("reset cmd err:%u", rate);
        return;
    }
    QSerialPort *port = m_link.get()->port();
    port->clear();
    qDebug("set baudrate:%u", rate);
    qDebug("%lld", port->write(command));
    port->waitForBytesWritten(static_cast<int>(kSerialWait.count()));
    port->waitForReadyRead(static_cast<int>(kSerialWait.count()));
}

void UpdateJob::reopen(const QString &device, unsigned rate)
{
    qDebug("set rate:%u", rate);
    std::this_thread::sleep_for(kReopenPause);
    m_link.close();
    if (m_link.open(device, rate))
        m_link.get()->port()->clear();
    else
        qDebug("open err");
}

void UpdateJob::transfer(const FirmwareFile &file)
{
    Q_EMIT started();
    m_elapsed.start();
    auto *sender = new class_ymodem(file.name, file.image);
    sender->setParent(this);
    m_sender = sender;
    connect(this, &UpdateJob::received, sender, &class_ymodem::sl_received1);
    connect(this, &UpdateJob::sent, sender, &class_ymodem::sl_writeSuccess);
    connect(sender, &class_ymodem::si_read, this, [this](uint16_t length) {
        QByteArray bytes;
        m_link.read(m_address, bytes, length);
        Q_EMIT received(bytes);
    });
    connect(sender, &class_ymodem::si_write, this, [this](const QByteArray &frame) {
        m_link.write(m_address, frame, static_cast<uint16_t>(frame.size()));
        Q_EMIT sent();
    });
    connect(sender, &class_ymodem::si_setProgress, this, &UpdateJob::progressed);
    connectResults(sender);
    sender->update_start();
}

void UpdateJob::connectResults(class_ymodem *sender)
{
    const auto fail = [this](Failure failure) {
        Q_EMIT failed(failure);
        end();
    };
    connect(sender, &class_ymodem::si_updateTimeout, this, [fail] { fail(Failure::Timeout); });
    connect(sender, &class_ymodem::si_updateCancel, this, [fail] { fail(Failure::Cancelled); });
    connect(sender, &class_ymodem::si_updateSuccess, this, [this, sender] {
        Q_EMIT succeeded(milliseconds(m_elapsed.elapsed()));
        QTimer::singleShot(kSuccessLinger, sender, [this, sender] {
            if (m_sender == sender)
                end();
        });
    });
}

void UpdateJob::cancel()
{
    if (m_sender)
        m_sender->update_cancel();
}

void UpdateJob::abandon()
{
    if (!m_sender)
        return;
    disconnect(this, nullptr, m_sender, nullptr);
    m_sender->disconnect(this);
    m_sender->deleteLater();
    m_sender.clear();
}

void UpdateJob::end()
{
    abandon();
    Q_EMIT ended();
}
