#include "link/class_ch347.h"

#include "link/providers/ch347dll.h"
#include "link/providers/invalid_handle.h"

#include <QStringList>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <array>
#include <chrono>
#include <iterator>

using namespace std::chrono_literals;

namespace {

constexpr uint32_t kIndexCount = 32;
constexpr auto kScanDelay = 100ms;
constexpr uint16_t kLongestWrite = 4097;
constexpr uint32_t kIdModulus = 65535;

/// The zero-terminated text with a '#' in it, empty when there is none.
QString deviceIdText(const CH347DeviceInfo &info)
{
    const char *const begin = info.bytes;
    const char *const end = std::end(info.bytes);
    const char *const mark = std::find(begin, end, '#');
    if (mark == end)
        return QString();
    const char *first = mark;
    while (first != begin && first[-1] != '\0')
        --first;
    const char *const last = std::find(mark, end, '\0');
    return QString::fromLocal8Bit(first, static_cast<int>(last - first));
}

/// Missing and non-numeric fields count as 0.
uint16_t idOfText(const QString &text)
{
    const QString instance = text.split(QLatin1Char('#')).value(1).split(QLatin1Char('&')).value(1);
    return static_cast<uint16_t>(instance.toUInt(nullptr, 16) % kIdModulus);
}

void assignBit(uint8_t &mask, uint8_t bit, bool on)
{
    mask = static_cast<uint8_t>(on ? mask | bit : mask & ~bit);
}

uint8_t bitOf(ch347_gpio_te pin)
{
    return static_cast<uint8_t>(1U << static_cast<unsigned>(pin));
}

} // namespace

std::atomic<class_ch347 *> class_ch347::s_notified{nullptr};

class_ch347::class_ch347(QObject *parent)
    : QObject(parent)
{
    qDebug("CH347 new");
    connect(this, &class_ch347::bridgeNoticed, this, &class_ch347::devicesChanged);
    s_notified = this;
    scanSoon();
}

class_ch347::~class_ch347()
{
    qDebug("CH347 delete");
    CH347SetDeviceNotify(0, nullptr, nullptr);
    s_notified = nullptr;
}

void class_ch347::scanSoon()
{
    QTimer::singleShot(kScanDelay, this, &class_ch347::getScanSignal);
}

bool class_ch347::open(uint16_t id)
{
    const int8_t position = openListedBridge(m_state, id, kIndexCount, CH347OpenDevice, CH347CloseDevice);
    if (position < 0)
        return false;
    const auto index = static_cast<uint8_t>(position);
    m_state.openIndex = index;
    m_state.openedId = id;
    Q_EMIT si_connected();
    qDebug("connect success:%d, idx:%d", id, index);
    return true;
}

uint8_t class_ch347::close()
{
    if (isOpen()) {
        CH347CloseDevice(m_state.openIndex);
        m_state.openIndex = BridgeState::kClosed;
        Q_EMIT si_disconnected();
    }
    return 1;
}

int class_ch347::scan()
{
    m_state.deviceList.clear();
    for (uint32_t index = 0; index < kIndexCount; ++index) {
        if (!isInvalidHandle(CH347OpenDevice(index))) {
            CH347DeviceInfo info = {};
            CH347GetDeviceInfor(index, &info);
            m_state.deviceList.append(idOfText(deviceIdText(info)));
        }
        CH347CloseDevice(index);
    }
    qDebug() << "ch347:" << m_state.deviceList;
    return m_state.deviceList.size();
}

void class_ch347::getScanSignal()
{
    scan();
    Q_EMIT si_updateList(m_state.deviceList);
}

uint16_t class_ch347::write(uint8_t address, const uint8_t *data, uint16_t length)
{
    if (!isOpen() || data == nullptr || length == 0 || length > kLongestWrite) {
        qDebug("ch347 write err,%d, %d,%p", isOpen() ? 1 : 0, length, static_cast<const void *>(data));
        return 0;
    }
    std::array<uint8_t, kLongestWrite + 1> buffer{};
    buffer[0] = static_cast<uint8_t>(address << 1);
    std::copy_n(data, length, buffer.begin() + 1);
    if (CH347StreamI2C(m_state.openIndex, length + 1U, buffer.data(), 0, nullptr) == 0) {
        qDebug("ch347 write err");
        return 0;
    }
    return length;
}

