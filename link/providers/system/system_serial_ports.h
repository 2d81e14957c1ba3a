#pragma once

#include <QStringList>

/// Names of the machine's serial ports, in the order in which the system lists them.
QStringList systemSerialPortNames();
