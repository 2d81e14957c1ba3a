#include "link/providers/ch347dll.h"

#include "link/providers/NotifyGate.h"
#include "link/providers/dll/VendorLibrary.h"
#include "link/providers/invalid_handle.h"

#include <optional>

namespace {

/// Integers of the library have 32 bits, also where fewer would do and ours are shorter.
struct Operations
{
    decltype(&CH347OpenDevice) openDevice;
    decltype(&CH347CloseDevice) closeDevice;
    decltype(&CH347GetDeviceInfor) getDeviceInfor;
    decltype(&CH347SetDeviceNotify) setDeviceNotify;
    decltype(&CH347I2C_Set) i2cSet;
    decltype(&CH347I2C_SetStretch) i2cSetStretch;
    uint32_t(TACTILE_VENDOR_CALL *i2cSetDriverMode)(uint32_t index, uint32_t mode);
    decltype(&CH347I2C_SetDelaymS) i2cSetDelayMs;
    decltype(&CH347StreamI2C) streamI2c;
    uint32_t(TACTILE_VENDOR_CALL *gpioSet)(uint32_t index, uint32_t enable, uint32_t direction,
                                           uint32_t data);
    uint32_t(TACTILE_VENDOR_CALL *gpioGet)(uint32_t index, uint32_t *direction, uint32_t *data);
};

std::optional<Operations> loadOperations()
{
    VendorLibrary library(QStringLiteral("CH347DLL"));
    Operations operations = {};
    library.resolve(operations.openDevice, "CH347OpenDevice");
    library.resolve(operations.closeDevice, "CH347CloseDevice");
    library.resolve(operations.getDeviceInfor, "CH347GetDeviceInfor");
    library.resolve(operations.setDeviceNotify, "CH347SetDeviceNotify");
    library.resolve(operations.i2cSet, "CH347I2C_Set");
    library.resolve(operations.i2cSetStretch, "CH347I2C_SetStretch");
    library.resolve(operations.i2cSetDriverMode, "CH347I2C_SetDriverMode");
    library.resolve(operations.i2cSetDelayMs, "CH347I2C_SetDelaymS");
    library.resolve(operations.streamI2c, "CH347StreamI2C");
    library.resolve(operations.gpioSet, "CH347GPIO_Set");
    library.resolve(operations.gpioGet, "CH347GPIO_Get");
    if (!library.isComplete())
        return std::nullopt;
    return operations;
}

/// Null without the library.
const Operations *library()
{
    static const std::optional<Operations> operations = loadOperations();
    return operations ? &*operations : nullptr;
}

NotifyGate gate;

void TACTILE_VENDOR_CALL passOn(uint32_t status)
{
    gate.notify(status);
}

} // namespace

void *TACTILE_VENDOR_CALL CH347OpenDevice(uint32_t index)
{
    return library() ? library()->openDevice(index) : invalidHandle();
}

uint32_t TACTILE_VENDOR_CALL CH347CloseDevice(uint32_t index)
{
    return library() ? library()->closeDevice(index) : 0;
}

uint32_t TACTILE_VENDOR_CALL CH347GetDeviceInfor(uint32_t index, CH347DeviceInfo *info)
{
    return library() ? library()->getDeviceInfor(index, info) : 0;
}

uint32_t TACTILE_VENDOR_CALL CH347SetDeviceNotify(uint32_t index, const char *deviceId,
                                                  CH347NotifyRoutine routine)
{
    gate.set(routine);
    if (!library())
        return 0;
    return library()->setDeviceNotify(index, deviceId, routine != nullptr ? &passOn : nullptr);
}

uint32_t TACTILE_VENDOR_CALL CH347I2C_Set(uint32_t index, uint32_t mode)
{
    return library() ? library()->i2cSet(index, mode) : 0;
}

uint32_t TACTILE_VENDOR_CALL CH347I2C_SetStretch(uint32_t index, uint32_t on)
{
    return library() ? library()->i2cSetStretch(index, on) : 0;
}

uint32_t TACTILE_VENDOR_CALL CH347I2C_SetDriverMode(uint32_t index, uint8_t mode)
{
    return library() ? library()->i2cSetDriverMode(index, mode) : 0;
}

uint32_t TACTILE_VENDOR_CALL CH347I2C_SetDelaymS(uint32_t index, uint32_t delayMs)
{
    return library() ? library()->i2cSetDelayMs(index, delayMs) : 0;
}

uint32_t TACTILE_VENDOR_CALL CH347StreamI2C(uint32_t index, uint32_t writeLength, const void *writeBuffer,
                                            uint32_t readLength, void *readBuffer)
{
    return library() ? library()->streamI2c(index, writeLength, writeBuffer, readLength, readBuffer) : 0;
}

uint32_t TACTILE_VENDOR_CALL CH347GPIO_Set(uint32_t index, uint8_t enable, uint8_t direction, uint8_t data)
{
    return library() ? library()->gpioSet(index, enable, direction, data) : 0;
}

uint32_t TACTILE_VENDOR_CALL CH347GPIO_Get(uint32_t index, uint8_t *direction, uint8_t *data)
{
    if (!library())
        return 0;
    uint32_t directions = 0;
    uint32_t levels = 0;
    const uint32_t result = library()->gpioGet(index, &directions, &levels);
    *direction = static_cast<uint8_t>(directions);
    *data = static_cast<uint8_t>(levels);
    return result;
}
