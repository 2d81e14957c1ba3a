#include "tests/link/usb/FakeUsbDevice.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// Names the requests of usbdevice_fs.h are made of.
#include <sys/ioctl.h>

#include <fcntl.h>
#include <linux/usbdevice_fs.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr uint16_t kVendorId = 0x1A86;
constexpr uint8_t kDirectionIn = 0x80;

[[noreturn]] void fail(const char *what)
{
    std::perror(what);
    std::abort();
}

/// A copy of what the client's memory holds at the argument.
template<typename Value>
Value valueAt(UMockdevIoctlData *argument)
{
    UMockdevIoctlData *data = umockdev_ioctl_data_resolve(argument, 0, sizeof(Value), nullptr);
    Value value;
    std::memcpy(&value, data->data, sizeof value);
    umockdev_ioctl_data_unref(data);
    return value;
}

template<typename Value>
void update(UMockdevIoctlData *data, size_t offset, const Value &value)
{
    Value copy = value;
    umockdev_ioctl_data_update(data, static_cast<gsize>(offset), reinterpret_cast<guint8 *>(&copy),
                               sizeof copy);
}

} // namespace

FakeUsbDevice::FakeUsbDevice(FakeUsbBus &bus, const std::string &name, int address, FakeUsbChip &chip)
    : m_bus(bus)
    , m_name(name)
    , m_address(address)
    , m_chip(chip)
    , m_handler(umockdev_ioctl_base_new())
{
    g_signal_connect(m_handler, "handle-ioctl", G_CALLBACK(&FakeUsbDevice::onIoctl), this);
}

FakeUsbDevice::~FakeUsbDevice()
{
    std::unique_lock<std::mutex> lock(m_mutex); // the client is answered a moment before the answering ends
    const bool isPlugged = !m_isGone;
    lock.unlock();
    if (isPlugged)
        unplug();
    g_object_unref(m_handler);
    for (Transfer &transfer : m_transfers)
        forget(transfer);
    if (m_fifo >= 0)
        ::close(m_fifo);
}

void FakeUsbDevice::plug()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_answers.clear();
        m_isGone = false;
        claimedInterface = -1;
        haltedEndpoint = 0;
    }
    // All must be in place before anybody hears of the device.
    umockdev_testbed_attach_ioctl(m_bus.testbed(), node().c_str(), m_handler, nullptr);
    makeNode();
    m_bus.add(usbDescription(m_name, m_address, kVendorId, m_chip.productId(), m_chip.descriptors()));
}

void FakeUsbDevice::unplug()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isGone = true;
        for (Transfer &transfer : m_transfers) {
            if (!transfer.isDone)
                transfer.status = -ESHUTDOWN;
            transfer.isDone = true;
        }
        waiting = 0;
        setNodeReady(true);
    }
    const std::string path = FakeUsbBus::sysPath(m_name);
    umockdev_testbed_uevent(m_bus.testbed(), path.c_str(), "remove");
    m_bus.settle();
    umockdev_testbed_remove_device(m_bus.testbed(), path.c_str());
    umockdev_testbed_detach_ioctl(m_bus.testbed(), node().c_str(), nullptr);
}

/// A file would always look as if there were something to fetch, and whoever waits would spin. A fifo that is
/// kept full looks so only when there is.
void FakeUsbDevice::makeNode()
{
    const std::string path = m_bus.realPath(node());
    g_mkdir_with_parents(path.substr(0, path.rfind('/')).c_str(), 0755);
    ::unlink(path.c_str());
    if (::mkfifo(path.c_str(), 0600) != 0)
        fail("fake usb node");
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_fifo >= 0)
        ::close(m_fifo);
    m_fifo = ::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    m_isReady = true;
    setNodeReady(false);
}

void FakeUsbDevice::setNodeReady(bool ready)
{
    if (ready == m_isReady)
        return;
    std::array<uint8_t, 4096> page = {};
    if (ready) {
        while (::read(m_fifo, page.data(), page.size()) > 0) {
        }
    } else {
        while (::write(m_fifo, page.data(), page.size()) > 0) {
        }
    }
    m_isReady = ready;
}

void FakeUsbDevice::forget(Transfer &transfer)
{
    if (transfer.buffer != nullptr)
        umockdev_ioctl_data_unref(transfer.buffer);
    umockdev_ioctl_data_unref(transfer.request);
}

gboolean FakeUsbDevice::onIoctl(UMockdevIoctlBase * /*handler*/, UMockdevIoctlClient *client, gpointer device)
{
    auto *self = static_cast<FakeUsbDevice *>(device);
    const std::lock_guard<std::mutex> lock(self->m_mutex);
    const int error =
        self->answer(umockdev_ioctl_client_get_request(client), umockdev_ioctl_client_get_arg(client));
    umockdev_ioctl_client_complete(client, error == 0 ? 0 : -1, error);
    return TRUE;
}

