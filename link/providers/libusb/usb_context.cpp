#include "link/providers/libusb/usb_context.h"

#include <QDebug>

UsbContextPointer makeUsbContext()
{
    libusb_context *context = nullptr;
    const int result = libusb_init(&context);
    if (result != LIBUSB_SUCCESS) {
        qWarning("usb cannot be reached: %s", libusb_error_name(result));
        return nullptr;
    }
    return UsbContextPointer(context);
}

libusb_context *transferContext()
{
    static const UsbContextPointer context = makeUsbContext();
    return context.get();
}
