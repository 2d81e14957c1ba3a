#include "link/class_uart.h"

#include "link/providers/serial_ports.h"

#include <QDebug>

#include <algorithm>

class_uart::class_uart(QObject *parent)
    : QObject(parent)
    , port(new QSerialPort(this))
{
    qDebug("uart init");
    connect(port, &QSerialPort::errorOccurred, this, &class_uart::handleError);
}

class_uart::~class_uart()
{
    qDebug("uart deinit");
    port->disconnect(this);
    delete port;
}

bool class_uart::open(const QString &name, unsigned int baudRate)
{
    if (port->isOpen())
        port->close();
    port->setPortName(name);
    port->setBaudRate(static_cast<qint32>(baudRate));
    port->setDataBits(QSerialPort::Data8);
    port->setParity(QSerialPort::NoParity);
    port->setStopBits(QSerialPort::OneStop);
    port->setFlowControl(QSerialPort::NoFlowControl);
    const bool opened = port->open(QIODevice::ReadWrite);
    if (opened)
        Q_EMIT si_openSuccess();
    else
        Q_EMIT si_openFail();
    return opened;
}

void class_uart::scan(bool test)
{
    QStringList names = serialPortNames();
    if (test) {
        const auto refuses = [this](const QString &name) { return !canBeOpened(name); };
        names.erase(std::remove_if(names.begin(), names.end(), refuses), names.end());
    }
    Q_EMIT si_scanEnd(names);
}

void class_uart::close()
{
    if (port->isOpen())
        port->close();
    Q_EMIT si_close();
}

bool class_uart::canBeOpened(const QString &name)
{
    port->setPortName(name);
    const bool opened = port->open(QIODevice::ReadWrite);
    if (opened)
        port->close();
    return opened;
}

void class_uart::handleError(QSerialPort::SerialPortError error)
{
    if (error != QSerialPort::PermissionError || !port->isOpen())
        return;
    port->close();
    Q_EMIT si_close();
}
