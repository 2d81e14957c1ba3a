#pragma once

#include "tests/link/usb/FakeUsbDevice.h"

#include <algorithm>

/// The two-wire bus behind a fake bridge, as the chip drives it.
class FakeTwoWireBus
{
public:
    virtual ~FakeTwoWireBus() = default;

    virtual void start() = 0;
    /// Returns whether the byte is acknowledged.
    virtual bool send(uint8_t byte) = 0;
    virtual uint8_t receive() = 0;
    virtual void stop() = 0;
    /// Level of the chip's pin that is wired to the multiplexer's reset input.
    virtual void setResetLevel(bool /*high*/) {}
};

/// A bus with one device: keeps what is written to it, delivers 0, 1, 2, … of every read.
class FakeI2cTarget : public FakeTwoWireBus
{
public:
    explicit FakeI2cTarget(uint8_t address)
        : m_address(address)
    {}

    void start() override
    {
        m_isAddressed = false;
        m_expectsAddress = true;
    }

    bool send(uint8_t byte) override
    {
        if (m_expectsAddress) {
            m_expectsAddress = false;
            m_isAddressed = byte >> 1 == m_address;
            m_isRead = (byte & 1) != 0;
            nextRead = 0;
            return m_isAddressed;
        }
        if (!m_isAddressed || written.size() >= acceptedBytes)
            return false;
        written.push_back(byte);
        return true;
    }

    uint8_t receive() override { return m_isAddressed && m_isRead ? nextRead++ : 0xFF; }

    void stop() override
    {
        m_isAddressed = false;
        ++stops;
    }

    Bytes written;
    size_t acceptedBytes = SIZE_MAX; ///< bytes after which the device acknowledges no more
    uint8_t nextRead = 0;
    int stops = 0;

private:
    uint8_t m_address;
    bool m_expectsAddress = false;
    bool m_isAddressed = false;
    bool m_isRead = false;
};

/// What the chips of both families do alike: they carry out a stream of commands on their two-wire bus.
class FakeBridgeChip : public FakeUsbChip
{
public:
    std::vector<Bytes> transfers;
    int speed = -1;
    FakeI2cTarget target{0x28};
    FakeTwoWireBus *bus = &target; ///< what hangs on the chip, unless something else is put there

protected:
    /// Bytes that the commands from begin to end give back.
    Bytes interpret(const Bytes &stream, size_t begin, size_t end)
    {
        Bytes answer;
        for (size_t i = begin; i < end && stream[i] != 0x00; ++i) {
            const uint8_t command = stream[i];
            const int count = std::max(command & 0x3F, 1);
            if (command == 0x74) {
                bus->start();
            } else if (command == 0x75) {
                bus->stop();
            } else if ((command & 0xFC) == 0x60) {
                speed = command & 3;
            } else if ((command & 0xC0) == 0x80) {
                for (int k = 0; k < count; ++k)
                    reportAcknowledge(command, bus->send(stream[++i]), answer);
            } else if ((command & 0xC0) == 0xC0) {
                std::generate_n(std::back_inserter(answer), count, [this] { return bus->receive(); });
            }
        }
        return answer;
    }

private:
    virtual void reportAcknowledge(uint8_t command, bool acknowledged, Bytes &answer) = 0;
};

/// A CH341 in the mode that offers the I2C bus.
class FakeCh341Chip : public FakeBridgeChip
{
public:
    uint16_t productId() const override { return 0x5512; }

    Bytes descriptors() const override
    {
        return {18,   1, 0x10, 0x01, 0xFF, 0,  2, 8,    0x86, 0x1A, 0x12, 0x55, 0x04, 0x03, 0,
                0,    0, 1,    9,    2,    39, 0, 1,    1,    0,    0x80, 0x30, 9,    4,    0,
                0,    3, 0xFF, 1,    2,    0,  7, 5,    0x82, 2,    32,   0,    0,    7,    5,
                0x02, 2, 32,   0,    0,    7,  5, 0x81, 3,    8,    0,    1};
    }

