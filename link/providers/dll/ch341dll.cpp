#include "link/providers/ch341dll.h"

#include "link/providers/NotifyGate.h"
#include "link/providers/dll/VendorLibrary.h"
#include "link/providers/invalid_handle.h"

#include <optional>

namespace {

struct Operations
{
    decltype(&CH341OpenDevice) openDevice;
    decltype(&CH341CloseDevice) closeDevice;
    decltype(&CH341ResetDevice) resetDevice;
    decltype(&CH341FlushBuffer) flushBuffer;
    decltype(&CH341GetDeviceName) getDeviceName;
    decltype(&CH341SetDeviceNotify) setDeviceNotify;
    decltype(&CH341SetStream) setStream;
    decltype(&CH341WriteData) writeData;
    decltype(&CH341WriteRead) writeRead;
    decltype(&CH341GetInput) getInput;
    decltype(&CH341SetOutput) setOutput;
};

std::optional<Operations> loadOperations()
{
    VendorLibrary library(QStringLiteral("CH341DLL"));
    Operations operations = {};
    library.resolve(operations.openDevice, "CH341OpenDevice");
    library.resolve(operations.closeDevice, "CH341CloseDevice");
    library.resolve(operations.resetDevice, "CH341ResetDevice");
    library.resolve(operations.flushBuffer, "CH341FlushBuffer");
    library.resolve(operations.getDeviceName, "CH341GetDeviceName");
    library.resolve(operations.setDeviceNotify, "CH341SetDeviceNotify");
    library.resolve(operations.setStream, "CH341SetStream");
    library.resolve(operations.writeData, "CH341WriteData");
    library.resolve(operations.writeRead, "CH341WriteRead");
    library.resolve(operations.getInput, "CH341GetInput");
    library.resolve(operations.setOutput, "CH341SetOutput");
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

void *TACTILE_VENDOR_CALL CH341OpenDevice(uint32_t index)
{
    return library() ? library()->openDevice(index) : invalidHandle();
}

void TACTILE_VENDOR_CALL CH341CloseDevice(uint32_t index)
{
    if (library())
        library()->closeDevice(index);
}

uint32_t TACTILE_VENDOR_CALL CH341ResetDevice(uint32_t index)
{
    return library() ? library()->resetDevice(index) : 0;
}

uint32_t TACTILE_VENDOR_CALL CH341FlushBuffer(uint32_t index)
{
    return library() ? library()->flushBuffer(index) : 0;
}

const char *TACTILE_VENDOR_CALL CH341GetDeviceName(uint32_t index)
{
    return library() ? library()->getDeviceName(index) : nullptr;
}

uint32_t TACTILE_VENDOR_CALL CH341SetDeviceNotify(uint32_t index, const char *deviceId,
                                                  CH341NotifyRoutine routine)
{
    gate.set(routine);
    if (!library())
        return 0;
    return library()->setDeviceNotify(index, deviceId, routine != nullptr ? &passOn : nullptr);
}

uint32_t TACTILE_VENDOR_CALL CH341SetStream(uint32_t index, uint32_t mode)
{
    return library() ? library()->setStream(index, mode) : 0;
}

uint32_t TACTILE_VENDOR_CALL CH341WriteData(uint32_t index, const void *buffer, uint32_t *length)
{
    return library() ? library()->writeData(index, buffer, length) : 0;
}

uint32_t TACTILE_VENDOR_CALL CH341WriteRead(uint32_t index, uint32_t writeLength, const void *writeBuffer,
                                            uint32_t readStep, uint32_t readTimes, uint32_t *readLength,
                                            void *readBuffer)
{
    if (!library())
        return 0;
    return library()->writeRead(index, writeLength, writeBuffer, readStep, readTimes, readLength, readBuffer);
}

uint32_t TACTILE_VENDOR_CALL CH341GetInput(uint32_t index, uint32_t *status)
{
    return library() ? library()->getInput(index, status) : 0;
}

uint32_t TACTILE_VENDOR_CALL CH341SetOutput(uint32_t index, uint32_t enable, uint32_t direction,
                                            uint32_t data)
{
    return library() ? library()->setOutput(index, enable, direction, data) : 0;
}
