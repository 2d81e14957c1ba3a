#include "link/providers/serial_ports.h"

#include "link/providers/system/system_serial_ports.h"
#include "sim/SimRegistry.h"

QStringList serialPortNames()
{
    return systemSerialPortNames() + SimRegistry::instance().serialPortNames();
}
