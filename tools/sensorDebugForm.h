#pragma once

#include <QWidget>

#include <cstdint>
#include <memory>

class QCheckBox;
class class_ch341;
class class_ch347;
class class_uart;
class Ui_sensorDebugForm;

/// The tab for talking to a device by hand: any bytes to any address, any number of bytes back, all of it in a log.
/// Between start() and stop() it owns a link of its own, which it uses from the user interface thread.
class sensorDebugForm : public QWidget
{
    Q_OBJECT

public:
    explicit sensorDebugForm(QWidget *parent = nullptr);
    ~sensorDebugForm() override;

    /// Called when the tab becomes the current one. Builds up the interface that is chosen on it.
    void start();
    /// Gives the hardware back; may be called on a tab that is stopped already.
    void stop();

Q_SIGNALS:
    /// The only way to the log: `text` is added to it with the time of now.
    void si_appendDebugLog(const QString &text);

private:
    void init();
    void setupLooks();
    void setupConnections();
    void coupleBoardsAndChannels();

    void chooseCh341();
    void chooseCh347();
    void chooseUart();
    void refillSpeedBox(const QStringList &speeds);
    void uartInit();
    void ch341Init();
    void ch347Init();
    void uartDeinit();
    void ch341Deinit();
    void ch347Deinit();
    void pcaReset();

    void toggleConnection();
    void showConnected(bool connected);
    bool openLink(const QString &device);
    void closeLink();
    bool isBridgeChosen() const;
    bool isLinkOpen() const;
    QObject *link() const;

    void setChannels();
    void getChannels();
    uint16_t writeBridge(uint8_t address, const uint8_t *bytes, uint16_t length);
    uint16_t readBridge(uint8_t address, uint8_t *buffer, uint16_t length);

    void showSum(const QString &hexText);
    void writeBytes();
    QByteArray typedBytes() const;
    void writeSerial(uint8_t address, QByteArray &bytes);
    void readBytes();
    QByteArray bytesOfBridge(uint8_t address);
    QByteArray bytesOfPort();
    void writeAndRead();
    void appendLog(const QString &text);

    const std::unique_ptr<Ui_sensorDebugForm> ui;
    class_ch341 *ch341 = nullptr; // each link is null while its interface is not chosen
    class_ch347 *ch347 = nullptr;
    class_uart *uart = nullptr;
    bool m_waitsToRead = false;
};
