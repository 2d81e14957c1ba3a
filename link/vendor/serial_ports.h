#pragma once

#include <QStringList>

/// Names of the serial ports that can be opened, in the order in which the system lists them. Only declared here: the
/// program that links decides who provides it.
QStringList serialPortNames();
