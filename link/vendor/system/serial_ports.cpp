#include "link/vendor/serial_ports.h"

#include "link/vendor/system/system_serial_ports.h"

QStringList serialPortNames()
{
    return systemSerialPortNames();
}
