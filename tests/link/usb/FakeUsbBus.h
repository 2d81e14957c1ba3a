#pragma once

#include <libusb.h>
#include <umockdev.h>

#include <cstdint>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

/// A USB of the test's own in place of the machine's: devices, their nodes and the news of them come from
/// here for the whole process. Make it before anything looks at the USB, and only once.
class FakeUsbBus
{
public:
    FakeUsbBus();
    ~FakeUsbBus();
    FakeUsbBus(const FakeUsbBus &) = delete;
    FakeUsbBus &operator=(const FakeUsbBus &) = delete;

    /// True when the process runs under umockdev-wrapper.
    static bool isPossible();

    /// A hub in a port of the root hub or of another hub: "1-2" is the one in port 2 of bus 1.
    void addHub(const std::string &name, int address);

    UMockdevTestbed *testbed() const { return m_testbed; }
    /// Where a device of that name is found below /sys.
    static std::string sysPath(const std::string &name);
    /// Path of a node in the real file system.
    std::string realPath(const std::string &node) const;
    /// Adds a device by its description; ends the process when that is wrong.
    void add(const std::string &description);
    /// Returns when libusb has taken note of everything that has been announced. It looks up what it hears
    /// of, so nothing may disappear before.
    void settle();

private:
    UMockdevTestbed *m_testbed;
    libusb_context *m_context = nullptr;
};

/// Node of a device on bus 1.
std::string usbNode(int address);
/// Description of a device on bus 1, without the line that would make a node.
std::string usbDescription(const std::string &name, int address, uint16_t vendor, uint16_t product,
                           const Bytes &descriptors);
