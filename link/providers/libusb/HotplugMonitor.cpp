#include "link/providers/libusb/HotplugMonitor.h"

#include <QDebug>

namespace {
constexpr uint32_t kRemoved = 0;
constexpr uint32_t kArrived = 3;
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
    if (m_context == nullptr)
        return false;
    constexpr int kBothEvents = LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED | LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT;
    const int result = libusb_hotplug_register_callback(
        m_context.get(), kBothEvents, LIBUSB_HOTPLUG_NO_FLAGS, LIBUSB_HOTPLUG_MATCH_ANY,
        LIBUSB_HOTPLUG_MATCH_ANY, LIBUSB_HOTPLUG_MATCH_ANY, &HotplugMonitor::queueEvent, this, &m_callback);
    if (result != LIBUSB_SUCCESS) {
        qWarning("bridges that come and go go unnoticed: %s", libusb_error_name(result));
        m_context.reset();
        return false;
    }
    m_thread = std::thread(&HotplugMonitor::run, this);
    return true;
}

void HotplugMonitor::run()
{
    timeval longWait = {60, 0};
    while (!m_stopping) {
        libusb_handle_events_timeout_completed(m_context.get(), &longWait, nullptr);
        // Only now: inside the callback libusb holds locks that the routine might need.
        for (const Event &event : m_events)
            gate(event.family).notify(event.status);
        m_events.clear();
    }
}

int LIBUSB_CALL HotplugMonitor::queueEvent(libusb_context *, libusb_device *device,
                                           libusb_hotplug_event event, void *monitor)
{
    const uint32_t status = event == LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT ? kRemoved : kArrived;
    for (const BridgeFamily family : {BridgeFamily::Ch341, BridgeFamily::Ch347}) {
        if (isBridge(device, family))
            static_cast<HotplugMonitor *>(monitor)->m_events.push_back({family, status});
    }
    return 0;
}
