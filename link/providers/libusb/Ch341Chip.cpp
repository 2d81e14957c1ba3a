#include "link/providers/libusb/Ch341Chip.h"

#include "link/providers/libusb/ch341_stream.h"

#include <algorithm>
#include <array>

namespace {

constexpr uint8_t kI2cStream = 0xAA;
constexpr uint8_t kStop = 0x75;
constexpr uint8_t kSetSpeed = 0x60;
constexpr uint8_t kEnd = 0x00;
constexpr uint8_t kGetPins = 0xA0;
constexpr uint8_t kSetPins = 0xA1;
constexpr uint8_t kSetPinsTag = 0x6A;
constexpr uint32_t kFastestMode = 3;
constexpr int kPinAnswerSize = 6;

constexpr uint8_t byteOf(uint32_t word, unsigned byte)
{
    return static_cast<uint8_t>(word >> (8 * byte));
}

} // namespace

Ch341Chip::Ch341Chip(std::unique_ptr<UsbBridge> usb)
    : m_usb(std::move(usb))
{}

bool Ch341Chip::start()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    // Which speed the chip powers up with is not known.
    sendSpeed();
    return true;
}

bool Ch341Chip::isReady()
{
    return m_usb->isReady([this] {
        uint32_t ignored = 0;
        return queryPins(ignored, UsbBridge::kShortLimit);
    });
}

bool Ch341Chip::reset()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::array<uint8_t, 3> stop = {kI2cStream, kStop, kEnd};
    m_usb->send(stop.data(), stop.size());
    m_usb->drain();
    uint32_t status = 0;
    if (!queryPins(status, UsbBridge::kShortLimit) && !m_usb->reset())
        return false;
    return sendSpeed();
}

bool Ch341Chip::flush()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_usb->drain();
    return true;
}

bool Ch341Chip::setSpeed(uint32_t mode)
{
    if (mode > kFastestMode)
        return false;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_speedMode = static_cast<uint8_t>(mode);
    return isReady() && sendSpeed();
}

bool Ch341Chip::sendSpeed()
{
    const std::array<uint8_t, 3> stream = {kI2cStream, static_cast<uint8_t>(kSetSpeed | m_speedMode), kEnd};
    return m_usb->send(stream.data(), stream.size());
}

bool Ch341Chip::write(const uint8_t *stream, size_t length)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return isReady() && m_usb->send(stream, length);
}

size_t Ch341Chip::writeRead(const uint8_t *stream, size_t length, uint8_t *buffer, size_t capacity)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!isReady() || !m_usb->send(stream, length))
        return 0;
    size_t total = 0;
    for (const size_t size : ch341AnswerSizes(stream, length)) {
        const int taken = receiveAnswer(size, buffer + total, capacity - total);
        if (taken < 0)
            return 0;
        total += static_cast<size_t>(taken);
    }
    return total;
}

/// Takes one packet of the chip, no more than was asked for and than there is room for. Returns the count
/// taken, -1 when nothing came.
int Ch341Chip::receiveAnswer(size_t size, uint8_t *buffer, size_t capacity)
{
    std::array<uint8_t, kCh341PacketSize> packet;
    const int received = m_usb->receive(packet.data(), packet.size());
    if (received != static_cast<int>(size))
        m_usb->drain();
    if (received <= 0)
        return -1;
    const size_t taken = std::min({static_cast<size_t>(received), size, capacity});
    std::copy_n(packet.begin(), taken, buffer);
    return static_cast<int>(taken);
}

bool Ch341Chip::getPins(uint32_t &status)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return isReady() && queryPins(status);
}

bool Ch341Chip::queryPins(uint32_t &status, std::chrono::milliseconds limit)
{
    std::array<uint8_t, kCh341PacketSize> answer;
    if (!m_usb->send(&kGetPins, 1))
        return false;
    if (m_usb->receive(answer.data(), answer.size(), limit) != kPinAnswerSize) {
        m_usb->drain();
        return false;
    }
    status = answer[0] | static_cast<uint32_t>(answer[1]) << 8;
    return true;
}

bool Ch341Chip::setPins(uint8_t enable, uint32_t direction, uint32_t data)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::array<uint8_t, 11> command = {kSetPins,
                                             kSetPinsTag,
                                             enable,
                                             byteOf(data, 1),
                                             byteOf(direction, 1),
                                             byteOf(data, 0),
                                             byteOf(direction, 0),
                                             byteOf(data, 2),
                                             0,
                                             0,
                                             0};
    return isReady() && m_usb->send(command.data(), command.size());
}
