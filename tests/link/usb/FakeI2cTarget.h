#pragma once

#include "tests/link/usb/FakeUsbBus.h"

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
