#include "link/providers/ch347dll.h"

#include "link/providers/NotifyGate.h"
#include "link/providers/dll/VendorLibrary.h"

namespace {

/// Integers of the library have 32 bits, also where fewer would do and ours are shorter.
class Ch347Library : public VendorLibrary
{
public:
    Ch347Library()
        : VendorLibrary(QStringLiteral("CH347DLL"))
    {
        warnWhenIncomplete();
    }

    VendorOperation<decltype(&CH347OpenDevice)> openDevice{*this, "CH347OpenDevice"};
    VendorOperation<decltype(&CH347CloseDevice)> closeDevice{*this, "CH347CloseDevice"};
    VendorOperation<decltype(&CH347GetDeviceInfor)> getDeviceInfor{*this, "CH347GetDeviceInfor"};
    VendorOperation<decltype(&CH347SetDeviceNotify)> setDeviceNotify{*this, "CH347SetDeviceNotify"};
    VendorOperation<decltype(&CH347I2C_Set)> i2cSet{*this, "CH347I2C_Set"};
    VendorOperation<decltype(&CH347I2C_SetStretch)> i2cSetStretch{*this, "CH347I2C_SetStretch"};
    VendorOperation<uint32_t(TACTILE_VENDOR_CALL *)(uint32_t index, uint32_t mode)> i2cSetDriverMode{
        *this, "CH347I2C_SetDriverMode"};
    VendorOperation<decltype(&CH347I2C_SetDelaymS)> i2cSetDelayMs{*this, "CH347I2C_SetDelaymS"};
    VendorOperation<decltype(&CH347StreamI2C)> streamI2c{*this, "CH347StreamI2C"};
    VendorOperation<uint32_t(TACTILE_VENDOR_CALL *)(uint32_t index, uint32_t enable, uint32_t direction,
                                                    uint32_t data)>
        gpioSet{*this, "CH347GPIO_Set"};
    VendorOperation<uint32_t(TACTILE_VENDOR_CALL *)(uint32_t index, uint32_t *direction, uint32_t *data)>
        gpioGet{*this, "CH347GPIO_Get"};
};

const Ch347Library &library()
{
    static const Ch347Library loaded;
    return loaded;
}

NotifyGate gate;

void TACTILE_VENDOR_CALL passOn(uint32_t status)
{
    gate.notify(status);
}

} // namespace

void *TACTILE_VENDOR_CALL CH347OpenDevice(uint32_t index)
{
    return library().openDevice(index);
}

uint32_t TACTILE_VENDOR_CALL CH347CloseDevice(uint32_t index)
{
    return library().closeDevice(index);
}

uint32_t TACTILE_VENDOR_CALL CH347GetDeviceInfor(uint32_t index, CH347DeviceInfo *info)
{
    return library().getDeviceInfor(index, info);
}

uint32_t TACTILE_VENDOR_CALL CH347SetDeviceNotify(uint32_t index, const char *deviceId,
                                                  CH347NotifyRoutine routine)
{
    gate.set(routine);
    return library().setDeviceNotify(index, deviceId, routine != nullptr ? &passOn : nullptr);
}

uint32_t TACTILE_VENDOR_CALL CH347I2C_Set(uint32_t index, uint32_t mode)
{
    return library().i2cSet(index, mode);
}

uint32_t TACTILE_VENDOR_CALL CH347I2C_SetStretch(uint32_t index, uint32_t on)
{
    return library().i2cSetStretch(index, on);
}

uint32_t TACTILE_VENDOR_CALL CH347I2C_SetDriverMode(uint32_t index, uint8_t mode)
{
    return library().i2cSetDriverMode(index, mode);
}

uint32_t TACTILE_VENDOR_CALL CH347I2C_SetDelaymS(uint32_t index, uint32_t delayMs)
{
    return library().i2cSetDelayMs(index, delayMs);
}

uint32_t TACTILE_VENDOR_CALL CH347StreamI2C(uint32_t index, uint32_t writeLength, const void *writeBuffer,
                                            uint32_t readLength, void *readBuffer)
{
    return library().streamI2c(index, writeLength, writeBuffer, readLength, readBuffer);
}

uint32_t TACTILE_VENDOR_CALL CH347GPIO_Set(uint32_t index, uint8_t enable, uint8_t direction, uint8_t data)
{
    return library().gpioSet(index, enable, direction, data);
}

uint32_t TACTILE_VENDOR_CALL CH347GPIO_Get(uint32_t index, uint8_t *direction, uint8_t *data)
{
    if (!library().isComplete())
        return 0;
    uint32_t directions = 0;
    uint32_t levels = 0;
    const uint32_t result = library().gpioGet(index, &directions, &levels);
    *direction = static_cast<uint8_t>(directions);
    *data = static_cast<uint8_t>(levels);
    return result;
}
