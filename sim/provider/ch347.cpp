#include "link/providers/ch347dll.h"
#include "link/providers/invalid_handle.h"
#include "sim/SimCh347.h"
#include "sim/SimRegistry.h"

#include <algorithm>
#include <thread>

namespace {

std::shared_ptr<SimCh347> bridgeOf(uint32_t index)
{
    return std::dynamic_pointer_cast<SimCh347>(
        SimRegistry::instance().usbDevice(SimUsbDevice::Family::Ch347, index));
}

} // namespace

void *CH347OpenDevice(uint32_t index)
{
    const auto bridge = bridgeOf(index);
    return bridge && bridge->open() ? bridge.get() : invalidHandle();
}

uint32_t CH347CloseDevice(uint32_t index)
{
    const auto bridge = bridgeOf(index);
    if (bridge)
        bridge->close();
    return bridge ? 1 : 0;
}

// As in a library's record the text stands among fields of other kinds.
uint32_t CH347GetDeviceInfor(uint32_t index, CH347DeviceInfo *info)
{
    constexpr int textOffset = 68;
    const auto bridge = bridgeOf(index);
    if (!bridge || !bridge->isOpen())
        return 0;
    info->bytes[0] = static_cast<char>(index);
    const QByteArray name = QByteArrayLiteral("CH347");
    std::copy(name.begin(), name.end(), info->bytes + 4);
    const QByteArray &path = bridge->path();
    std::copy(path.begin(), path.end(), info->bytes + textOffset);
    return 1;
}

// Bridges of this kind come and go without a report.
uint32_t CH347SetDeviceNotify(uint32_t, const char *, CH347NotifyRoutine)
{
    return 1;
}

uint32_t CH347I2C_Set(uint32_t index, uint32_t mode)
{
    const auto bridge = bridgeOf(index);
    return bridge && bridge->setClockMode(mode) ? 1 : 0;
}

uint32_t CH347I2C_SetStretch(uint32_t index, uint32_t on)
{
    const auto bridge = bridgeOf(index);
    return bridge && bridge->setStretch(on) ? 1 : 0;
}

uint32_t CH347I2C_SetDriverMode(uint32_t index, uint8_t mode)
{
    const auto bridge = bridgeOf(index);
    return bridge && bridge->setDriverMode(mode) ? 1 : 0;
}

uint32_t CH347I2C_SetDelaymS(uint32_t index, uint32_t delayMs)
{
    const auto bridge = bridgeOf(index);
    if (!bridge || !bridge->isOpen())
        return 0;
    std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
    return 1;
}

uint32_t CH347StreamI2C(uint32_t index, uint32_t writeLength, const void *writeBuffer, uint32_t readLength,
                        void *readBuffer)
{
    const auto bridge = bridgeOf(index);
    const QByteArray written(static_cast<const char *>(writeBuffer), static_cast<int>(writeLength));
    QByteArray received;
    if (!bridge || !bridge->transfer(written, static_cast<int>(readLength), &received))
        return 0;
    std::copy(received.begin(), received.end(), static_cast<char *>(readBuffer));
    return 1;
}

uint32_t CH347GPIO_Set(uint32_t index, uint8_t enable, uint8_t direction, uint8_t data)
{
    const auto bridge = bridgeOf(index);
    return bridge && bridge->setPins(enable, direction, data) ? 1 : 0;
}

uint32_t CH347GPIO_Get(uint32_t index, uint8_t *direction, uint8_t *data)
{
    const auto bridge = bridgeOf(index);
    return bridge && bridge->pins(direction, data) ? 1 : 0;
}
