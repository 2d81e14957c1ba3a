#pragma once

#include <QByteArray>

#include <atomic>
#include <utility>

/// Something that can be plugged into the machine, by SimUsb. Make it by std::make_shared.
class SimUsbDevice
{
public:
    /// Which vendor library lists it.
    enum class Family { Ch341, Ch347 };

    SimUsbDevice(Family family, QByteArray path)
        : m_family(family)
        , m_path(std::move(path))
    {}
    virtual ~SimUsbDevice() = default;
    SimUsbDevice(const SimUsbDevice &) = delete;
    SimUsbDevice &operator=(const SimUsbDevice &) = delete;

    Family family() const { return m_family; }
    /// Text by which the vendor library names the device. Never changes.
    const QByteArray &path() const { return m_path; }
    bool isPlugged() const { return m_plugged; }

    /// Called by SimUsb.
    void setPlugged(bool plugged)
    {
        m_plugged = plugged;
        if (plugged)
            powerUp();
    }

protected:
    virtual void powerUp() {}

private:
    const Family m_family;
    const QByteArray m_path;
    std::atomic<bool> m_plugged{false};
};

/// Device path as the system composes it, for a port of a hub: "…#vid_1a86&pid_<product>#<hub>&…&<port>#…".
QByteArray simDevicePath(const char *product, int hub, int port);
