#pragma once

#include "link/bridge_state.h"
#include "link/providers/vendor_call.h"

#include <QObject>
#include <QVector>

#include <atomic>
#include <cstdint>

/// I2C clock of the CH347. What the unnamed modes mean depends on the chip.
enum class ch347_iic_speed_te : uint8_t {
    Mode0 = 0,
    Khz100 = 1,
    Khz400 = 2,
    Khz750 = 3,
    Mode4 = 4,
    Mode5 = 5,
    Mode6 = 6,
};

enum class ch347_gpio_te : uint8_t {
    Pin0 = 0,
    Pin1 = 1,
    Pin2 = 2,
    Pin3 = 3,
    Pin4 = 4,
    Pin5 = 5,
    Pin6 = 6,
    Pin7 = 7,
};

enum class ch347_gpio_en_te : uint8_t {
    Disable = 0,
    Enable = 1,
};

enum class ch347_gpio_dir_te : uint8_t {
    Input = 0,
    Output = 1,
};

/// I2C bus and pins of a CH347 bridge. Belongs to the thread of its owner and blocks it for the time of a
/// transfer; the list of bridges comes for the first time 100 ms after construction.
///
/// The destructor does not close the bridge: its user does, before.
class class_ch347 : public QObject
{
    Q_OBJECT

public:
    explicit class_ch347(QObject *parent = nullptr);
    ~class_ch347() override;

    /// Opens the bridge of that id, which must be in the last list. Emits si_connected before it returns
    /// true.
    bool open(uint16_t id);
    /// Always 1. Emits si_disconnected when the link was open.
    uint8_t close();
    bool isOpen() const { return m_state.isOpen(); }

    /// Makes the list of bridge ids anew and returns their number. Opens and closes every index, the one in
    /// use too, so that a link that is open has to be closed and opened again afterwards.
    int scan();
    /// scan, then si_updateList, before it returns.
    void getScanSignal();

    /// Both take a 7-bit I2C address and return the length, or 0 on failure; a write has 1 to 4097 bytes. A
    /// failed read leaves 0xFF in the whole buffer.
    uint16_t write(uint8_t address, const uint8_t *data, uint16_t length);
    uint16_t read(uint8_t address, uint8_t *buffer, uint16_t length);
    /// write, a pause, read. Returns the length read, or 0 when one of the two fails.
    uint16_t wdr(uint8_t address, const uint8_t *writeData, uint16_t writeLength, uint16_t delayMs,
                 uint8_t *readBuffer, uint16_t readLength);

    /// Non-zero on success, 0 when closed or when there is no such speed.
    uint32_t setIICSpeed(ch347_iic_speed_te speed);
    /// Permits devices to stretch the clock. Only bit 0 of the argument counts, here and for the driver mode.
    uint32_t setIICStretch(uint8_t on);
    uint32_t setIICDriverMode(uint8_t mode);

    /// Takes a pin into use or out of it. All pins set before keep their direction and level. Non-zero on
    /// success.
    uint32_t setGPIO(ch347_gpio_te pin, ch347_gpio_en_te enable, ch347_gpio_dir_te direction, uint8_t level);
    /// Reads a pin that setGPIO has enabled. Non-zero on success; the targets are left alone when an argument
    /// is refused.
    uint32_t getGPIO(ch347_gpio_te pin, ch347_gpio_dir_te *direction, uint8_t *level);

    /// Kept ready for the bridge library but not registered: arrivals and removals show in the next scan. May
    /// be entered on any thread.
    static void TACTILE_VENDOR_CALL CH347_NOTIFY_ROUTINE(uint32_t status);

Q_SIGNALS:
    void si_connected();
    void si_disconnected();
    /// Never emitted, nor is si_notify.
    void si_connectTimeout();
    void si_updateList(QVector<uint16_t> ch347List);
    void si_notify(uint8_t state);
    /// The library has given notice; may be emitted on any thread and is heard only by the instance itself,
    /// on its own.
    void bridgeNoticed(unsigned int status);

private:
    void scanSoon();
    void devicesChanged(unsigned int status);

    static std::atomic<class_ch347 *> s_notified;

    BridgeState m_state;
    uint8_t m_enabledPins = 0;
    uint8_t m_outputPins = 0;
    uint8_t m_highPins = 0;
};
