#include "link/providers/libusb/Ch347Chip.h"

#include "link/providers/libusb/ch347_stream.h"

#include <QDebug>

#include <algorithm>
#include <array>

namespace {

constexpr uint8_t kI2cStream = 0xAA;
constexpr uint8_t kSetSpeed = 0x60;
constexpr uint8_t kEnd = 0x00;
constexpr uint8_t kAcknowledged = 0x01;

constexpr uint8_t kPinCommand = 0xCC;
constexpr uint8_t kPinCount = 8;
constexpr uint8_t kChangePin = 0xC0;
constexpr uint8_t kMakeOutput = 0x30;
constexpr uint8_t kMakeHigh = 0x08;
constexpr unsigned kClockPin = 3;
constexpr uint8_t kIsOutput = 0x80;
constexpr uint8_t kIsHigh = 0x40;

constexpr size_t kHighSpeedPacket = 512;
constexpr size_t kHighSpeedLimit = 510;
constexpr size_t kFullSpeedLimit = 60;

constexpr size_t kPinFrameSize = 11; ///< command, length in two bytes, one byte a pin

} // namespace

Ch347Chip::Ch347Chip(std::unique_ptr<UsbBridge> usb)
    : m_usb(std::move(usb))
{}

bool Ch347Chip::start()
{
    // The first answer after power-up can be rubbish, so the pins are asked for once without need. In one
    // mode there is need: the clock line of the bus shares its pin with them, and the pin has to be high
    // first.
    Pins request = {};
    if (productOf(m_usb->device()) == kCh347JtagProduct)
        request[kClockPin] = kChangePin | kMakeOutput | kMakeHigh;
    Pins ignored = {};
    const auto exchange = [&] { return exchangePins(request, ignored, UsbBridge::kShortLimit); };
    const std::lock_guard<std::mutex> lock(m_mutex);
    bool answers = exchange();
    answers = answers || exchange();
    if (answers)
        return true;
    m_usb->drain();
    if (m_usb->reset() && exchange())
        return true;
    qWarning("the bridge at %s does not answer", nodeOf(device()).c_str());
    return false;
}

bool Ch347Chip::isReady()
{
    return m_usb->isReady([this] {
        const Pins leaveAlone = {};
        Pins ignored = {};
        return exchangePins(leaveAlone, ignored, UsbBridge::kShortLimit);
    });
}

bool Ch347Chip::setSpeed(uint8_t mode)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::array<uint8_t, 3> stream = {kI2cStream, static_cast<uint8_t>(kSetSpeed | mode), kEnd};
    return isReady() && m_usb->send(stream.data(), stream.size());
}

bool Ch347Chip::transfer(const uint8_t *toSend, size_t sendCount, uint8_t *buffer, size_t receiveCount)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!isReady())
        return false;
    const size_t limit = m_usb->packetSize() >= kHighSpeedPacket ? kHighSpeedLimit : kFullSpeedLimit;
    const std::vector<Ch347Packet> packets = ch347Transfer(toSend, sendCount, receiveCount, limit);
    for (const Ch347Packet &packet : packets) {
        if (!exchangePacket(packet, buffer)) {
            if (&packet != &packets.back())
                exchangePacket(ch347StopPacket(), buffer);
            return false;
        }
        buffer += packet.received;
    }
    return true;
}

/// False when bytes stay out or one that was sent was not acknowledged; the buffer is written only when it is
/// true.
bool Ch347Chip::exchangePacket(const Ch347Packet &packet, uint8_t *buffer)
{
    if (!m_usb->send(packet.stream.data(), packet.stream.size()))
        return false;
    if (packet.answerSize() == 0)
        return true;
    if (!receiveAnswer(packet.answerSize()))
        return false;
    const auto dataBegin = m_answer.begin() + static_cast<std::ptrdiff_t>(packet.acknowledges);
    const auto isAcknowledge = [](uint8_t byte) { return byte == kAcknowledged; };
    if (!std::all_of(m_answer.begin(), dataBegin, isAcknowledge))
        return false;
    std::copy(dataBegin, m_answer.end(), buffer);
    return true;
}

/// Collects exactly size bytes in m_answer. Anything else is an answer out of step, of which nothing is kept.
bool Ch347Chip::receiveAnswer(size_t size)
{
    m_answer.clear();
    while (m_answer.size() < size) {
        const size_t before = m_answer.size();
        m_answer.resize(before + roundedUp(size - before));
        const int received = m_usb->receive(m_answer.data() + before, m_answer.size() - before);
        m_answer.resize(before + static_cast<size_t>(std::max(received, 0)));
        if (received <= 0)
            break;
    }
    if (m_answer.size() != size) {
        m_usb->drain();
        return false;
    }
    return true;
}

/// The bridge must be offered room for whole packets.
size_t Ch347Chip::roundedUp(size_t size) const
{
    const size_t packet = m_usb->packetSize();
    return (size + packet - 1) / packet * packet;
}

bool Ch347Chip::setPins(uint8_t enable, uint8_t direction, uint8_t levels)
{
    Pins request = {};
    for (unsigned pin = 0; pin < kPinCount; ++pin) {
        const unsigned bit = 1U << pin;
        if ((enable & bit) != 0)
            request[pin] = static_cast<uint8_t>(kChangePin | ((direction & bit) != 0 ? kMakeOutput : 0U) |
                                                ((levels & bit) != 0 ? kMakeHigh : 0U));
    }
    Pins ignored = {};
    const std::lock_guard<std::mutex> lock(m_mutex);
    return isReady() && exchangePins(request, ignored, UsbBridge::kTimeLimit);
}

bool Ch347Chip::getPins(uint8_t &direction, uint8_t &levels)
{
    const Pins leaveAlone = {};
    Pins answer = {};
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!isReady() || !exchangePins(leaveAlone, answer, UsbBridge::kTimeLimit))
            return false;
    }
    direction = 0;
    levels = 0;
    for (unsigned pin = 0; pin < kPinCount; ++pin) {
        direction = static_cast<uint8_t>(direction | ((answer[pin] & kIsOutput) != 0 ? 1U << pin : 0U));
        levels = static_cast<uint8_t>(levels | ((answer[pin] & kIsHigh) != 0 ? 1U << pin : 0U));
    }
    return true;
}

bool Ch347Chip::exchangePins(const Pins &request, Pins &answer, std::chrono::milliseconds limit)
{
    std::array<uint8_t, kPinFrameSize> frame = {kPinCommand, kPinCount, 0};
    std::copy(std::begin(request), std::end(request), frame.begin() + 3);
    if (!m_usb->send(frame.data(), frame.size()))
        return false;
    std::vector<uint8_t> received(m_usb->packetSize());
    const int size = m_usb->receive(received.data(), received.size(), limit);
    if (size != static_cast<int>(kPinFrameSize) || received[0] != kPinCommand) {
        m_usb->drain();
        return false;
    }
    std::copy_n(received.begin() + 3, kPinCount, std::begin(answer));
    return true;
}
