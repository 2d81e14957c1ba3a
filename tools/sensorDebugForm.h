#pragma once

#include "link/SensorLink.h"
#include "tools/ChannelBoxes.h"

#include <QWidget>

#include <cstdint>
#include <memory>

namespace Ui {
class sensorDebugForm;
}

/// The tab for talking to a device by hand: any bytes to any address, any number of bytes back, all of it in
/// a log. Between start() and stop() it owns a link of its own, which it uses from the user interface thread.
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

    void uartInit();
    void ch341Init();
    void ch347Init();
    void uartDeinit();
    void ch341Deinit();
    void ch347Deinit();
    void pcaReset();

Q_SIGNALS:
    /// The only way to the log: `text` is added to it with the time of now.
    void si_appendDebugLog(const QString &text);

private:
    void setupLooks();
    void setupConnections();

    void chooseCh341();
    void chooseCh347();
    void chooseUart();
    void choose(SensorLink::Kind kind, const QStringList &speeds);
    bool isChosen(SensorLink::Kind kind) const;
    bool isBridgeChosen() const { return !isChosen(SensorLink::Kind::Serial); }
    void makeLink(SensorLink::Kind kind);
    void release(SensorLink::Kind kind);
    bool isLinkOpen() const { return m_link && m_link->isOpen(); }

    void linkUp();
    void linkDown();
    void toggleConnection();
    void showConnected(bool connected);

    void setChannels();
    void getChannels();
    void showSum(const QString &hexText);
    void writeBytes();
    QByteArray typedBytes() const;
    void writeSerial(uint8_t address, QByteArray &bytes);
    void readBytes();
    QByteArray bytesOfBridge(uint8_t address);
    QByteArray bytesOfPort();
    void writeAndRead();
    void appendLog(const QString &text);

    std::unique_ptr<Ui::sensorDebugForm> ui;
    std::unique_ptr<SensorLink> m_link;
    std::unique_ptr<ChannelBoxes> m_channels;
    bool m_waitsToRead = false;
};
