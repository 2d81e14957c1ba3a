#pragma once

#include <QByteArray>

#include <cstdint>

/// The software reset that sends a sensor into its boot loader: 11 bytes with address 0 and their sum.
QByteArray defaultResetCommand();

/// Puts the sensor's address and the new sum into the frame. One of fewer than 11 bytes has no room for them
/// and stays as it is.
void addressResetCommand(QByteArray &frame, uint8_t address);
