#include "link/providers/system/system_serial_ports.h"

#include <QSerialPortInfo>

QStringList systemSerialPortNames()
{
    QStringList names;
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &port : ports)
        names.append(port.portName());
    return names;
}
