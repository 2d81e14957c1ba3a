#include "link/providers/ch341dll.h"

#include "link/providers/NotifyGate.h"
#include "link/providers/dll/VendorLibrary.h"

namespace {

class Ch341Library : public VendorLibrary
{
public:
    Ch341Library()
        : VendorLibrary(QStringLiteral("CH341DLL"))
    {
        warnWhenIncomplete();
    }

    VendorOperation<decltype(&CH341OpenDevice)> openDevice{*this, "CH341OpenDevice"};
    VendorOperation<decltype(&CH341CloseDevice)> closeDevice{*this, "CH341CloseDevice"};
    VendorOperation<decltype(&CH341ResetDevice)> resetDevice{*this, "CH341ResetDevice"};
    VendorOperation<decltype(&CH341FlushBuffer)> flushBuffer{*this, "CH341FlushBuffer"};
    VendorOperation<decltype(&CH341GetDeviceName)> getDeviceName{*this, "CH341GetDeviceName"};
    VendorOperation<decltype(&CH341SetDeviceNotify)> setDeviceNotify{*this, "CH341SetDeviceNotify"};
    VendorOperation<decltype(&CH341SetStream)> setStream{*this, "CH341SetStream"};
    VendorOperation<decltype(&CH341WriteData)> writeData{*this, "CH341WriteData"};
    VendorOperation<decltype(&CH341WriteRead)> writeRead{*this, "CH341WriteRead"};
    VendorOperation<decltype(&CH341GetInput)> getInput{*this, "CH341GetInput"};
    VendorOperation<decltype(&CH341SetOutput)> setOutput{*this, "CH341SetOutput"};
};

const Ch341Library &library()
{
    static const Ch341Library loaded;
    return loaded;
}

NotifyGate gate;

void TACTILE_VENDOR_CALL passOn(uint32_t status)
{
    gate.notify(status);
}

} // namespace

void *TACTILE_VENDOR_CALL CH341OpenDevice(uint32_t index)
{
    return library().openDevice(index);
}

void TACTILE_VENDOR_CALL CH341CloseDevice(uint32_t index)
{
    library().closeDevice(index);
}

uint32_t TACTILE_VENDOR_CALL CH341ResetDevice(uint32_t index)
{
    return library().resetDevice(index);
}

uint32_t TACTILE_VENDOR_CALL CH341FlushBuffer(uint32_t index)
{
    return library().flushBuffer(index);
}

const char *TACTILE_VENDOR_CALL CH341GetDeviceName(uint32_t index)
{
    return library().getDeviceName(index);
}

uint32_t TACTILE_VENDOR_CALL CH341SetDeviceNotify(uint32_t index, const char *deviceId,
                                                  CH341NotifyRoutine routine)
{
    gate.set(routine);
    return library().setDeviceNotify(index, deviceId, routine != nullptr ? &passOn : nullptr);
}

uint32_t TACTILE_VENDOR_CALL CH341SetStream(uint32_t index, uint32_t mode)
{
    return library().setStream(index, mode);
}

uint32_t TACTILE_VENDOR_CALL CH341WriteData(uint32_t index, const void *buffer, uint32_t *length)
{
    return library().writeData(index, buffer, length);
}

uint32_t TACTILE_VENDOR_CALL CH341WriteRead(uint32_t index, uint32_t writeLength, const void *writeBuffer,
                                            uint32_t readStep, uint32_t readTimes, uint32_t *readLength,
                                            void *readBuffer)
{
    return library().writeRead(index, writeLength, writeBuffer, readStep, readTimes, readLength, readBuffer);
}

uint32_t TACTILE_VENDOR_CALL CH341GetInput(uint32_t index, uint32_t *status)
{
    return library().getInput(index, status);
}

uint32_t TACTILE_VENDOR_CALL CH341SetOutput(uint32_t index, uint32_t enable, uint32_t direction,
                                            uint32_t data)
{
    return library().setOutput(index, enable, direction, data);
}
