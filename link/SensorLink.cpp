#include "link/SensorLink.h"

#include "link/SerialPortPoller.h"
#include "link/class_ch341.h"
#include "link/class_ch347.h"
#include "link/class_uart.h"
#include "link/device_ids.h"
#include "link/pca9548.h"

#include <algorithm>
#include <array>
#include <type_traits>
#include <utility>

namespace {

template<typename... Actions>
struct ByKind : Actions...
{
    using Actions::operator()...;
};
template<typename... Actions>
ByKind(Actions...) -> ByKind<Actions...>;

/// std::visit of a variant that is never empty, and so never throws.
template<typename Action, typename Links>
auto applyTo(Action action, const Links &links)
{
    if (auto *const *uart = std::get_if<0>(&links); uart != nullptr)
        return action(*uart);
    if (auto *const *ch341 = std::get_if<1>(&links); ch341 != nullptr)
        return action(*ch341);
    return action(*std::get_if<2>(&links));
}

template<typename Link>
constexpr bool isSerial = std::is_same_v<Link, class_uart>;

void applySpeed(class_ch341 &bridge, BusSpeed speed)
{
    bridge.setIICSpeed(static_cast<ch341_iic_speed_te>(speed));
}

void applySpeed(class_ch347 &bridge, BusSpeed speed)
{
    bridge.setIICSpeed(static_cast<ch347_iic_speed_te>(speed));
}

void setResetPin(class_ch341 &bridge, uint8_t level)
{
    bridge.setInt(level);
}

void setResetPin(class_ch347 &bridge, uint8_t level)
{
    bridge.setGPIO(ch347_gpio_te::Pin0, ch347_gpio_en_te::Enable, ch347_gpio_dir_te::Output, level);
}

} // namespace

SensorLink::SensorLink(Kind kind, QObject *parent, std::function<bool()> wanted)
    : QObject(parent)
{
    switch (kind) {
    case Kind::Serial:
        makeSerial(std::move(wanted));
        break;
    case Kind::Ch341:
        makeBridge<class_ch341>(std::move(wanted));
        break;
    case Kind::Ch347:
        makeBridge<class_ch347>(std::move(wanted));
        break;
    }
}

SensorLink::~SensorLink()
{
    applyTo([this](auto *link) { link->disconnect(this); }, m_link);
    if (isOpen())
        close();
}

void SensorLink::makeSerial(std::function<bool()> wanted)
{
    auto *uart = new class_uart(this);
    m_link = uart;
    connect(uart, &class_uart::si_openSuccess, this, &SensorLink::opened);
    connect(uart, &class_uart::si_close, this, &SensorLink::closed);
    const auto *poller = new SerialPortPoller(uart, std::move(wanted));
    connect(poller, &SerialPortPoller::portsListed, this, &SensorLink::devicesListed);
}

template<typename Bridge>
void SensorLink::makeBridge(std::function<bool()> wanted)
{
    auto *bridge = new Bridge(this);
    m_link = bridge;
    connect(bridge, &Bridge::si_connected, this, &SensorLink::opened);
    connect(bridge, &Bridge::si_disconnected, this, &SensorLink::closed);
    connect(bridge, &Bridge::si_updateList, this, [this, wanted](const QVector<uint16_t> &ids) {
        if (!wanted || wanted())
            Q_EMIT devicesListed(deviceIdTexts(ids));
    });
}

template<typename Action>
void SensorLink::onBridge(Action action)
{
    applyTo(
        [&action](auto *link) {
            if constexpr (!isSerial<std::remove_pointer_t<decltype(link)>>)
                action(*link);
        },
        m_link);
}

SensorLink::Kind SensorLink::kind() const
{
    return static_cast<Kind>(m_link.index());
}

const char *SensorLink::name() const
{
    constexpr std::array<const char *, 3> names = {"uart", "ch341", "ch347"};
    return names.at(m_link.index());
}

bool SensorLink::open(const QString &device, unsigned baudRate)
{
    return applyTo(ByKind{[&](class_uart *uart) { return uart->open(device, baudRate); },
                          [&](auto *bridge) { return bridge->open(static_cast<uint16_t>(device.toUInt())); }},
                   m_link);
}

void SensorLink::close()
{
    applyTo([](auto *link) { link->close(); }, m_link);
}

bool SensorLink::isOpen() const
{
    return applyTo(ByKind{[](const class_uart *uart) { return uart->port->isOpen(); },
                          [](const auto *bridge) { return bridge->isOpen(); }},
                   m_link);
}

void SensorLink::scan()
{
    applyTo(
        ByKind{[](class_uart *uart) { uart->scan(false); }, [](auto *bridge) { bridge->getScanSignal(); }},
        m_link);
}

int SensorLink::write(uint8_t address, const uint8_t *data, int length)
{
    if (QSerialPort *serial = port(); serial != nullptr) {
        const bool canWrite = serial->isOpen();
        return canWrite ? static_cast<int>(serial->write(reinterpret_cast<const char *>(data), length)) : 0;
    }
    int written = 0;
    onBridge([&](auto &bridge) { written = bridge.write(address, data, static_cast<uint16_t>(length)); });
    return written;
}

int SensorLink::write(uint8_t address, const QByteArray &data)
{
    return write(address, reinterpret_cast<const uint8_t *>(data.constData()), data.size());
}

int SensorLink::read(uint8_t address, uint8_t *buffer, int length)
{
    int taken = 0;
    onBridge([&](auto &bridge) { taken = bridge.read(address, buffer, static_cast<uint16_t>(length)); });
    return taken;
}

int SensorLink::takeReceived(QByteArray &received)
{
    QSerialPort *serial = port();
    if (serial == nullptr || !serial->isOpen())
        return 0;
    const int before = received.size();
    const auto waiting = static_cast<int>(serial->bytesAvailable());
    received.resize(before + waiting);
    const auto taken = std::max(0, static_cast<int>(serial->read(received.data() + before, waiting)));
    received.resize(before + taken);
    return taken;
}

QSerialPort *SensorLink::port() const
{
    auto *const *uart = std::get_if<class_uart *>(&m_link);
    return uart != nullptr ? (*uart)->port : nullptr;
}

void SensorLink::setUpSensorBus()
{
    setSpeed(BusSpeed::Khz100);
    if (auto *const *ch347 = std::get_if<class_ch347 *>(&m_link); ch347 != nullptr) {
        (*ch347)->setIICDriverMode(1);
        (*ch347)->setIICStretch(1);
    }
}

void SensorLink::setUpBusAtSpeed(BusSpeed speed)
{
    setSpeed(speed);
    if (auto *const *ch347 = std::get_if<class_ch347 *>(&m_link); ch347 != nullptr)
        (*ch347)->setIICStretch(1);
}

void SensorLink::setSpeed(BusSpeed speed)
{
    onBridge([speed](auto &bridge) { applySpeed(bridge, speed); });
}

void SensorLink::pulsePcaReset()
{
    onBridge([](auto &bridge) {
        setResetPin(bridge, 0);
        setResetPin(bridge, 1);
    });
}

void SensorLink::pcaReset()
{
    pulsePcaReset();
    const uint8_t noChannel = 0x00;
    if (isBridge())
        write(kPca9548Address, &noChannel, 1);
}
