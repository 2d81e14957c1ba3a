#include "link/providers/serial_ports.h"

#include "link/providers/system/system_serial_ports.h"

QStringList serialPortNames()
{
    return systemSerialPortNames();
}
