#pragma once

#include <QByteArray>
#include <QObject>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <variant>

class QSerialPort;
class class_ch341;
class class_ch347;
class class_uart;

/// I2C clock of a bridge. What goes beyond the named ones depends on the chip.
enum class BusSpeed : uint8_t {
    Khz20 = 0,
    Khz100 = 1,
    Khz400 = 2,
    Khz750 = 3,
};

/// One link to sensors, of a kind that is chosen when it is made: a serial line, or the I2C bus of a bridge.
///
/// Reads and writes do nothing and give 0 while the link is closed; what a kind does not have (a bus address
/// on a serial line, a multiplexer) has no effect there. Lives and is used in the thread of its creator,
/// which transfers block.
class SensorLink : public QObject
{
    Q_OBJECT

public:
    enum class Kind : uint8_t { Serial = 0, Ch341 = 1, Ch347 = 2 };

    static constexpr unsigned kUsualBaudRate = 460800;

    /// Serial ports are listed while none is open, as long as `wanted` says that somebody looks at the list;
    /// bridges are listed when some come or go. Without `wanted` lists are always wanted.
    explicit SensorLink(Kind kind, QObject *parent = nullptr, std::function<bool()> wanted = {});
    /// Closes the link without a signal.
    ~SensorLink() override;

    Kind kind() const;
    bool isBridge() const { return kind() != Kind::Serial; }
    /// As it stands in the log: "uart", "ch341", "ch347".
    const char *name() const;

    /// Opens a device of the list: a port name, or a bridge id in decimal. The rate is of the serial line
    /// only.
    bool open(const QString &device, unsigned baudRate = kUsualBaudRate);
    /// Emits closed(): a bridge when it was open, a serial line in every case.
    void close();
    bool isOpen() const;
    /// Lists the devices now.
    void scan();

    /// Number of bytes that went out or came, 0 on failure. A serial line takes all of them, whatever the
    /// address, and is not read by read(): it has takeReceived().
    int write(uint8_t address, const uint8_t *data, int length);
    int write(uint8_t address, const QByteArray &data);
    int read(uint8_t address, uint8_t *buffer, int length);
    /// Appends what has come over the serial line and returns its length.
    int takeReceived(QByteArray &received);
    /// The port of a serial line, open or not; null for a bridge.
    QSerialPort *port() const;

    /// Clock and line settings for sensors, right after the bridge has been opened: at the usual 100 kHz, or
    /// at a speed of the user's choice, where a CH347 keeps the driver mode that it has.
    void setUpSensorBus();
    void setUpBusAtSpeed(BusSpeed speed);
    void setSpeed(BusSpeed speed);

    /// Pulls the multiplexer's reset input low and lets it go again.
    void pulsePcaReset();
    /// Reset pulse, then deselects all channels.
    void pcaReset();

Q_SIGNALS:
    void opened();
    void closed();
    void devicesListed(const QStringList &devices);

private:
    void makeSerial(std::function<bool()> wanted);
    template<typename Bridge>
    void makeBridge(std::function<bool()> wanted);
    template<typename Action>
    void onBridge(Action action);

    std::variant<class_uart *, class_ch341 *, class_ch347 *> m_link; ///< in the order of Kind
};
