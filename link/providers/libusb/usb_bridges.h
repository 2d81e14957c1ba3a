#pragma once

#include <libusb.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// The two families of bridges that are looked for on the USB.
enum class BridgeFamily : uint8_t {
    Ch341,
    Ch347,
};

/// The pair of bulk endpoints through which a bridge is spoken to.
struct BridgeEndpoints
{
    uint8_t out;
    uint8_t in;
};

BridgeEndpoints endpointsOf(BridgeFamily family);

/// Product id of the CH347 mode with JTAG instead of SPI.
constexpr uint16_t kCh347JtagProduct = 0x55DD;
uint16_t productOf(libusb_device *device);

/// True when the device is a bridge of the family, in a mode that offers the I2C bus.
bool isBridge(libusb_device *device, BridgeFamily family);

struct UsbDeviceDeleter
{
    void operator()(libusb_device *device) const { libusb_unref_device(device); }
};
/// One reference to a device that is or was plugged in.
using UsbDevicePointer = std::unique_ptr<libusb_device, UsbDeviceDeleter>;

/// The bridges of the family that are plugged in now, ordered by the ports they are plugged into.
std::vector<UsbDevicePointer> pluggedBridges(BridgeFamily family);

/// The order of pluggedBridges().
void sortByPort(std::vector<UsbDevicePointer> &bridges);

/// The bridge of the family that is plugged in where a device is or was; null when there is none.
UsbDevicePointer bridgeInPlaceOf(libusb_device *device, BridgeFamily family);

/// Bus number times 1000 plus the last three digits of the port numbers on the way to the device written one
/// after another: port 4 of a hub in port 1 of bus 3 is 3014. The same for a given port of the machine,
/// whatever is plugged in there, and different for all of the bridges, which are those of a family in the
/// order of pluggedBridges(). Where two ports have the same digits (port 11, and port 1 of the hub in port
/// 1), only the first keeps its number; the other has the next one that no bridge claims, and only while both
/// are plugged in.
unsigned portIdOf(libusb_device *device, const std::vector<UsbDevicePointer> &bridges);
/// The same among the bridges of the family that are plugged in now.
unsigned portIdOf(libusb_device *device, BridgeFamily family);

/// Where the device's node is, such as /dev/bus/usb/003/012. A device gets another node each time it is
/// plugged in.
std::string nodeOf(libusb_device *device);
