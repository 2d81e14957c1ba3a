#include "link/vendor/serial_ports.h"

#include "link/vendor/system/system_serial_ports.h"
#include "sim/SimRegistry.h"

QStringList serialPortNames()
{
    return systemSerialPortNames() + SimRegistry::instance().serialPortNames();
}
