// Stand-in for the libraries of both families: every operation leaves a trace of its arguments in what it
// returns.

#include <cstdint>
#include <cstring>

#define STUB_EXPORT extern "C" __attribute__((visibility("default")))

namespace {
using Routine = void (*)(uint32_t);
Routine notified = nullptr;
int handle = 0;
} // namespace

STUB_EXPORT void *CH341OpenDevice(uint32_t index)
{
    return index < 2 ? &handle : reinterpret_cast<void *>(UINTPTR_MAX);
}

STUB_EXPORT void CH341CloseDevice(uint32_t index)
{
    handle = static_cast<int>(index);
}

STUB_EXPORT uint32_t CH341ResetDevice(uint32_t index)
{
    return 100 + index;
}

STUB_EXPORT uint32_t CH341FlushBuffer(uint32_t index)
{
    return 200 + index;
}

STUB_EXPORT const char *CH341GetDeviceName(uint32_t index)
{
    return index == 1 ? "path" : nullptr;
}

STUB_EXPORT uint32_t CH341SetDeviceNotify(uint32_t index, const char *deviceId, Routine routine)
{
    // Keeps the old routine and calls it while it is being taken away, which a library may well do.
    if (routine == nullptr && notified != nullptr)
        notified(0);
    if (routine != nullptr)
        notified = routine;
    return index == 0 && deviceId == nullptr ? 1 : 0;
}

STUB_EXPORT uint32_t CH341SetStream(uint32_t index, uint32_t mode)
{
    // A device that arrives, as far as the test is concerned.
    if (notified != nullptr)
        notified(mode);
    return 300 + index;
}

STUB_EXPORT uint32_t CH341WriteData(uint32_t index, const void *buffer, uint32_t *length)
{
    *length += static_cast<const uint8_t *>(buffer)[0];
    return 400 + index;
}

STUB_EXPORT uint32_t CH341WriteRead(uint32_t index, uint32_t writeLength, const void *writeBuffer,
                                    uint32_t readStep, uint32_t readTimes, uint32_t *readLength,
                                    void *readBuffer)
{
    std::memcpy(readBuffer, writeBuffer, writeLength);
    *readLength = readStep * readTimes;
    return 500 + index;
}

STUB_EXPORT uint32_t CH341GetInput(uint32_t index, uint32_t *status)
{
    *status = 0x12345678;
    return 600 + index;
}

STUB_EXPORT uint32_t CH341SetOutput(uint32_t index, uint32_t enable, uint32_t direction, uint32_t data)
{
    return 700 + index + enable * 1000 + direction * 10000 + data * 100000;
}

STUB_EXPORT void *CH347OpenDevice(uint32_t index)
{
    return CH341OpenDevice(index);
}

STUB_EXPORT uint32_t CH347CloseDevice(uint32_t index)
{
    return 100 + index;
}

STUB_EXPORT uint32_t CH347GetDeviceInfor(uint32_t index, void *info)
{
    // The layout is the library's own business; the test only looks for the text.
    std::memset(info, 0x11, 40);
    std::memcpy(static_cast<char *>(info) + 41, "usb#6&1A2B&0", 13);
    return 200 + index;
}

STUB_EXPORT uint32_t CH347SetDeviceNotify(uint32_t index, const char *deviceId, Routine routine)
{
    if (routine != nullptr)
        routine(7);
    return index == 0 && deviceId == nullptr ? 1 : 0;
}

STUB_EXPORT uint32_t CH347I2C_Set(uint32_t index, uint32_t mode)
{
    return 300 + index + mode * 1000;
}

STUB_EXPORT uint32_t CH347I2C_SetStretch(uint32_t index, uint32_t on)
{
    return 400 + index + on * 1000;
}

STUB_EXPORT uint32_t CH347I2C_SetDriverMode(uint32_t index, uint32_t mode)
{
    return 500 + index + mode * 1000;
}

STUB_EXPORT uint32_t CH347I2C_SetDelaymS(uint32_t index, uint32_t delayMs)
{
    return 600 + index + delayMs * 1000;
}

STUB_EXPORT uint32_t CH347StreamI2C(uint32_t index, uint32_t writeLength, const void *writeBuffer,
                                    uint32_t readLength, void *readBuffer)
{
    std::memcpy(readBuffer, writeBuffer, writeLength);
    return 700 + index + readLength * 1000;
}

#ifndef STUB_WITHOUT_GPIO
STUB_EXPORT uint32_t CH347GPIO_Set(uint32_t index, uint32_t enable, uint32_t direction, uint32_t data)
{
    return 800 + index + enable * 1000 + direction * 10000 + data * 100000;
}
#endif

STUB_EXPORT uint32_t CH347GPIO_Get(uint32_t index, uint32_t *direction, uint32_t *data)
{
    *direction = 0xAAAAAA12;
    *data = 0xBBBBBB34;
    return 900 + index;
}
