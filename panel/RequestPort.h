#pragma once

#include "protocol/command.h"
#include "protocol/frames.h"

#include <QByteArray>

#include <cstdint>
#include <functional>

/// Where all requests of one panel leave, as finished frames.
///
/// A closed port drops what it is asked for: without a model the frame address is unknown, and the general
/// address would command every sensor on the line.
class RequestPort
{
public:
    /// frame: a whole request; rspLen as in cmd_ts.
    using Send = std::function<void(const QByteArray &frame, uint16_t rspLen)>;

    explicit RequestPort(Send send);

    /// From now on requests leave. frameAddress: byte 2 of each, as the sensor gave it in its sample frame;
    /// channelCount: channels of its model.
    void open(uint8_t frameAddress, int channelCount);
    void close();
    /// The sensor has gone: no channels any more.
    void forgetChannels() { m_channelCount = 0; }
    int channelCount() const { return m_channelCount; }

    void request(Command command, const RequestPayload &payload, uint16_t rspLen);
    /// With the catalogue's response length.
    void request(Command command, const RequestPayload &payload = {});
    /// For a response of so many bytes a channel.
    void requestPerChannel(Command command, int bytesPerChannel);
    /// A frame of another length than the usual.
    void longRequest(Command command, const QByteArray &payload);

private:
    void leave(const QByteArray &frame, uint16_t rspLen);

    Send m_send;
    uint8_t m_frameAddress = 0;
    int m_channelCount = 0;
    bool m_open = true;
};
