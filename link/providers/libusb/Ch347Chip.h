#pragma once

#include "link/providers/libusb/UsbBridge.h"

#include <mutex>

struct Ch347Packet;

/// An open CH347. Operations return true on success; each is a whole, whichever threads call.
class Ch347Chip
{
public:
    static constexpr BridgeFamily kFamily = BridgeFamily::Ch347;

    explicit Ch347Chip(std::unique_ptr<UsbBridge> usb);

    libusb_device *device() const { return m_usb->device(); }

    /// To be called once, before anything else. False, with words in the log, when the chip does not answer,
    /// even after it was reset as a USB device.
    bool start();

    /// I2C clock, mode 0 to 3.
    bool setSpeed(uint8_t mode);

    /// One I2C transfer, see ch347Transfer(). False also when a byte was not acknowledged; the bus is free in
    /// any case.
    bool transfer(const uint8_t *toSend, size_t sendCount, uint8_t *buffer, size_t receiveCount);

    /// One bit a pin; a direction bit of 1 is an output. Pins that are not enabled are left alone.
    bool setPins(uint8_t enable, uint8_t direction, uint8_t levels);
    bool getPins(uint8_t &direction, uint8_t &levels);

private:
    using Pins = uint8_t[8];

    bool isReady();
    bool exchangePins(const Pins &request, Pins &answer, std::chrono::milliseconds limit);
    bool exchangePacket(const Ch347Packet &packet, uint8_t *buffer);
    bool receiveAnswer(size_t size);
    size_t roundedUp(size_t size) const;

    std::mutex m_mutex; // one operation at a time on the bridge
    std::unique_ptr<UsbBridge> m_usb;
    std::vector<uint8_t> m_answer;
};
