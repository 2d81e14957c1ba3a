#pragma once

#include "update/firmware_image.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QString>

#include <chrono>
#include <cstdint>
#include <functional>

class UpdateLink;
class class_ymodem;

/// What the user wants done.
struct UpdatePlan
{
    enum class Reset { Default, Custom, None };

    Reset reset = Reset::Default;
    QByteArray customReset;
    uint8_t resetAddress = 0;
    QString device; ///< a serial line's, which the reset opens at one rate after the other
    unsigned baudRate = 0;
    /// Asked for the image once the reset is out.
    std::function<FirmwareFile()> load;
};

/// Brings an image into a sensor over a link that is open: reset into the boot loader, transfer, result. One
/// update at a time. Transfers of the link block the thread.
class UpdateJob : public QObject
{
    Q_OBJECT

public:
    enum class Failure { File, Timeout, Cancelled };

    explicit UpdateJob(UpdateLink &link);

    /// Ends in failed() or succeeded(), and then in ended(); without a usable file already before it returns.
    void start(const UpdatePlan &plan);
    /// Tells the boot loader to give up; the end comes 100 ms later.
    void cancel();
    /// Forgets a transfer that has not ended yet, without a signal.
    void abandon();
    /// Of the sensor in its boot loader, from the next frame on.
    void setAddress(uint8_t address) { m_address = address; }

Q_SIGNALS:
    void started();
    void progressed(int percent);
    void received(QByteArray bytes);
    void sent();
    void succeeded(std::chrono::milliseconds elapsed);
    void failed(UpdateJob::Failure failure);
    /// The link is not needed any more.
    void ended();

private:
    void sendReset(const UpdatePlan &plan);
    void sendResetAtRate(const QByteArray &command, const QString &device, unsigned rate);
    void reopen(const QString &device, unsigned rate);
    void transfer(const FirmwareFile &file);
    void connectResults(class_ymodem *sender);
    void end();

    UpdateLink &m_link;
    uint8_t m_address = 0;
    /// Keeps the address that a reset over the serial line puts in, for every later update.
    QByteArray m_defaultReset;
    QElapsedTimer m_elapsed;
    QPointer<class_ymodem> m_sender;
};
