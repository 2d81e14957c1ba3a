#pragma once

#include "link/providers/vendor_call.h"

#include <cstdint>

/// The operations of the CH341 bridge, all addressed by device index. Only declared here: the program that
/// links decides who provides them. Operations with a result of uint32_t return non-zero on success.

/// Called on a thread of the provider at every arrival and removal; status 0 means that a device was removed.
using CH341NotifyRoutine = void(TACTILE_VENDOR_CALL *)(uint32_t status);

extern "C" {

/// Returns a handle; the all-ones pointer means failure.
void *TACTILE_VENDOR_CALL CH341OpenDevice(uint32_t index);
/// Bears an index that is not open.
void TACTILE_VENDOR_CALL CH341CloseDevice(uint32_t index);
uint32_t TACTILE_VENDOR_CALL CH341ResetDevice(uint32_t index);
uint32_t TACTILE_VENDOR_CALL CH341FlushBuffer(uint32_t index);

/// Device path as text, or null when no device has that index. Works without opening. The text is valid until
/// the next call for the same index from the same thread. A provider that can does tell, inside the routine
/// of an arrival or removal, what was plugged in at that moment.
const char *TACTILE_VENDOR_CALL CH341GetDeviceName(uint32_t index);

/// Registers the routine, or removes it when null. After the removal has returned, the routine neither runs
/// nor will run, unless the removal was called from the routine itself.
uint32_t TACTILE_VENDOR_CALL CH341SetDeviceNotify(uint32_t index, const char *deviceId,
                                                  CH341NotifyRoutine routine);

/// I2C clock: mode 0 = 20 kHz, 1 = 100 kHz, 2 = 400 kHz, 3 = 750 kHz.
uint32_t TACTILE_VENDOR_CALL CH341SetStream(uint32_t index, uint32_t mode);

/// Sends one stream-command packet; on return *length holds the count sent.
uint32_t TACTILE_VENDOR_CALL CH341WriteData(uint32_t index, const void *buffer, uint32_t *length);

/// Sends one stream-command packet and collects what it reads, at most readStep x readTimes bytes; on return
/// *readLength holds the count read.
uint32_t TACTILE_VENDOR_CALL CH341WriteRead(uint32_t index, uint32_t writeLength, const void *writeBuffer,
                                            uint32_t readStep, uint32_t readTimes, uint32_t *readLength,
                                            void *readBuffer);

/// Pin status word: bits 7..0 are D7..D0, bit 10 is INT.
uint32_t TACTILE_VENDOR_CALL CH341GetInput(uint32_t index, uint32_t *status);

/// Sets pins. Bits of enable: 0 data 15..8 valid, 1 direction 15..8 valid, 2 data 7..0, 3 direction 7..0,
/// 4 data 23..16. A direction bit of 1 is an output.
uint32_t TACTILE_VENDOR_CALL CH341SetOutput(uint32_t index, uint32_t enable, uint32_t direction,
                                            uint32_t data);

} // extern "C"
