#include "link/providers/libusb/UsbBridge.h"

#include <QDebug>

#include <array>
#include <thread>

namespace {

constexpr std::chrono::milliseconds kDrainLimit{15};
constexpr int kMostDrainedPackets = 64;
constexpr std::chrono::milliseconds kTrialInterval{1500};
constexpr std::chrono::milliseconds kRefusalTime{1};
constexpr size_t kLargestPacket = 512;

struct ConfigDeleter
{
    void operator()(libusb_config_descriptor *config) const { libusb_free_config_descriptor(config); }
};
using ConfigPointer = std::unique_ptr<libusb_config_descriptor, ConfigDeleter>;

/// The interface through which a bridge is spoken to.
struct BridgeInterface
{
    int number = 0;
    size_t packetSize = 0; ///< of the endpoint that is read, in bytes
};

/// Packet size of a bulk endpoint, 0 when the interface has none at that address.
size_t bulkPacketSize(const libusb_interface_descriptor &description, uint8_t address)
{
    for (int i = 0; i < description.bNumEndpoints; ++i) {
        const libusb_endpoint_descriptor &endpoint = description.endpoint[i];
        const int type = endpoint.bmAttributes & LIBUSB_TRANSFER_TYPE_MASK;
        if (endpoint.bEndpointAddress == address && type == LIBUSB_TRANSFER_TYPE_BULK)
            return endpoint.wMaxPacketSize;
    }
    return 0;
}

/// Looks for the interface that speaks the bridge's own protocol. The others, such as those of its serial
/// ports, belong to the kernel. Returns a result of libusb.
int findInterface(libusb_device *device, BridgeEndpoints endpoints, BridgeInterface &found)
{
    libusb_config_descriptor *active = nullptr;
    const int result = libusb_get_active_config_descriptor(device, &active);
    if (result != LIBUSB_SUCCESS)
        return result;
    const ConfigPointer config(active);
    for (int i = 0; i < config->bNumInterfaces; ++i) {
        if (config->interface[i].num_altsetting < 1)
            continue;
        const libusb_interface_descriptor &description = config->interface[i].altsetting[0];
        found = {description.bInterfaceNumber, bulkPacketSize(description, endpoints.in)};
        if (description.bInterfaceClass == LIBUSB_CLASS_VENDOR_SPEC && found.packetSize != 0 &&
            bulkPacketSize(description, endpoints.out) != 0)
            return LIBUSB_SUCCESS;
    }
    return LIBUSB_ERROR_NOT_SUPPORTED;
}

void logRefusal(libusb_device *device, int error)
{
    const std::string node = nodeOf(device);
    if (error == LIBUSB_ERROR_ACCESS)
        qWarning("no permission to use the bridge at %s: install the rules files 60-tactile-bridges.rules "
                 "and 61-tactile-bridges-uaccess.rules, then plug the bridge in again",
                 node.c_str());
    else
        qWarning("the bridge at %s cannot be used: %s", node.c_str(), libusb_error_name(error));
}

} // namespace

std::unique_ptr<UsbBridge> UsbBridge::open(libusb_device *device, BridgeFamily family)
{
    const BridgeEndpoints endpoints = endpointsOf(family);
    BridgeInterface found;
    libusb_device_handle *handle = nullptr;
    int result = findInterface(device, endpoints, found);
    if (result == LIBUSB_SUCCESS)
        result = libusb_open(device, &handle);
    if (result == LIBUSB_SUCCESS) {
        libusb_set_auto_detach_kernel_driver(handle, 1);
        result = libusb_claim_interface(handle, found.number);
        if (result == LIBUSB_SUCCESS)
            return std::unique_ptr<UsbBridge>(
                new UsbBridge(handle, found.number, endpoints, found.packetSize));
        libusb_close(handle);
    }
    logRefusal(device, result);
    return nullptr;
}

UsbBridge::UsbBridge(libusb_device_handle *handle, int interfaceNumber, BridgeEndpoints endpoints,
                     size_t packetSize)
    : m_handle(handle)
    , m_interface(interfaceNumber)
    , m_endpoints(endpoints)
    , m_packetSize(packetSize)
{}

UsbBridge::~UsbBridge()
{
    libusb_release_interface(m_handle, m_interface);
    libusb_close(m_handle);
}

bool UsbBridge::isReady(const std::function<bool()> &passesTrial)
{
    if (m_health == Health::Good)
        return true;
    if (m_health == Health::Silent && std::chrono::steady_clock::now() >= m_nextTrial) {
        drain(); // the answer may only have been late
        const bool passed = passesTrial();
        // Also when it passed: one that falls silent again at once is to cost its callers no second after
        // second.
        m_nextTrial = std::chrono::steady_clock::now() + kTrialInterval;
        if (passed)
            return true;
    }
    std::this_thread::sleep_for(kRefusalTime);
    return false;
}

/// Returns a result of libusb, and how many bytes went over in spite of it.
int UsbBridge::transfer(uint8_t endpoint, uint8_t *data, size_t length, std::chrono::milliseconds limit,
                        int &transferred)
{
    const int result = libusb_bulk_transfer(m_handle, endpoint, data, static_cast<int>(length), &transferred,
                                            static_cast<unsigned>(limit.count()));
    if (result == LIBUSB_ERROR_PIPE)
        libusb_clear_halt(m_handle, endpoint);
    if (result == LIBUSB_ERROR_NO_DEVICE)
        m_health = Health::Gone;
    return result;
}

void UsbBridge::noteSilence(int result)
{
    if (result == LIBUSB_ERROR_TIMEOUT && m_health == Health::Good)
        m_health = Health::Silent;
}

bool UsbBridge::send(const uint8_t *data, size_t length)
{
    int sent = 0;
    // libusb takes the buffer of either direction through one pointer; it only reads this one.
    const int result = transfer(m_endpoints.out, const_cast<uint8_t *>(data), length, kTimeLimit, sent);
    noteSilence(result);
    return result == LIBUSB_SUCCESS && sent == static_cast<int>(length);
}

int UsbBridge::receive(uint8_t *buffer, size_t capacity, std::chrono::milliseconds limit)
{
    int received = 0;
    const int result = transfer(m_endpoints.in, buffer, capacity, limit, received);
    noteSilence(result);
    if (result != LIBUSB_SUCCESS)
        return -1;
    m_health = Health::Good;
    return received;
}

void UsbBridge::drain()
{
    std::array<uint8_t, kLargestPacket> rubbish;
    int received = 0;
    for (int i = 0; i < kMostDrainedPackets; ++i) {
        if (transfer(m_endpoints.in, rubbish.data(), rubbish.size(), kDrainLimit, received) != LIBUSB_SUCCESS)
            return; // quiet, which is no fault here
    }
}

bool UsbBridge::reset()
{
    if (libusb_reset_device(m_handle) != LIBUSB_SUCCESS)
        return false;
    m_health = Health::Good;
    return true;
}
