#pragma once

#include <libusb.h>

#include <memory>

struct UsbContextDeleter
{
    void operator()(libusb_context *context) const { libusb_exit(context); }
};
using UsbContextPointer = std::unique_ptr<libusb_context, UsbContextDeleter>;

/// Null, and a line in the log, when the USB cannot be reached at all.
UsbContextPointer makeUsbContext();

/// The context of all transfers and lists, made with the first need and kept for the life of the process.
/// Nobody handles its events but the transfers themselves, each on the thread of its caller, so none waits
/// for another's thread.
libusb_context *transferContext();
