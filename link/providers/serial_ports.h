#pragma once

#include <QStringList>

/// Names of the machine's serial ports, in the order in which the system lists them; nobody has tried to open
/// them. Only declared here: the program that links decides who provides it.
QStringList serialPortNames();
