#include "sim/SimUsb.h"

#include "sim/SimRegistry.h"

#include <algorithm>

SimUsb::~SimUsb()
{
    for (const auto &device : m_devices)
        SimRegistry::instance().removeUsb(device.get());
}

void SimUsb::plug(const std::shared_ptr<SimUsbDevice> &device, int position)
{
    {
        const std::lock_guard lock(m_mutex);
        if (std::find(m_devices.begin(), m_devices.end(), device) == m_devices.end())
            m_devices.push_back(device);
    }
    SimRegistry::instance().addUsb(device, position);
}

void SimUsb::unplug(const std::shared_ptr<SimUsbDevice> &device)
{
    SimRegistry::instance().removeUsb(device.get());
}

std::shared_ptr<SimUsbDevice> SimUsb::plugStranger(int hub, int port, int position)
{
    auto stranger =
        std::make_shared<SimUsbDevice>(SimUsbDevice::Family::Ch341, simDevicePath("5584", hub, port));
    plug(stranger, position);
    return stranger;
}
