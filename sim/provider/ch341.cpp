#include "link/providers/ch341dll.h"
#include "link/providers/invalid_handle.h"
#include "sim/SimCh341.h"
#include "sim/SimRegistry.h"

#include <algorithm>
#include <array>
#include <string>

namespace {

constexpr uint32_t kIndexCount = 16;

/// The bridge of that index; null also for devices of other kinds.
std::shared_ptr<SimCh341> bridgeOf(uint32_t index)
{
    return std::dynamic_pointer_cast<SimCh341>(
        SimRegistry::instance().usbDevice(SimUsbDevice::Family::Ch341, index));
}

QByteArray packetOf(const void *buffer, uint32_t length)
{
    return QByteArray(static_cast<const char *>(buffer), static_cast<int>(length));
}

} // namespace

void *CH341OpenDevice(uint32_t index)
{
    const auto bridge = bridgeOf(index);
    return bridge && bridge->open() ? bridge.get() : invalidHandle();
}

void CH341CloseDevice(uint32_t index)
{
    if (const auto bridge = bridgeOf(index))
        bridge->close();
}

uint32_t CH341ResetDevice(uint32_t index)
{
    const auto bridge = bridgeOf(index);
    return bridge && bridge->isOpen() ? 1 : 0;
}

uint32_t CH341FlushBuffer(uint32_t index)
{
    return CH341ResetDevice(index);
}

const char *CH341GetDeviceName(uint32_t index)
{
    // Copies: the list is asked for on several threads, and none of them is to share memory with the device.
    thread_local std::array<std::string, kIndexCount> names;
    const auto device = SimRegistry::instance().listedCh341(index);
    if (!device || index >= kIndexCount)
        return nullptr;
    names.at(index).assign(device->path().constData());
    return names.at(index).c_str();
}

uint32_t CH341SetDeviceNotify(uint32_t, const char *, CH341NotifyRoutine routine)
{
    SimRegistry::instance().notifier().setRoutine(routine);
    return 1;
}

uint32_t CH341SetStream(uint32_t index, uint32_t mode)
{
    const auto bridge = bridgeOf(index);
    return bridge && bridge->setClockMode(mode) ? 1 : 0;
}

uint32_t CH341WriteData(uint32_t index, const void *buffer, uint32_t *length)
{
    const auto bridge = bridgeOf(index);
    const bool sent = bridge && bridge->transfer(packetOf(buffer, *length), nullptr);
    if (!sent)
        *length = 0;
    return sent ? 1 : 0;
}

uint32_t CH341WriteRead(uint32_t index, uint32_t writeLength, const void *writeBuffer, uint32_t readStep,
                        uint32_t readTimes, uint32_t *readLength, void *readBuffer)
{
    const auto bridge = bridgeOf(index);
    QByteArray received;
    const bool done = bridge && bridge->transfer(packetOf(writeBuffer, writeLength), &received);
    received.truncate(static_cast<int>(readStep * readTimes));
    std::copy(received.begin(), received.end(), static_cast<char *>(readBuffer));
    *readLength = static_cast<uint32_t>(received.size());
    return done ? 1 : 0;
}

uint32_t CH341GetInput(uint32_t index, uint32_t *status)
{
    const auto bridge = bridgeOf(index);
    return bridge && bridge->pins(status) ? 1 : 0;
}

uint32_t CH341SetOutput(uint32_t index, uint32_t enable, uint32_t direction, uint32_t data)
{
    const auto bridge = bridgeOf(index);
    return bridge && bridge->setPins(enable, direction, data) ? 1 : 0;
}
