#include "link/providers/ch341dll.h"

#include "link/providers/invalid_handle.h"
#include "link/providers/libusb/BridgeTable.h"
#include "link/providers/libusb/Ch341Chip.h"
#include "link/providers/libusb/HotplugMonitor.h"

namespace {

constexpr size_t kIndexCount = 16;
using Ch341Table = BridgeTable<Ch341Chip, kIndexCount>;

Ch341Table &table()
{
    static Ch341Table bridges;
    return bridges;
}

/// The fields that the ids of the bridges are made of are the first and the fourth of the part between the
/// last two '#'.
std::string pathOf(libusb_device *device, const std::vector<UsbDevicePointer> &bridges)
{
    const unsigned id = portIdOf(device, bridges);
    return "usb#VID_1A86&PID_5512#" + std::to_string(id / 1000) + "&0&0&" + std::to_string(id % 1000) + '#' +
           nodeOf(device);
}

} // namespace

void *TACTILE_VENDOR_CALL CH341OpenDevice(uint32_t index)
{
    const Ch341Table::ChipPointer chip = table().open(index);
    return chip ? chip.get() : invalidHandle();
}

void TACTILE_VENDOR_CALL CH341CloseDevice(uint32_t index)
{
    table().close(index);
}

uint32_t TACTILE_VENDOR_CALL CH341ResetDevice(uint32_t index)
{
    uint32_t speedMode = 0;
    const auto reset = [&speedMode](Ch341Chip &chip) {
        speedMode = chip.speedMode();
        return chip.reset();
    };
    if (table().run(index, reset) != 0)
        return 1;
    // The reset may have left the bridge as one newly plugged in, with which the old handle has nothing to
    // do.
    table().reopen(index);
    return table().run(index, [speedMode](Ch341Chip &chip) { return chip.setSpeed(speedMode); });
}

uint32_t TACTILE_VENDOR_CALL CH341FlushBuffer(uint32_t index)
{
    return table().run(index, [](Ch341Chip &chip) { return chip.flush(); });
}

const char *TACTILE_VENDOR_CALL CH341GetDeviceName(uint32_t index)
{
    thread_local std::array<std::string, kIndexCount> names;
    if (index >= kIndexCount)
        return nullptr;
    const std::vector<UsbDevicePointer> bridges = HotplugMonitor::listedBridges(BridgeFamily::Ch341);
    if (index >= bridges.size())
        return nullptr;
    names[index] = pathOf(bridges[index].get(), bridges);
    return names[index].c_str();
}

uint32_t TACTILE_VENDOR_CALL CH341SetDeviceNotify(uint32_t, const char *, CH341NotifyRoutine routine)
{
    return HotplugMonitor::instance().setRoutine(BridgeFamily::Ch341, routine) ? 1 : 0;
}

uint32_t TACTILE_VENDOR_CALL CH341SetStream(uint32_t index, uint32_t mode)
{
    return table().run(index, [mode](Ch341Chip &chip) { return chip.setSpeed(mode); });
}

uint32_t TACTILE_VENDOR_CALL CH341WriteData(uint32_t index, const void *buffer, uint32_t *length)
{
    const auto *stream = static_cast<const uint8_t *>(buffer);
    return table().run(index, [stream, length](Ch341Chip &chip) {
        const bool sent = chip.write(stream, *length);
        *length = sent ? *length : 0;
        return sent;
    });
}

uint32_t TACTILE_VENDOR_CALL CH341WriteRead(uint32_t index, uint32_t writeLength, const void *writeBuffer,
                                            uint32_t readStep, uint32_t readTimes, uint32_t *readLength,
                                            void *readBuffer)
{
    *readLength = 0;
    return table().run(index, [=](Ch341Chip &chip) {
        const size_t capacity = size_t{readStep} * readTimes;
        *readLength =
            static_cast<uint32_t>(chip.writeRead(static_cast<const uint8_t *>(writeBuffer), writeLength,
                                                 static_cast<uint8_t *>(readBuffer), capacity));
        return *readLength != 0;
    });
}

uint32_t TACTILE_VENDOR_CALL CH341GetInput(uint32_t index, uint32_t *status)
{
    return table().run(index, [status](Ch341Chip &chip) { return chip.getPins(*status); });
}

uint32_t TACTILE_VENDOR_CALL CH341SetOutput(uint32_t index, uint32_t enable, uint32_t direction,
                                            uint32_t data)
{
    return table().run(
        index, [=](Ch341Chip &chip) { return chip.setPins(static_cast<uint8_t>(enable), direction, data); });
}
