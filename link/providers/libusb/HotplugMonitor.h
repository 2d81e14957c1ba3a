#pragma once

#include "link/providers/NotifyGate.h"
#include "link/providers/libusb/usb_bridges.h"
#include "link/providers/libusb/usb_context.h"

#include <array>
#include <atomic>
#include <thread>
#include <vector>

/// Tells the registered routines of arrivals and removals, on a thread of its own that is started with the
/// first routine and ends with the process. It has a libusb context of its own, so that no transfer ever
/// waits for a routine.
class HotplugMonitor
{
public:
    static HotplugMonitor &instance();
    ~HotplugMonitor();
    HotplugMonitor(const HotplugMonitor &) = delete;
    HotplugMonitor &operator=(const HotplugMonitor &) = delete;

    /// Sets the routine of a family, null for none. False when arrivals and removals cannot be followed. See
    /// NotifyGate for what holds after a removal.
    bool setRoutine(BridgeFamily family, NotifyGate::Routine routine);

    /// What pluggedBridges() gives, but inside a routine the bridges that were there at the event it is
    /// called for. One that has left is none of them, whatever has been plugged into its port since.
    static std::vector<UsbDevicePointer> listedBridges(BridgeFamily family);

private:
    struct Event
    {
        BridgeFamily family;
        uint32_t status;
        std::vector<UsbDevicePointer> bridges; ///< after the event
    };

    HotplugMonitor() = default;
    bool start();
    void run();
    static int LIBUSB_CALL queueEvent(libusb_context *context, libusb_device *device,
                                      libusb_hotplug_event event, void *monitor);
    void handle(libusb_device *device, BridgeFamily family, uint32_t status);
    NotifyGate &gate(BridgeFamily family) { return m_gates[static_cast<size_t>(family)]; }

    std::array<NotifyGate, 2> m_gates;
    std::mutex m_startMutex; // guards the start of the thread
    UsbContextPointer m_context;
    libusb_hotplug_callback_handle m_callback = 0;
    // Both of the thread alone once it runs; libusb may tell of one arrival twice.
    std::array<std::vector<UsbDevicePointer>, 2> m_bridges; ///< by family, as libusb has told of them
    std::vector<Event> m_events;
    std::atomic<bool> m_stopping{false};
    std::thread m_thread;
};
