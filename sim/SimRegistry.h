#pragma once

#include "sim/SimNotifier.h"
#include "sim/SimUsbDevice.h"

#include <QStringList>

#include <memory>
#include <mutex>
#include <vector>

class SimSerialBus;

/// Whatever of the bench is alive in this process. The provider of the vendor operations serves from here.
/// All operations may be called from any thread.
class SimRegistry
{
public:
    static SimRegistry &instance();

    void add(SimSerialBus *bus);
    void remove(SimSerialBus *bus);
    /// Ports of the bench in the order in which they were made.
    QStringList serialPortNames() const;

    /// A position outside the family's list means behind its last device.
    void addUsb(const std::shared_ptr<SimUsbDevice> &device, int position);
    void removeUsb(const SimUsbDevice *device);
    /// Null when there is none.
    std::shared_ptr<SimUsbDevice> usbDevice(SimUsbDevice::Family family, uint32_t index) const;
    /// The same for lists: inside the routine of an event, what was there at the event.
    std::shared_ptr<SimUsbDevice> listedCh341(uint32_t index) const;

    /// Tells of the arrivals and removals of the CH341 family.
    SimNotifier &notifier() { return m_notifier; }

private:
    using Devices = SimNotifier::Devices;

    Devices &devicesOf(SimUsbDevice::Family family);

    mutable std::mutex m_mutex; // guards the lists
    std::vector<SimSerialBus *> m_serialBuses;
    Devices m_ch341Devices;
    Devices m_ch347Devices;
    SimNotifier m_notifier;
};
