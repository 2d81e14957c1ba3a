#include "tests/link/fake_vendor.h"

#include "link/providers/ch341dll.h"
#include "link/providers/ch347dll.h"
#include "link/providers/serial_ports.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

QByteArray hex(const void *data, uint32_t length)
{
    return QByteArray(static_cast<const char *>(data), static_cast<int>(length)).toHex().toUpper();
}

void note(const char *name, uint32_t index)
{
    vendor().note(QString::asprintf("%s %u", name, index));
}

uint32_t noteSetting(const char *name, uint32_t index, uint32_t value)
{
    vendor().note(QString::asprintf("%s %u %u", name, index, value));
    return vendor().result;
}

void *open(uint32_t index)
{
    note("open", index);
    static int handle;
    const bool exists = vendor().opens && !vendor().textOf(index).empty();
    return exists ? &handle : reinterpret_cast<void *>(UINTPTR_MAX);
}

uint32_t setRoutine(uint32_t index, void (*routine)(uint32_t))
{
    note(routine != nullptr ? "notify on" : "notify off", index);
    vendor().setRoutine(routine);
    return 1;
}

void deliver(void *buffer, uint32_t length)
{
    if (vendor().deliver)
        vendor().deliver(static_cast<uint8_t *>(buffer), length);
    else
        std::generate_n(static_cast<uint8_t *>(buffer), length, [] { return vendor().nextByte++; });
}

/// Bytes that a packet of the CH341 receives: what the commands after the data say.
uint32_t receivedBytes(const void *buffer, uint32_t length)
{
    const auto *packet = static_cast<const uint8_t *>(buffer);
    uint32_t count = 0;
    for (uint32_t i = 0; i < length; ++i) {
        if (packet[i] == 0x81)
            ++i; // skips the address byte
        else if (packet[i] >= 0xC0)
            count += std::max(packet[i] - 0xC0U, 1U);
    }
    return count;
}

} // namespace

FakeVendor &vendor()
{
    static FakeVendor fake;
    return fake;
}

extern "C" FakeVendor *fakeVendor()
{
    return &vendor();
}

QStringList serialPortNames()
{
    return vendor().portNames;
}

void *CH341OpenDevice(uint32_t index)
{
    return open(index);
}

void CH341CloseDevice(uint32_t index)
{
    note("close", index);
}

uint32_t CH341ResetDevice(uint32_t index)
{
    note("reset", index);
    return 0;
}

uint32_t CH341FlushBuffer(uint32_t index)
{
    note("flush", index);
    return 0;
}

const char *CH341GetDeviceName(uint32_t index)
{
    thread_local std::array<std::string, 16> names;
    names[index] = vendor().textOf(index);
    return names[index].empty() ? nullptr : names[index].c_str();
}

uint32_t CH341SetDeviceNotify(uint32_t index, const char * /*deviceId*/, CH341NotifyRoutine routine)
{
    return setRoutine(index, routine);
}

uint32_t CH341SetStream(uint32_t index, uint32_t mode)
{
    return noteSetting("speed", index, mode);
}

uint32_t CH341WriteData(uint32_t index, const void *buffer, uint32_t *length)
{
    vendor().note(QString::asprintf("write %u %s", index, hex(buffer, *length).constData()));
    if (vendor().reportsNothing)
        *length = 0;
    return vendor().takeSuccess() ? 1 : 0;
}

uint32_t CH341WriteRead(uint32_t index, uint32_t writeLength, const void *writeBuffer, uint32_t readStep,
                        uint32_t readTimes, uint32_t *readLength, void *readBuffer)
{
    vendor().note(QString::asprintf("read %u %ux%u %s", index, readStep, readTimes,
                                    hex(writeBuffer, writeLength).constData()));
    if (!vendor().takeSuccess())
        return 0;
    const uint32_t count = receivedBytes(writeBuffer, writeLength);
    deliver(readBuffer, count);
    *readLength = vendor().reportedRead != 0 ? vendor().reportedRead : count;
    if (vendor().reportsNothing)
        *readLength = 0;
    return 1;
}

uint32_t CH341GetInput(uint32_t index, uint32_t *status)
{
    note("getInput", index);
    *status = vendor().pins;
    return 1;
}

uint32_t CH341SetOutput(uint32_t index, uint32_t enable, uint32_t direction, uint32_t data)
{
    vendor().note(QString::asprintf("setOutput %u %u %x %x", index, enable, direction, data));
    return 1;
}

void *CH347OpenDevice(uint32_t index)
{
    return open(index);
}

uint32_t CH347CloseDevice(uint32_t index)
{
    note("close", index);
    return 1;
}

uint32_t CH347GetDeviceInfor(uint32_t index, CH347DeviceInfo *info)
{
    const std::string text = vendor().textOf(index);
    // The text stands somewhere in the record, after numbers and another text.
    std::memcpy(info->bytes, "\x01\x02name\0\x03\0", 10);
    std::memcpy(info->bytes + 10, text.data(), text.size());
    return 1;
}

uint32_t CH347SetDeviceNotify(uint32_t index, const char * /*deviceId*/, CH347NotifyRoutine routine)
{
    return setRoutine(index, routine);
}

uint32_t CH347I2C_Set(uint32_t index, uint32_t mode)
{
    return noteSetting("speed", index, mode);
}

uint32_t CH347I2C_SetStretch(uint32_t index, uint32_t on)
{
    return noteSetting("stretch", index, on);
}

uint32_t CH347I2C_SetDriverMode(uint32_t index, uint8_t mode)
{
    return noteSetting("driver", index, mode);
}

uint32_t CH347I2C_SetDelaymS(uint32_t index, uint32_t delayMs)
{
    return noteSetting("delay", index, delayMs);
}

uint32_t CH347StreamI2C(uint32_t index, uint32_t writeLength, const void *writeBuffer, uint32_t readLength,
                        void *readBuffer)
{
    vendor().note(
        QString::asprintf("i2c %u %s +%u", index, hex(writeBuffer, writeLength).constData(), readLength));
    if (!vendor().takeSuccess())
        return 0;
    deliver(readBuffer, readLength);
    return 1;
}

#ifndef VENDOR_WITHOUT_GPIO
uint32_t CH347GPIO_Set(uint32_t index, uint8_t enable, uint8_t direction, uint8_t data)
{
    vendor().note(QString::asprintf("gpio %u %02x %02x %02x", index, enable, direction, data));
    return vendor().result;
}
#endif

uint32_t CH347GPIO_Get(uint32_t /*index*/, uint8_t * /*direction*/, uint8_t * /*data*/)
{
    return 0;
}
