#pragma once

#include "link/SensorLink.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>

/// The link of the interface that is chosen on the page, or none. Without one everything is a failure:
/// nothing is written, and a read brings nothing. What is read and written stands in the log.
class UpdateLink
{
public:
    /// Gives the link up that was chosen before. `wanted`: see SensorLink.
    SensorLink &choose(SensorLink::Kind kind, std::function<bool()> wanted);
    /// Gives the link up if it is of that kind.
    void release(SensorLink::Kind kind);
    void release() { m_link.reset(); }
    SensorLink *get() const { return m_link.get(); }
    bool isSerial() const { return m_link && !m_link->isBridge(); }

    bool open(const QString &device, unsigned baudRate);
    /// Deselects the channels of the multiplexer before.
    void close();
    /// False when the multiplexer does not confirm them.
    bool selectChannels(uint8_t mask);

    /// On the serial line address and length mean nothing: the whole frame is written, and all that has come
    /// is read.
    void write(uint8_t address, const QByteArray &frame, uint16_t length);
    void read(uint8_t address, QByteArray &received, uint16_t length);

private:
    std::unique_ptr<SensorLink> m_link;
};
