#pragma once

#include "sim/SimUsbDevice.h"

#include <memory>
#include <mutex>
#include <vector>

/// The USB ports of the machine. Every arrival and removal is reported to the routine that the vendor library
/// was given. What was plugged in through this object is pulled out when it dies. All operations may be
/// called from any thread.
class SimUsb
{
public:
    /// Behind all other devices of the family.
    static constexpr int kLast = -1;

    SimUsb() = default;
    ~SimUsb();
    SimUsb(const SimUsb &) = delete;
    SimUsb &operator=(const SimUsb &) = delete;

    /// The position among the devices of its family is the index by which the vendor library knows it.
    void plug(const std::shared_ptr<SimUsbDevice> &device, int position = kLast);
    void unplug(const std::shared_ptr<SimUsbDevice> &device);
    /// Plugs in something else that the CH341 library lists, too.
    std::shared_ptr<SimUsbDevice> plugStranger(int hub, int port, int position = kLast);

private:
    std::mutex m_mutex; // guards m_devices
    std::vector<std::shared_ptr<SimUsbDevice>> m_devices;
};
