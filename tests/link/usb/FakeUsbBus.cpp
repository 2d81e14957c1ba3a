#include "tests/link/usb/FakeUsbBus.h"

#include <QByteArray>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

const Bytes kHubDescriptors = {18, 1, 0x00, 0x02, 9, 0,  1, 64, 0x6B, 0x1D, 0x02, 0x00, 0x00, 0x06, 0,
                               0,  0, 1,    9,    2, 25, 0, 1,  1,    0,    0xE0, 0,    9,    4,    0,
                               0,  1, 9,    0,    0, 0,  7, 5,  0x81, 3,    4,    0,    12};

} // namespace

FakeUsbBus::FakeUsbBus()
    : m_testbed(umockdev_testbed_new())
{
    add(usbDescription("usb1", 1, 0x1D6B, 0x0002, kHubDescriptors));
    if (libusb_init(&m_context) != LIBUSB_SUCCESS)
        std::abort();
}

FakeUsbBus::~FakeUsbBus()
{
    libusb_exit(m_context);
    g_object_unref(m_testbed);
}

bool FakeUsbBus::isPossible()
{
    const char *preloaded = std::getenv("LD_PRELOAD");
    return preloaded != nullptr && std::strstr(preloaded, "umockdev-preload") != nullptr;
}

void FakeUsbBus::addHub(const std::string &name, int address)
{
    add(usbDescription(name, address, 0x1D6B, 0x0002, kHubDescriptors));
}

std::string FakeUsbBus::sysPath(const std::string &name)
{
    std::string path = "/sys/devices/pci0000:00/usb1";
    // Each hub on the way is a folder: 1-2.3 is found in 1-2.
    for (size_t end = name.find('.'); name != "usb1"; end = name.find('.', end + 1)) {
        path += '/' + name.substr(0, end);
        if (end == std::string::npos)
            break;
    }
    return path;
}

std::string FakeUsbBus::realPath(const std::string &node) const
{
    char *root = umockdev_testbed_get_root_dir(m_testbed);
    std::string path = root + node;
    g_free(root);
    return path;
}

void FakeUsbBus::add(const std::string &description)
{
    GError *error = nullptr;
    if (!umockdev_testbed_add_from_string(m_testbed, description.c_str(), &error)) {
        std::fprintf(stderr, "fake usb: %s\n", error->message);
        std::abort();
    }
}

void FakeUsbBus::settle()
{
    libusb_device **list = nullptr;
    libusb_get_device_list(m_context, &list);
    libusb_free_device_list(list, 1);
}

std::string usbNode(int address)
{
    char node[32];
    std::snprintf(node, sizeof node, "/dev/bus/usb/001/%03d", address);
    return node;
}

std::string usbDescription(const std::string &name, int address, uint16_t vendor, uint16_t product,
                           const Bytes &descriptors)
{
    const auto size = static_cast<int>(descriptors.size());
    const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(descriptors.data()), size);
    char text[1024];
    std::snprintf(text, sizeof text,
                  "P: %s\nE: DEVTYPE=usb_device\nE: SUBSYSTEM=usb\nE: DEVNAME=%s\nE: BUSNUM=001\n"
                  "E: DEVNUM=%03d\nE: MAJOR=189\nE: MINOR=%d\nE: PRODUCT=%x/%x/304\nA: busnum=1\n"
                  "A: devnum=%d\nA: speed=12\nA: bConfigurationValue=1\nA: idVendor=%04x\n"
                  "A: idProduct=%04x\nH: descriptors=%s\n\n",
                  FakeUsbBus::sysPath(name).substr(4).c_str(), usbNode(address).c_str(), address, address - 1,
                  vendor, product, address, vendor, product, bytes.toHex().constData());
    return text;
}
