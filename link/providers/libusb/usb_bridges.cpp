#include "link/providers/libusb/usb_bridges.h"

#include "link/providers/libusb/usb_context.h"

#include <QDebug>

#include <algorithm>
#include <array>
#include <cstdio>
#include <set>

namespace {

constexpr unsigned kIdsOfBus = 1000;
constexpr uint16_t kVendorId = 0x1A86;
constexpr uint16_t kCh341Product = 0x5512;
constexpr std::array<uint16_t, 3> kCh347Products = {0x55DB, kCh347JtagProduct, 0x55DE};

using PortPath = std::vector<uint8_t>;

/// All zero when the device cannot tell.
libusb_device_descriptor descriptorOf(libusb_device *device)
{
    libusb_device_descriptor descriptor = {};
    return libusb_get_device_descriptor(device, &descriptor) == LIBUSB_SUCCESS ? descriptor
                                                                               : libusb_device_descriptor{};
}

PortPath portPathOf(libusb_device *device)
{
    constexpr int kDeepestPort = 7;
    PortPath ports(kDeepestPort);
    const int count = libusb_get_port_numbers(device, ports.data(), kDeepestPort);
    ports.resize(count > 0 ? static_cast<size_t>(count) : 0);
    return ports;
}

bool isPluggedBefore(const UsbDevicePointer &left, const UsbDevicePointer &right)
{
    const int leftBus = libusb_get_bus_number(left.get());
    const int rightBus = libusb_get_bus_number(right.get());
    if (leftBus != rightBus)
        return leftBus < rightBus;
    return portPathOf(left.get()) < portPathOf(right.get());
}

/// Bus and ports as they are, the same for several ports of a bus when those are many or deep.
unsigned plainPortId(libusb_device *device)
{
    unsigned ports = 0;
    for (const uint8_t port : portPathOf(device))
        ports = ports * (port < 10 ? 10 : 100) + port;
    return libusb_get_bus_number(device) * kIdsOfBus + ports % kIdsOfBus;
}

/// The id after another, around within those of its bus.
unsigned nextPortId(unsigned id)
{
    return id / kIdsOfBus * kIdsOfBus + (id + 1) % kIdsOfBus;
}

} // namespace

BridgeEndpoints endpointsOf(BridgeFamily family)
{
    return family == BridgeFamily::Ch341 ? BridgeEndpoints{0x02, 0x82} : BridgeEndpoints{0x06, 0x86};
}

bool isBridge(libusb_device *device, BridgeFamily family)
{
    const libusb_device_descriptor descriptor = descriptorOf(device);
    if (descriptor.idVendor != kVendorId)
        return false;
    if (family == BridgeFamily::Ch341)
        return descriptor.idProduct == kCh341Product;
    return std::find(kCh347Products.begin(), kCh347Products.end(), descriptor.idProduct) !=
           kCh347Products.end();
}

uint16_t productOf(libusb_device *device)
{
    return descriptorOf(device).idProduct;
}

std::vector<UsbDevicePointer> pluggedBridges(BridgeFamily family)
{
    std::vector<UsbDevicePointer> bridges;
    libusb_context *context = transferContext();
    libusb_device **list = nullptr;
    if (context == nullptr || libusb_get_device_list(context, &list) < 0)
        return bridges;
    for (libusb_device **device = list; *device != nullptr; ++device) {
        if (isBridge(*device, family))
            bridges.emplace_back(libusb_ref_device(*device));
    }
    libusb_free_device_list(list, 1);
    sortByPort(bridges);
    return bridges;
}

void sortByPort(std::vector<UsbDevicePointer> &bridges)
{
    std::sort(bridges.begin(), bridges.end(), isPluggedBefore);
}

UsbDevicePointer bridgeInPlaceOf(libusb_device *device, BridgeFamily family)
{
    for (UsbDevicePointer &bridge : pluggedBridges(family)) {
        if (libusb_get_bus_number(bridge.get()) == libusb_get_bus_number(device) &&
            portPathOf(bridge.get()) == portPathOf(device))
            return std::move(bridge);
    }
    return nullptr;
}

unsigned portIdOf(libusb_device *device, BridgeFamily family)
{
    return portIdOf(device, pluggedBridges(family));
}

unsigned portIdOf(libusb_device *device, const std::vector<UsbDevicePointer> &bridges)
{
    std::set<unsigned> claimed;
    for (const UsbDevicePointer &bridge : bridges)
        claimed.insert(plainPortId(bridge.get()));
    std::set<unsigned> kept;
    for (const UsbDevicePointer &bridge : bridges) {
        unsigned id = plainPortId(bridge.get());
        if (!kept.insert(id).second) {
            while (!claimed.insert(id).second)
                id = nextPortId(id);
        }
        if (bridge.get() == device)
            return id;
    }
    return plainPortId(device);
}

std::string nodeOf(libusb_device *device)
{
    std::array<char, 32> node{};
    std::snprintf(node.data(), node.size(), "/dev/bus/usb/%03d/%03d", libusb_get_bus_number(device),
                  libusb_get_device_address(device));
    return node.data();
}
