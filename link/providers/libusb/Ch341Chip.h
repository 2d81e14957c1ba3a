#pragma once

#include "link/providers/libusb/UsbBridge.h"

#include <atomic>
#include <mutex>

/// An open CH341. Operations return true on success; each is a whole, whichever threads call.
class Ch341Chip
{
public:
    static constexpr BridgeFamily kFamily = BridgeFamily::Ch341;

    explicit Ch341Chip(std::unique_ptr<UsbBridge> usb);

    libusb_device *device() const { return m_usb->device(); }

    /// To be called once, before anything else. Always true: reset() deals with a chip that does not answer.
    bool start();

    /// Ends whatever transfer the chip is in. A chip that does not answer afterwards is reset as a USB
    /// device. After a failure the bridge has to be opened anew.
    bool reset();
    bool flush();

    /// I2C clock, mode 0 to 3.
    bool setSpeed(uint32_t mode);
    uint32_t speedMode() const { return m_speedMode; }

    bool write(const uint8_t *stream, size_t length);
    /// Sends a stream and collects what it reads, at most capacity bytes. Returns the count, 0 when an answer
    /// stayed out.
    size_t writeRead(const uint8_t *stream, size_t length, uint8_t *buffer, size_t capacity);

    /// Levels of the pins, bits 15..0 of the status word.
    bool getPins(uint32_t &status);
    bool setPins(uint8_t enable, uint32_t direction, uint32_t data);

private:
    bool sendSpeed();
    bool isReady();
    bool queryPins(uint32_t &status, std::chrono::milliseconds limit = UsbBridge::kTimeLimit);
    int receiveAnswer(size_t size, uint8_t *buffer, size_t capacity);

    std::mutex m_mutex; // one operation at a time on the bridge
    std::unique_ptr<UsbBridge> m_usb;
    std::atomic<uint8_t> m_speedMode{1};
};
