#include "update/reset_command.h"

#include "protocol/command.h"
#include "protocol/frames.h"

QByteArray defaultResetCommand()
{
    return requestFrame(0, static_cast<uint8_t>(Command::Reset));
}

void addressResetCommand(QByteArray &frame, uint8_t address)
{
    if (frame.size() < kRequestLength)
        return;
    frame[kAddressAt] = static_cast<char>(address);
    sealFrame(reinterpret_cast<uint8_t *>(frame.data()), kRequestLength);
}