    void receive(const Bytes &transfer, std::deque<Bytes> &answers) override
    {
        transfers.push_back(transfer);
        if (transfer[0] == 0xA0)
            answers.push_back({0x12, 0x13, 0x14, 0x15, 0x16, 0x17});
        if (transfer[0] == 0xA1)
            bus->setResetLevel((transfer[3] & 0x04) != 0);
        for (size_t begin = 0; begin < transfer.size(); begin += 32) {
            if (transfer[begin] != 0xAA)
                continue;
            const Bytes answer = interpret(transfer, begin + 1, std::min(begin + 32, transfer.size()));
            if (!answer.empty())
                answers.push_back(answer);
        }
    }

private:
    void reportAcknowledge(uint8_t command, bool acknowledged, Bytes &answer) override
    {
        if (command == 0x80)
            answer.push_back(acknowledged ? 0x6F : 0xEF);
    }
};

/// A CH347 in a mode that offers the I2C bus.
class FakeCh347Chip : public FakeBridgeChip
{
public:
    /// The packet size is 512 at high speed and 64 at full speed.
    explicit FakeCh347Chip(uint16_t productId = 0x55DB, uint16_t packetSize = 512)
        : m_productId(productId)
        , m_packetSize(packetSize)
    {}

    uint16_t productId() const override { return m_productId; }

    /// Interface 0 stands for the chip's serial port, interface 2 is the one of the bridge.
    Bytes descriptors() const override
    {
        const auto productLow = static_cast<uint8_t>(m_productId);
        const auto sizeLow = static_cast<uint8_t>(m_packetSize);
        const auto sizeHigh = static_cast<uint8_t>(m_packetSize >> 8);
        return {18,   1,          0x00, 0x02, 0xEF,    2,        1, 64,   0x86,
                0x1A, productLow, 0x55, 0x41, 0x02,    0,        0, 0,    1,    //
                9,    2,          55,   0,    2,       1,        0, 0x80, 0x30, //
                9,    4,          0,    0,    2,       0x0A,     0, 0,    0,    //
                7,    5,          0x84, 2,    sizeLow, sizeHigh, 0,             //
                7,    5,          0x04, 2,    sizeLow, sizeHigh, 0,             //
                9,    4,          2,    0,    2,       0xFF,     0, 0,    0,    //
                7,    5,          0x86, 2,    sizeLow, sizeHigh, 0,             //
                7,    5,          0x06, 2,    sizeLow, sizeHigh, 0};
    }

    void receive(const Bytes &transfer, std::deque<Bytes> &answers) override
    {
        transfers.push_back(transfer);
        const Bytes answer =
            transfer[0] == 0xCC ? changePins(transfer) : interpret(transfer, 1, transfer.size());
        if (!answer.empty())
            answers.push_back(answer);
    }

private:
    void reportAcknowledge(uint8_t /*command*/, bool acknowledged, Bytes &answer) override
    {
        answer.push_back(acknowledged ? 0x01 : 0x00);
    }

    Bytes changePins(const Bytes &request)
    {
        Bytes answer = {0xCC, 0x08, 0x00};
        for (size_t pin = 0; pin < m_pins.size(); ++pin) {
            const uint8_t change = request[3 + pin];
            if ((change & 0xC0) == 0xC0)
                m_pins[pin] = static_cast<uint8_t>(((change & 0x30) == 0x30 ? 0x80 : 0) |
                                                   ((change & 0x08) != 0 ? 0x40 : 0));
            answer.push_back(m_pins[pin]);
        }
        bus->setResetLevel((m_pins[0] & 0x40) != 0);
        return answer;
    }

    uint16_t m_productId;
    uint16_t m_packetSize;
    Bytes m_pins = Bytes(8, 0x40); // as the chip reports them: bit 7 output, bit 6 level
};
