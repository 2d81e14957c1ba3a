#include "link/providers/ch347dll.h"

#include "link/providers/invalid_handle.h"
#include "link/providers/libusb/BridgeTable.h"
#include "link/providers/libusb/Ch347Chip.h"
#include "link/providers/libusb/HotplugMonitor.h"
#include "link/providers/libusb/UnsupportedSetting.h"

#include <cstdio>
#include <thread>

namespace {

constexpr size_t kIndexCount = 32;
constexpr uint32_t kFastestKnownMode = 3;
using Ch347Table = BridgeTable<Ch347Chip, kIndexCount>;

Ch347Table &table()
{
    static Ch347Table bridges;
    return bridges;
}

UnsupportedSetting fastClock("I2C clock above 750 kHz");
UnsupportedSetting stretch("I2C clock stretching");
UnsupportedSetting driverMode("I2C driver mode");
UnsupportedSetting transferDelay("I2C delay");

/// Fails only when the index is not open.
uint32_t accept(uint32_t index, UnsupportedSetting &setting, uint32_t value)
{
    return table().run(index, [&setting, value](Ch347Chip &) {
        setting.note(value);
        return true;
    });
}

} // namespace

void *TACTILE_VENDOR_CALL CH347OpenDevice(uint32_t index)
{
    const Ch347Table::ChipPointer chip = table().open(index);
    return chip ? chip.get() : invalidHandle();
}

uint32_t TACTILE_VENDOR_CALL CH347CloseDevice(uint32_t index)
{
    table().close(index);
    return 1;
}

uint32_t TACTILE_VENDOR_CALL CH347GetDeviceInfor(uint32_t index, CH347DeviceInfo *info)
{
    return table().run(index, [info](Ch347Chip &chip) {
        // The id of a bridge is the hexadecimal field; its decimal value shows bus and port.
        std::snprintf(info->bytes, sizeof info->bytes, "usb#VID_1A86&%X#%s",
                      portIdOf(chip.device(), BridgeFamily::Ch347), nodeOf(chip.device()).c_str());
        return true;
    });
}

uint32_t TACTILE_VENDOR_CALL CH347SetDeviceNotify(uint32_t, const char *, CH347NotifyRoutine routine)
{
    return HotplugMonitor::instance().setRoutine(BridgeFamily::Ch347, routine) ? 1 : 0;
}

uint32_t TACTILE_VENDOR_CALL CH347I2C_Set(uint32_t index, uint32_t mode)
{
    if (mode > kFastestKnownMode)
        return accept(index, fastClock, mode);
    return table().run(index, [mode](Ch347Chip &chip) { return chip.setSpeed(static_cast<uint8_t>(mode)); });
}

uint32_t TACTILE_VENDOR_CALL CH347I2C_SetStretch(uint32_t index, uint32_t on)
{
    return accept(index, stretch, on);
}

uint32_t TACTILE_VENDOR_CALL CH347I2C_SetDriverMode(uint32_t index, uint8_t mode)
{
    return accept(index, driverMode, mode);
}

uint32_t TACTILE_VENDOR_CALL CH347I2C_SetDelaymS(uint32_t index, uint32_t delayMs)
{
    return table().run(index, [delayMs](Ch347Chip &) {
        // The next transfer is to wait; as nothing else can happen before it, the host may as well wait now.
        std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
        transferDelay.note(delayMs);
        return true;
    });
}

uint32_t TACTILE_VENDOR_CALL CH347StreamI2C(uint32_t index, uint32_t writeLength, const void *writeBuffer,
                                            uint32_t readLength, void *readBuffer)
{
    if (writeLength == 0)
        return 0;
    return table().run(index, [=](Ch347Chip &chip) {
        return chip.transfer(static_cast<const uint8_t *>(writeBuffer), writeLength,
                             static_cast<uint8_t *>(readBuffer), readLength);
    });
}

uint32_t TACTILE_VENDOR_CALL CH347GPIO_Set(uint32_t index, uint8_t enable, uint8_t direction, uint8_t data)
{
    return table().run(index, [=](Ch347Chip &chip) { return chip.setPins(enable, direction, data); });
}

uint32_t TACTILE_VENDOR_CALL CH347GPIO_Get(uint32_t index, uint8_t *direction, uint8_t *data)
{
    return table().run(index, [=](Ch347Chip &chip) { return chip.getPins(*direction, *data); });
}
