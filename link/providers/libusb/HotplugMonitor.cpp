#include "link/providers/libusb/HotplugMonitor.h"

#include <QDebug>

#include <algorithm>

namespace {
constexpr uint32_t kRemoved = 0;
constexpr uint32_t kArrived = 3;

thread_local const std::vector<UsbDevicePointer> *toldBridges = nullptr;

std::vector<UsbDevicePointer> copyOf(const std::vector<UsbDevicePointer> &bridges)
{
    std::vector<UsbDevicePointer> copy;
    copy.reserve(bridges.size());
    for (const UsbDevicePointer &bridge : bridges)
        copy.emplace_back(libusb_ref_device(bridge.get()));
    return copy;
}
} // namespace

HotplugMonitor &HotplugMonitor::instance()
{
    static HotplugMonitor monitor;
    return monitor;
}

HotplugMonitor::~HotplugMonitor()
{
    if (!m_thread.joinable())
        return;
    m_stopping = true;
    libusb_interrupt_event_handler(m_context.get());
    m_thread.join();
    libusb_hotplug_deregister_callback(m_context.get(), m_callback);
    for (std::vector<UsbDevicePointer> &bridges : m_bridges)
        bridges.clear();
}

std::vector<UsbDevicePointer> HotplugMonitor::listedBridges(BridgeFamily family)
{
    return toldBridges != nullptr ? copyOf(*toldBridges) : pluggedBridges(family);
}

bool HotplugMonitor::setRoutine(BridgeFamily family, NotifyGate::Routine routine)
{
    gate(family).set(routine);
    return routine == nullptr || start();
}

bool HotplugMonitor::start()
{
    const std::lock_guard<std::mutex> lock(m_startMutex);
    if (m_thread.joinable())
        return true;
    m_context = makeUsbContext();
    if (!m_context)
        return false;
    constexpr int kBothEvents = LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED | LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT;
    const int result = libusb_hotplug_register_callback(
        m_context.get(), kBothEvents, LIBUSB_HOTPLUG_ENUMERATE, LIBUSB_HOTPLUG_MATCH_ANY,
        LIBUSB_HOTPLUG_MATCH_ANY, LIBUSB_HOTPLUG_MATCH_ANY, &HotplugMonitor::queueEvent, this, &m_callback);
    if (result != LIBUSB_SUCCESS) {
        qWarning("bridges that come and go go unnoticed: %s", libusb_error_name(result));
        m_context.reset();
        return false;
    }
    m_events.clear(); // those of bridges that have been there all the time
    m_thread = std::thread(&HotplugMonitor::run, this);
    return true;
}

void HotplugMonitor::run()
{
    timeval longWait = {60, 0};
    while (!m_stopping) {
        libusb_handle_events_timeout_completed(m_context.get(), &longWait, nullptr);
        // Only now: inside the callback libusb holds locks that the routine might need.
        for (const Event &event : m_events) {
            toldBridges = &event.bridges;
            gate(event.family).notify(event.status);
        }
        toldBridges = nullptr;
        m_events.clear();
    }
}

int LIBUSB_CALL HotplugMonitor::queueEvent(libusb_context *, libusb_device *device,
                                           libusb_hotplug_event event, void *monitor)
{
    const uint32_t status = event == LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT ? kRemoved : kArrived;
    for (const BridgeFamily family : {BridgeFamily::Ch341, BridgeFamily::Ch347}) {
        if (isBridge(device, family))
            static_cast<HotplugMonitor *>(monitor)->handle(device, family, status);
    }
    return 0;
}

void HotplugMonitor::handle(libusb_device *device, BridgeFamily family, uint32_t status)
{
    std::vector<UsbDevicePointer> &bridges = m_bridges[static_cast<size_t>(family)];
    const auto isDevice = [device](const UsbDevicePointer &bridge) { return bridge.get() == device; };
    const auto known = std::find_if(bridges.begin(), bridges.end(), isDevice);
    if (status == kRemoved && known != bridges.end())
        bridges.erase(known);
    else if (status == kArrived && known == bridges.end())
        bridges.emplace_back(libusb_ref_device(device));
    sortByPort(bridges);
    m_events.push_back({family, status, copyOf(bridges)});
}
