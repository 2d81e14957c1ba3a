#include "link/providers/libusb/ch341_stream.h"
#include "link/providers/libusb/ch347_stream.h"
#include "tests/fuzz/fuzz_inputs.h"

#include <numeric>

void fuzzPacket(const uint8_t *input, std::size_t size)
{
    const std::vector<std::size_t> answers = ch341AnswerSizes(input, size);
    fuzzCheck(answers.size() <= size / kCh341PacketSize + 1, "an answer to each packet at most");
    const std::size_t all = std::accumulate(answers.begin(), answers.end(), std::size_t{0});
    fuzzCheck(all <= size * 63, "63 bytes to each command at most");

    if (size < 4)
        return;
    // The packets of a chip at full speed, at high speed, and anything in between.
    const std::size_t limit = 16 + input[0] * 2U;
    const std::size_t toReceive = (input[1] * 256U + input[2]) % 1200;
    const std::vector<Ch347Packet> packets = ch347Transfer(input + 3, size - 3, toReceive, limit);
    std::size_t received = 0;
    for (const Ch347Packet &packet : packets) {
        fuzzCheck(packet.stream.size() <= limit && packet.answerSize() <= limit,
                  "packets within their limit");
        received += packet.received;
    }
    fuzzCheck(received == toReceive, "what is asked for is received");
}
