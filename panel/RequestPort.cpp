#include "panel/RequestPort.h"

#include "protocol/class_sensorCmd.h"

#include <utility>

RequestPort::RequestPort(Send send)
    : m_send(std::move(send))
{}

void RequestPort::open(uint8_t frameAddress, int channelCount)
{
    m_frameAddress = frameAddress;
    m_channelCount = channelCount;
    m_open = true;
}

void RequestPort::close()
{
    m_open = false;
    forgetChannels();
}

void RequestPort::request(Command command, const RequestPayload &payload, uint16_t rspLen)
{
    leave(requestFrame(m_frameAddress, static_cast<uint8_t>(command), payload), rspLen);
}

void RequestPort::request(Command command, const RequestPayload &payload)
{
    request(command, payload, class_sensorCmd::getRspLen(static_cast<uint8_t>(command)));
}

void RequestPort::requestPerChannel(Command command, int bytesPerChannel)
{
    request(command, {}, static_cast<uint16_t>(bytesPerChannel * m_channelCount + kFrameOverhead));
}

void RequestPort::longRequest(Command command, const QByteArray &payload)
{
    const auto code = static_cast<uint8_t>(command);
    leave(longRequestFrame(m_frameAddress, code, payload), class_sensorCmd::getRspLen(code));
}

void RequestPort::leave(const QByteArray &frame, uint16_t rspLen)
{
    if (m_open)
        m_send(frame, rspLen);
}
