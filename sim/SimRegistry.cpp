#include "sim/SimRegistry.h"

#include "sim/SimSerialBus.h"

#include <algorithm>

SimRegistry &SimRegistry::instance()
{
    static SimRegistry registry;
    return registry;
}

void SimRegistry::add(SimSerialBus *bus)
{
    const std::lock_guard lock(m_mutex);
    m_serialBuses.push_back(bus);
}

void SimRegistry::remove(SimSerialBus *bus)
{
    const std::lock_guard lock(m_mutex);
    m_serialBuses.erase(std::remove(m_serialBuses.begin(), m_serialBuses.end(), bus), m_serialBuses.end());
}

QStringList SimRegistry::serialPortNames() const
{
    const std::lock_guard lock(m_mutex);
    QStringList names;
    for (const SimSerialBus *bus : m_serialBuses) {
        const QString name = bus->portName();
        if (!name.isEmpty())
            names.append(name);
    }
    return names;
}

void SimRegistry::addUsb(const std::shared_ptr<SimUsbDevice> &device, int position)
{
    device->setPlugged(true);
    {
        const std::lock_guard lock(m_mutex);
        Devices &devices = devicesOf(device->family());
        const bool inside = position >= 0 && position < static_cast<int>(devices.size());
        devices.insert(inside ? devices.begin() + position : devices.end(), device);
        if (device->family() == SimUsbDevice::Family::Ch341)
            m_notifier.notify(SimNotifier::kArrived, devices);
    }
}

void SimRegistry::removeUsb(const SimUsbDevice *device)
{
    const std::lock_guard lock(m_mutex);
    Devices &devices = devicesOf(device->family());
    const auto found = std::find_if(devices.begin(), devices.end(),
                                    [device](const auto &plugged) { return plugged.get() == device; });
    if (found == devices.end())
        return;
    (*found)->setPlugged(false);
    devices.erase(found);
    if (device->family() == SimUsbDevice::Family::Ch341)
        m_notifier.notify(SimNotifier::kRemoved, devices);
}

std::shared_ptr<SimUsbDevice> SimRegistry::listedCh341(uint32_t index) const
{
    const Devices *devices = SimNotifier::devicesAtEvent();
    if (devices == nullptr)
        return usbDevice(SimUsbDevice::Family::Ch341, index);
    return index < devices->size() ? (*devices)[index] : nullptr;
}

std::shared_ptr<SimUsbDevice> SimRegistry::usbDevice(SimUsbDevice::Family family, uint32_t index) const
{
    const std::lock_guard lock(m_mutex);
    const Devices &devices = family == SimUsbDevice::Family::Ch341 ? m_ch341Devices : m_ch347Devices;
    return index < devices.size() ? devices[index] : nullptr;
}

SimRegistry::Devices &SimRegistry::devicesOf(SimUsbDevice::Family family)
{
    return family == SimUsbDevice::Family::Ch341 ? m_ch341Devices : m_ch347Devices;
}
