#include "link/providers/libusb/ch347_stream.h"

#include <algorithm>

namespace {

constexpr uint8_t kI2cStream = 0xAA;
constexpr uint8_t kStart = 0x74;
constexpr uint8_t kStop = 0x75;
constexpr uint8_t kSend = 0x80;
constexpr uint8_t kReceive = 0xC0;
constexpr uint8_t kEnd = 0x00;
constexpr uint8_t kReadBit = 0x01;
constexpr size_t kLongestBlock = 63;

class TransferBuilder
{
public:
    explicit TransferBuilder(size_t sizeLimit)
        : m_sizeLimit(sizeLimit)
    {
        open();
    }

    void start() { appendCommand(kStart); }
    void stop() { appendCommand(kStop); }

    void send(const uint8_t *bytes, size_t count)
    {
        while (count != 0) {
            needRoom(2, 1);
            const size_t block = std::min({count, kLongestBlock, streamRoom() - 1, answerRoom()});
            appendCommand(static_cast<uint8_t>(kSend + block));
            stream().insert(stream().end(), bytes, bytes + block);
            current().acknowledges += block;
            bytes += block;
            count -= block;
        }
    }

    /// All bytes are acknowledged but the last, which tells the device that no more are wanted.
    void receive(size_t count)
    {
        for (size_t left = count - 1; left != 0;) {
            needRoom(1, 1);
            const size_t block = std::min({left, kLongestBlock, answerRoom()});
            appendReceive(static_cast<uint8_t>(kReceive + block), block);
            left -= block;
        }
        needRoom(1, 1);
        appendReceive(kReceive, 1);
    }

    std::vector<Ch347Packet> finish()
    {
        stream().push_back(kEnd);
        return std::move(m_packets);
    }

private:
    Ch347Packet &current() { return m_packets.back(); }
    std::vector<uint8_t> &stream() { return m_packets.back().stream; }
    /// One byte of the stream is kept for the end mark.
    size_t streamRoom() { return m_sizeLimit - 1 - stream().size(); }
    size_t answerRoom() { return m_sizeLimit - current().answerSize(); }

    void open()
    {
        m_packets.emplace_back();
        stream().push_back(kI2cStream);
    }

    void needRoom(size_t inStream, size_t inAnswer)
    {
        if (streamRoom() >= inStream && answerRoom() >= inAnswer)
            return;
        stream().push_back(kEnd);
        open();
    }

    void appendCommand(uint8_t command)
    {
        needRoom(1, 0);
        stream().push_back(command);
    }

    void appendReceive(uint8_t command, size_t count)
    {
        appendCommand(command);
        current().received += count;
    }

    size_t m_sizeLimit;
    std::vector<Ch347Packet> m_packets;
};

} // namespace

std::vector<Ch347Packet> ch347Transfer(const uint8_t *toSend, size_t sendCount, size_t receiveCount,
                                       size_t sizeLimit)
{
    TransferBuilder builder(sizeLimit);
    builder.start();
    const uint8_t readAddress = toSend[0] | kReadBit;
    if (receiveCount == 0 || sendCount > 1)
        builder.send(toSend, sendCount);
    if (receiveCount != 0) {
        if (sendCount > 1)
            builder.start();
        builder.send(&readAddress, 1);
        builder.receive(receiveCount);
    }
    builder.stop();
    return builder.finish();
}

Ch347Packet ch347StopPacket()
{
    Ch347Packet packet;
    packet.stream = {kI2cStream, kStop, kEnd};
    return packet;
}
