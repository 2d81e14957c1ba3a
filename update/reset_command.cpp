#include "update/reset_command.h"

namespace {
constexpr int kFrameSize = 11;
constexpr int kAddressPos = 2;
constexpr int kSumPos = 9;
} // namespace

QByteArray defaultResetCommand()
{
    return QByteArray::fromHex("AA5500A10000000000A001");
}

void addressResetCommand(QByteArray &frame, uint8_t address)
{
    if (frame.size() < kFrameSize)
        return;
    frame[kAddressPos] = static_cast<char>(address);
    unsigned sum = 0;
    for (int i = 0; i < kSumPos; ++i)
        sum += static_cast<unsigned char>(frame.at(i));
    frame[kSumPos] = static_cast<char>(sum & 0xFFU);
    frame[kSumPos + 1] = static_cast<char>(sum >> 8U);
}
