#include "link/providers/libusb/ch341_stream.h"

#include <algorithm>

namespace {

constexpr uint8_t kI2cStream = 0xAA;
constexpr uint8_t kEnd = 0x00;
constexpr uint8_t kCommandMask = 0xC0;
constexpr uint8_t kCountMask = 0x3F;
constexpr uint8_t kSend = 0x80;
constexpr uint8_t kReceive = 0xC0;

/// A count of 0 stands for one byte: sent, with its acknowledge bit reported, or received without an
/// acknowledge.
size_t bytesOf(uint8_t command)
{
    return std::max<size_t>(command & kCountMask, 1);
}

size_t answerSizeOfSegment(const uint8_t *segment, size_t length)
{
    size_t answered = 0;
    if (segment[0] != kI2cStream)
        return answered;
    for (size_t i = 1; i < length && segment[i] != kEnd; ++i) {
        const uint8_t command = segment[i];
        if ((command & kCommandMask) == kReceive) {
            answered += bytesOf(command);
        } else if ((command & kCommandMask) == kSend) {
            answered += command == kSend ? 1 : 0;
            i += bytesOf(command);
        }
    }
    return answered;
}

} // namespace

std::vector<size_t> ch341AnswerSizes(const uint8_t *stream, size_t length)
{
    std::vector<size_t> sizes;
    for (size_t offset = 0; offset < length; offset += kCh341PacketSize) {
        const size_t segmentLength = std::min(kCh341PacketSize, length - offset);
        const size_t answered = answerSizeOfSegment(stream + offset, segmentLength);
        if (answered != 0)
            sizes.push_back(answered);
    }
    return sizes;
}
