#pragma once

#include "link/providers/vendor_call.h"

#include <cstdint>

/// The operations of the CH347 bridge, all addressed by device index. Only declared here: the program that
/// links decides who provides them. Operations with a result of uint32_t return non-zero on success.

using CH347NotifyRoutine = void(TACTILE_VENDOR_CALL *)(uint32_t status);

/// Room for the device information record, whose layout is the library's own. Of its content only the device
/// id text counts: the zero-terminated text that holds a '#'.
struct CH347DeviceInfo
{
    char bytes[1024];
};

extern "C" {

/// Returns a handle; the all-ones pointer means failure.
void *TACTILE_VENDOR_CALL CH347OpenDevice(uint32_t index);
/// Bears an index that is not open.
uint32_t TACTILE_VENDOR_CALL CH347CloseDevice(uint32_t index);
/// Fills a record that the caller has zeroed. The device must be open.
uint32_t TACTILE_VENDOR_CALL CH347GetDeviceInfor(uint32_t index, CH347DeviceInfo *info);
uint32_t TACTILE_VENDOR_CALL CH347SetDeviceNotify(uint32_t index, const char *deviceId,
                                                  CH347NotifyRoutine routine);

/// I2C clock: mode 1 = 100 kHz, 2 = 400 kHz, 3 = 750 kHz.
uint32_t TACTILE_VENDOR_CALL CH347I2C_Set(uint32_t index, uint32_t mode);
uint32_t TACTILE_VENDOR_CALL CH347I2C_SetStretch(uint32_t index, uint32_t on);
uint32_t TACTILE_VENDOR_CALL CH347I2C_SetDriverMode(uint32_t index, uint8_t mode);
uint32_t TACTILE_VENDOR_CALL CH347I2C_SetDelaymS(uint32_t index, uint32_t delayMs);

/// One whole I2C transfer: start, the write bytes of which the first is the address byte, a repeated start
/// when both lengths are set, the reads, stop.
uint32_t TACTILE_VENDOR_CALL CH347StreamI2C(uint32_t index, uint32_t writeLength, const void *writeBuffer,
                                            uint32_t readLength, void *readBuffer);

/// One bit a pin; a direction bit of 1 is an output.
uint32_t TACTILE_VENDOR_CALL CH347GPIO_Set(uint32_t index, uint8_t enable, uint8_t direction, uint8_t data);
uint32_t TACTILE_VENDOR_CALL CH347GPIO_Get(uint32_t index, uint8_t *direction, uint8_t *data);

} // extern "C"
