#include "update/UpdateLink.h"

#include "link/pca9548.h"

#include <QDebug>

#include <utility>

SensorLink &UpdateLink::choose(SensorLink::Kind kind, std::function<bool()> wanted)
{
    // The old one first: it may hold the very device that the new one is to list.
    m_link.reset();
    m_link = std::make_unique<SensorLink>(kind, nullptr, std::move(wanted));
    return *m_link;
}

void UpdateLink::release(SensorLink::Kind kind)
{
    if (m_link && m_link->kind() == kind)
        release();
}

bool UpdateLink::open(const QString &device, unsigned baudRate)
{
    return m_link && m_link->open(device, baudRate);
}

void UpdateLink::close()
{
    if (!m_link)
        return;
    m_link->pcaReset();
    m_link->close();
}

bool UpdateLink::selectChannels(uint8_t mask)
{
    uint8_t state = 0;
    if (m_link) {
        m_link->write(kPca9548Address, &mask, 1);
        m_link->read(kPca9548Address, &state, 1);
    }
    if (state != mask) {
        qDebug("state:%x", state);
        qDebug("%d", __LINE__);
    }
    return state == mask;
}

void UpdateLink::write(uint8_t address, const QByteArray &frame, uint16_t length)
{
    if (m_link)
        m_link->write(address, isSerial() ? frame : frame.left(length));
    qDebug("write:%d--%s", frame.size(), frame.toHex().constData());
}

void UpdateLink::read(uint8_t address, QByteArray &received, uint16_t length)
{
    if (isSerial()) {
        m_link->takeReceived(received);
    } else if (m_link) {
        QByteArray buffer(length, '\0');
        m_link->read(address, reinterpret_cast<uint8_t *>(buffer.data()), length);
        received.append(buffer);
    }
    qDebug("read:%d--%s", received.size(), received.toHex().constData());
}