/// Returns the errno of the request, 0 when it succeeds.
int FakeUsbDevice::answer(unsigned long request, UMockdevIoctlData *argument)
{
    if (request == USBDEVFS_REAPURB || request == USBDEVFS_REAPURBNDELAY)
        return reap(argument);
    if (request == USBDEVFS_GET_CAPABILITIES) // the first thing that is asked of a node that has been opened
        m_hasReappeared = false;
    if (m_isGone || m_hasReappeared)
        return ENODEV;
    switch (request) {
    case USBDEVFS_GET_CAPABILITIES:
        return tellCapabilities(argument);
    case USBDEVFS_CLAIMINTERFACE:
        return kernelOwns ? EBUSY : claim(valueAt<unsigned>(argument));
    case USBDEVFS_DISCONNECT_CLAIM:
        return claim(valueAt<usbdevfs_disconnect_claim>(argument).interface);
    case USBDEVFS_RELEASEINTERFACE:
        claimedInterface = -1;
        return 0;
    case USBDEVFS_GETDRIVER:
        return ENODATA;
    case USBDEVFS_IOCTL:
        kernelOwns = true;
        return 0; // the one sent is "give it back to the kernel driver"
    case USBDEVFS_RESET:
        ++resets;
        m_answers.clear();
        m_hasReappeared = reappears;
        isDeaf = isDeaf && !reappears && !isCuredByReset;
        claimedInterface = reappears ? -1 : claimedInterface.load();
        return reappears ? ENODEV : 0;
    case USBDEVFS_CLEAR_HALT:
        if (valueAt<unsigned>(argument) == haltedEndpoint)
            haltedEndpoint = 0;
        return 0;
    case USBDEVFS_SETINTERFACE:
        return 0;
    case USBDEVFS_SUBMITURB:
        return submit(argument);
    case USBDEVFS_DISCARDURB:
        return discard(argument);
    default:
        std::fprintf(stderr, "fake usb: request %#lx is not known\n", request);
        return ENOTTY;
    }
}

int FakeUsbDevice::tellCapabilities(UMockdevIoctlData *argument)
{
    UMockdevIoctlData *flags = umockdev_ioctl_data_resolve(argument, 0, sizeof(uint32_t), nullptr);
    update<uint32_t>(flags, 0,
                     USBDEVFS_CAP_BULK_CONTINUATION | USBDEVFS_CAP_NO_PACKET_SIZE_LIM |
                         USBDEVFS_CAP_REAP_AFTER_DISCONNECT);
    umockdev_ioctl_data_unref(flags);
    return 0;
}

int FakeUsbDevice::claim(unsigned interfaceNumber)
{
    if (claimedInterface >= 0)
        return EBUSY;
    kernelOwns = false;
    claimedInterface = static_cast<int>(interfaceNumber);
    return 0;
}

int FakeUsbDevice::submit(UMockdevIoctlData *argument)
{
    const auto request = valueAt<usbdevfs_urb>(argument);
    Transfer transfer;
    transfer.request = umockdev_ioctl_data_resolve(argument, 0, sizeof(usbdevfs_urb), nullptr);
    transfer.length = request.buffer_length;
    transfer.buffer = umockdev_ioctl_data_resolve(transfer.request, offsetof(usbdevfs_urb, buffer),
                                                  static_cast<gsize>(request.buffer_length), nullptr);
    transfer.isBulkIn = (request.endpoint & kDirectionIn) != 0;
    if (request.endpoint == haltedEndpoint) {
        transfer.status = -EPIPE;
        transfer.isDone = true;
    } else if (!transfer.isBulkIn) {
        ++sent;
        transfer.actual = transfer.length;
        transfer.isDone = true;
        if (!isDeaf)
            m_chip.receive(Bytes(transfer.buffer->data, transfer.buffer->data + transfer.length), m_answers);
    }
    m_transfers.push_back(transfer);
    deliverAnswers();
    return 0;
}

/// Every waiting transfer takes one packet, in order, and is then ready to be fetched.
void FakeUsbDevice::deliverAnswers()
{
    int stillWaiting = 0;
    for (Transfer &transfer : m_transfers) {
        if (!transfer.isDone && !m_answers.empty()) {
            transfer.answer = m_answers.front();
            m_answers.pop_front();
            const bool fits = static_cast<int>(transfer.answer.size()) <= transfer.length;
            transfer.status = fits ? 0 : -EOVERFLOW;
            transfer.answer.resize(std::min(transfer.answer.size(), static_cast<size_t>(transfer.length)));
            transfer.actual = static_cast<int>(transfer.answer.size());
            transfer.isDone = true;
        }
        stillWaiting += transfer.isDone ? 0 : 1;
    }
    waiting = stillWaiting;
    setNodeReady(stillWaiting < static_cast<int>(m_transfers.size()));
}

/// The client's memory may be written only here, when it fetches a transfer that is done.
int FakeUsbDevice::reap(UMockdevIoctlData *argument)
{
    const auto done = std::find_if(m_transfers.begin(), m_transfers.end(),
                                   [](const Transfer &transfer) { return transfer.isDone; });
    if (done == m_transfers.end()) {
        if (!m_isGone)
            setNodeReady(false);
        return m_isGone ? ENODEV : EAGAIN;
    }
    if (!done->answer.empty())
        umockdev_ioctl_data_update(done->buffer, 0, done->answer.data(),
                                   static_cast<gint>(done->answer.size()));
    update(done->request, offsetof(usbdevfs_urb, status), done->status);
    update(done->request, offsetof(usbdevfs_urb, actual_length), done->actual);
    UMockdevIoctlData *result = umockdev_ioctl_data_resolve(argument, 0, sizeof(void *), nullptr);
    umockdev_ioctl_data_set_ptr(result, 0, done->request);
    umockdev_ioctl_data_unref(result);
    forget(*done);
    m_transfers.erase(done);
    return 0;
}

int FakeUsbDevice::discard(UMockdevIoctlData *argument)
{
    gulong address = 0;
    std::memcpy(&address, argument->data, sizeof address);
    for (Transfer &transfer : m_transfers) {
        if (transfer.isDone || transfer.request->client_addr != address)
            continue;
        transfer.isDone = true;
        transfer.status = -ENOENT;
        deliverAnswers();
        return 0;
    }
    return EINVAL;
}
