#pragma once

#include "link/providers/NotifyGate.h"
#include "link/providers/libusb/usb_bridges.h"
#include "link/providers/libusb/usb_context.h"

#include <array>
#include <atomic>
#include <thread>
#include <vector>

/// Tells the registered routines of arrivals and removals, on a thread of its own that is started with the first routine and
/// ends with the process. It has a libusb context of its own, so that no transfer ever waits for a routine.
class HotplugMonitor
{
public:
    static HotplugMonitor &instance();
    ~HotplugMonitor();
    HotplugMonitor(const HotplugMonitor &) = delete;
    HotplugMonitor &operator=(const HotplugMonitor &) = delete;

    /// Sets the routine of a family, null for none. False when arrivals and removals cannot be followed. See NotifyGate for
    /// what holds after a removal.
    bool setRoutine(BridgeFamily family, NotifyGate::Routine routine);

private:
    struct Event
    {
        BridgeFamily family;
        uint32_t status;
    };

    HotplugMonitor() = default;
    bool start();
    void run();
    static int LIBUSB_CALL queueEvent(libusb_context *context, libusb_device *device,
                                      libusb_hotplug_event event, void *monitor);
    NotifyGate &gate(BridgeFamily family) { return m_gates[static_cast<size_t>(family)]; }

    std::array<NotifyGate, 2> m_gates;
    std::mutex m_startMutex; // guards the start of the thread
    UsbContextPointer m_context;
    libusb_hotplug_callback_handle m_callback = 0;
    std::vector<Event> m_events; // of the thread alone
    std::atomic<bool> m_stopping{false};
    std::thread m_thread;
};
