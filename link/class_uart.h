#pragma once

#include <QByteArray>
#include <QObject>
#include <QSerialPort>
#include <QStringList>

/// One serial port with fixed line settings: 8 data bits, no parity, 1 stop bit, no flow control. Lists the
/// ports of the machine and tells when the device is lost; what goes over the line is the business of the
/// user, who reads and writes `port` directly. Lives and is used in the thread of its creator.
class class_uart : public QObject
{
    Q_OBJECT

public:
    explicit class_uart(QObject *parent = nullptr);
    ~class_uart() override;

    /// Opens the port for reading and writing; one that is open is closed first, without si_close. Emits
    /// si_openSuccess or si_openFail and returns true when the port is open.
    bool open(const QString &name, unsigned int baudRate);

    /// Lists the ports of the machine by si_scanEnd. With test, only those that can be opened right now.
    void scan(bool test);

    /// Closes the port if it is open. Emits si_close in every case.
    void close();

    QSerialPort *port;

Q_SIGNALS:
    void si_scanEnd(QStringList nameList);
    void si_openSuccess();
    void si_openFail();
    void si_close();
    /// Declared for users' sake and never emitted: everybody reads the port when it suits.
    void si_read(QByteArray buf);

private:
    void handleError(QSerialPort::SerialPortError error);
    bool canBeOpened(const QString &name);
};
