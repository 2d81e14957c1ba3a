#pragma once

#include "sim/SimBridge.h"

#include <cstdint>

/// A CH347 bridge: whole transfers, which fail when nobody acknowledges the address, and eight pins, of which
/// pin 0 is wired to the reset input of the multiplexer.
class SimCh347 : public SimBridge
{
public:
    /// The number stands in the device id text and is below 65535.
    SimCh347(std::shared_ptr<SimI2cBus> bus, int number);

    struct BusMode
    {
        uint32_t stretch = 0;
        uint8_t driver = 0;
    };
    BusMode busMode() const;

    // The side of the vendor library.

    /// The first byte written is the address byte. With both lengths set the read follows after a repeated
    /// start.
    bool transfer(const QByteArray &written, int readLength, QByteArray *received);
    bool setStretch(uint32_t on);
    bool setDriverMode(uint8_t mode);
    bool setPins(uint8_t enable, uint8_t direction, uint8_t data);
    bool pins(uint8_t *direction, uint8_t *data) const;

protected:
    void powerUp() override;

private:
    bool sendAll(const QByteArray &bytes);
    bool receiveAll(int count, QByteArray *received);

    BusMode m_mode;
    uint8_t m_directions = 0;
    uint8_t m_outputs = 0;
};
