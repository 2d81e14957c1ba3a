#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// One packet of a CH347 transfer and what the chip answers to it: a byte for each byte that was sent on the
/// bus, telling whether it was acknowledged, then the bytes that were received.
struct Ch347Packet
{
    std::vector<uint8_t> stream;
    size_t acknowledges = 0;
    size_t received = 0;

    size_t answerSize() const { return acknowledges + received; }
};

/// A whole I2C transfer in packets of which neither the stream nor the answer is longer than sizeLimit bytes:
/// start, the bytes of toSend of which the first is the address byte, a repeated start when bytes are to be
/// received after several sent ones, the reads, stop. With a single byte to send that byte addresses the
/// device for the read itself.
std::vector<Ch347Packet> ch347Transfer(const uint8_t *toSend, size_t sendCount, size_t receiveCount,
                                       size_t sizeLimit);

/// A packet that ends whatever transfer is on the bus. It is not answered.
Ch347Packet ch347StopPacket();
