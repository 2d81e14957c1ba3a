#include "engine/SensorBus.h"

#include "protocol/frame_layout.h"

#include "link/SensorLink.h"
#include "link/pca9548.h"

#include <QCoreApplication>
#include <QDebug>
#include <QThread>

#include <array>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// An absent multiplexer reads as more than this.
constexpr uint8_t kHighestIdleSelection = 1;
constexpr std::chrono::milliseconds kPass = 1ms;

void dropUntilSync(QByteArray &received)
{
    const int syncAt = received.indexOf(static_cast<char>(kResponseSync1));
    received.remove(0, syncAt < 0 ? received.size() : syncAt);
}

} // namespace

Waits realWaits()
{
    return {[](std::chrono::milliseconds duration) {
                QThread::msleep(static_cast<unsigned long>(duration.count()));
            },
            [] { QCoreApplication::processEvents(); }};
}

SensorBus::SensorBus(SensorLink &link, Waits waits)
    : m_link(link)
    , m_waits(std::move(waits))
{}

bool SensorBus::isSerial() const
{
    return !m_link.isBridge();
}

void SensorBus::setPcaState(uint8_t mask)
{
    if (m_pcaFind && m_link.isBridge())
        m_link.write(kPca9548Address, &mask, 1);
}

void SensorBus::probeMultiplexer()
{
    setPcaState(0);
    uint8_t state = 0;
    m_link.read(kPca9548Address, &state, 1);
    m_pcaFind = state <= kHighestIdleSelection;
    qDebug("%s", m_pcaFind ? "find pca" : "not find pca");
}

int SensorBus::write(uint8_t address, const QByteArray &frame)
{
    return m_link.write(address, frame);
}

int SensorBus::read(uint8_t address, uint8_t *buffer, int length)
{
    return m_link.read(address, buffer, length);
}

void SensorBus::poll(uint8_t address)
{
    const std::array<uint8_t, 2> pair = {address, static_cast<uint8_t>(address ^ 0xFF)};
    m_link.write(address, pair.data(), static_cast<int>(pair.size()));
}

SensorBus::Collected SensorBus::collect(QByteArray &received, int enough, int passes, SleepOrder order)
{
    for (int pass = 1; pass <= passes && m_link.isOpen(); ++pass) {
        m_waits.deliverEvents();
        if (m_tickIsVoid)
            break;
        if (order == SleepOrder::BeforeTaking)
            sleep(kPass);
        m_link.takeReceived(received);
        dropUntilSync(received);
        if (received.size() >= enough)
            return {Outcome::Done, pass};
        if (order == SleepOrder::AfterTaking)
            sleep(kPass);
    }
    return {m_tickIsVoid ? Outcome::Void : Outcome::Failed, 0};
}
