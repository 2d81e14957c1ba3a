#pragma once

#include "sim/SimI2cBus.h"
#include "sim/SimUsbDevice.h"

#include <QByteArray>

#include <cstdint>
#include <memory>
#include <mutex>

/// What went over the USB cable of a bridge.
struct SimTraffic
{
    int packets = 0; ///< transfers of the vendor library
    int bytesOut = 0;
    int bytesIn = 0;
};

/// What both kinds of bridges do alike. All operations may be called from any thread.
class SimBridge : public SimUsbDevice
{
public:
    SimBridge(Family family, const QByteArray &path, std::shared_ptr<SimI2cBus> bus);

    SimI2cBus &bus() { return *m_bus; }
    SimTraffic traffic() const;

    /// After `goodOnes` more transfers, `times` of them fail without a trace on the bus.
    void failTransfers(int times = 1, int goodOnes = 0);
    /// The next `times` reads report one byte less than they should.
    void shortenReads(int times = 1);
    /// The cable is pulled when the bridge has handled that many more bytes of transfers.
    void pullOutAfter(int bytes);

    // The side of the vendor library.

    bool open();
    void close();
    bool isOpen() const;
    /// Modes 0 to 3: 20, 100, 400 and 750 kHz. False for any other.
    bool setClockMode(uint32_t mode);

protected:
    using Lock = std::unique_lock<std::mutex>;

    void powerUp() override;
    bool applyClockMode(uint32_t mode);
    /// Counts a transfer; false when it is one that is to fail.
    bool beginTransfer(int bytesOut);
    /// Waits for the bus and counts what came back.
    void endTransfer(QByteArray *received);
    /// Carries one byte over the cable; false when that was one too many.
    bool carryByte();
    /// True while the bridge is plugged in and opened.
    bool isUsable() const { return isPlugged() && m_open; }

    mutable std::mutex m_mutex; // guards what the bridges remember

private:
    const std::shared_ptr<SimI2cBus> m_bus;
    bool m_open = false;
    int m_goodTransfers = 0;
    int m_failures = 0;
    int m_shortReads = 0;
    int m_bytesUntilPulled = -1;
    SimTraffic m_traffic;
};
