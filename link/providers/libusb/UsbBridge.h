#pragma once

#include "link/providers/libusb/usb_bridges.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>

/// A bridge that is open and claimed: bytes out, bytes in, each within a finite time. A transfer that the
/// bridge refuses fails, and the next one finds the way free again. Not thread-safe.
class UsbBridge
{
public:
    /// Null when the bridge cannot be had; the log then says why. A kernel driver that holds it is detached
    /// and gets it back when the bridge is closed.
    static std::unique_ptr<UsbBridge> open(libusb_device *device, BridgeFamily family);
    ~UsbBridge();
    UsbBridge(const UsbBridge &) = delete;
    UsbBridge &operator=(const UsbBridge &) = delete;

    libusb_device *device() const { return libusb_get_device(m_handle); }
    /// Longest packet that the bridge sends, in bytes; never 0.
    size_t packetSize() const { return m_packetSize; }

    /// To be asked before every operation of a chip, which fails when this is false. A bridge that let a time
    /// limit pass is spoken to again only when it passes a trial, which is made now and then; in between, and
    /// when it is gone, the answer takes a millisecond, so that nobody who polls it spins.
    bool isReady(const std::function<bool()> &passesTrial);

    /// True when all bytes have gone out.
    bool send(const uint8_t *data, size_t length);

    /// Waits for bytes of the bridge, up to one full packet or to capacity, which has to be a multiple of
    /// packetSize(). Returns the count, or -1 when nothing came in time or the bridge is gone.
    int receive(uint8_t *buffer, size_t capacity, std::chrono::milliseconds limit = kTimeLimit);

    /// Throws away what the bridge still has to say.
    void drain();

    /// Makes the bridge start afresh as if it had been plugged in. On failure it may have been taken for a
    /// new one, which leaves this one dead.
    bool reset();

    static constexpr std::chrono::milliseconds kTimeLimit{1000};
    /// For the answer to a question that needs no work of the bridge.
    static constexpr std::chrono::milliseconds kShortLimit{250};

private:
    enum class Health {
        Good,
        Silent, ///< a time limit has passed, and nothing has been heard since
        Gone,
    };

    UsbBridge(libusb_device_handle *handle, int interfaceNumber, BridgeEndpoints endpoints,
              size_t packetSize);
    int transfer(uint8_t endpoint, uint8_t *data, size_t length, std::chrono::milliseconds limit,
                 int &transferred);
    void noteSilence(int result);

    libusb_device_handle *m_handle;
    int m_interface;
    BridgeEndpoints m_endpoints;
    size_t m_packetSize;
    Health m_health = Health::Good;
    std::chrono::steady_clock::time_point m_nextTrial;
};