uint16_t class_ch347::read(uint8_t address, uint8_t *buffer, uint16_t length)
{
    if (!isOpen() || buffer == nullptr || length == 0) {
        qDebug("ch347 read err:%p, %d", static_cast<const void *>(buffer), length);
        return 0;
    }
    const auto addressByte = static_cast<uint8_t>((address << 1) | 1);
    if (CH347StreamI2C(m_state.openIndex, 1, &addressByte, length, buffer) == 0) {
        std::fill_n(buffer, length, uint8_t{0xFF});
        return 0;
    }
    return length;
}

uint16_t class_ch347::wdr(uint8_t address, const uint8_t *writeData, uint16_t writeLength, uint16_t delayMs,
                          uint8_t *readBuffer, uint16_t readLength)
{
    if (write(address, writeData, writeLength) == 0)
        return 0;
    if (CH347I2C_SetDelaymS(m_state.openIndex, delayMs) == 0)
        QThread::msleep(delayMs);
    return read(address, readBuffer, readLength);
}

uint32_t class_ch347::setIICSpeed(ch347_iic_speed_te speed)
{
    if (!isOpen() || speed > ch347_iic_speed_te::Mode6)
        return 0;
    return CH347I2C_Set(m_state.openIndex, static_cast<uint32_t>(speed));
}

uint32_t class_ch347::setIICStretch(uint8_t on)
{
    return CH347I2C_SetStretch(m_state.openIndex, on & 1U);
}

uint32_t class_ch347::setIICDriverMode(uint8_t mode)
{
    return CH347I2C_SetDriverMode(m_state.openIndex, mode & 1U);
}

uint32_t class_ch347::setGPIO(ch347_gpio_te pin, ch347_gpio_en_te enable, ch347_gpio_dir_te direction,
                              uint8_t level)
{
    if (pin > ch347_gpio_te::Pin7 || enable > ch347_gpio_en_te::Enable ||
        direction > ch347_gpio_dir_te::Output || level > 1)
        return 0;
    const uint8_t bit = bitOf(pin);
    const bool enabled = enable == ch347_gpio_en_te::Enable;
    assignBit(m_enabledPins, bit, enabled);
    if (enabled) {
        const bool output = direction == ch347_gpio_dir_te::Output;
        assignBit(m_outputPins, bit, output);
        if (output)
            assignBit(m_highPins, bit, level != 0);
    }
    return CH347GPIO_Set(m_state.openIndex, m_enabledPins, m_outputPins, m_highPins);
}

uint32_t class_ch347::getGPIO(ch347_gpio_te pin, ch347_gpio_dir_te *direction, uint8_t *level)
{
    if (direction == nullptr || level == nullptr || pin > ch347_gpio_te::Pin7)
        return 0;
    const uint8_t bit = bitOf(pin);
    if ((m_enabledPins & bit) == 0)
        return 0;
    uint8_t outputPins = 0;
    uint8_t highPins = 0;
    const uint32_t result = CH347GPIO_Get(m_state.openIndex, &outputPins, &highPins);
    *direction = (outputPins & bit) != 0 ? ch347_gpio_dir_te::Output : ch347_gpio_dir_te::Input;
    *level = (highPins & bit) != 0 ? 1 : 0;
    return result;
}

void TACTILE_VENDOR_CALL class_ch347::CH347_NOTIFY_ROUTINE(uint32_t status)
{
    class_ch347 *link = s_notified;
    if (link != nullptr)
        Q_EMIT link->bridgeNoticed(status);
}

void class_ch347::devicesChanged(unsigned int status)
{
    scanSoon();
    followOpenBridge(*this, m_state, status);
}
