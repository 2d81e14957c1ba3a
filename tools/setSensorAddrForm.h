#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <cstdint>
#include <memory>

class class_ch341;
class class_ch347;
class class_uart;
class Ui_setSensorAddrForm;

/// The tab that gives a sensor a new bus address. It talks to the general address, so exactly one sensor may be plugged
/// in. Between start() and stop() it owns a link of its own, which it polls from the user interface thread.
class setSensorAddrForm : public QWidget
{
    Q_OBJECT

public:
    explicit setSensorAddrForm(QWidget *parent = nullptr);
    ~setSensorAddrForm() override;

    /// Called when the tab becomes the current one. Builds up the serial link whatever interface the box shows.
    void start();
    /// Gives the hardware back; may be called on a tab that is stopped already.
    void stop();

private:
    /// Rows of cbbInf.
    enum class Interface { Uart = 0, Ch341 = 1, Ch347 = 2 };

    void setupLooks();
    void setupConnections();

    void chooseInterface(int index);
    void setInterfaceArguments(const QString &caption, const QStringList &items);
    Interface chosenInterface() const;
    bool isLinkOpen() const;

    void uartInit();
    void ch341Init();
    void ch347Init();
    void uartDeinit();
    void ch341Deinit();
    void ch347Deinit();
    void pcaReset();
    template<typename Bridge>
    void bridgeInit(QPointer<Bridge> &link, Interface kind, const char *name);

    void toggleConnection();
    void toggleSerial();
    template<typename Bridge>
    void toggleBridge(Bridge &bridge);
    /// After a bridge that has moved to another index was opened again by itself.
    template<typename Bridge>
    void restoreChoice(Bridge &bridge);
    template<typename Bridge>
    void selectBoard(Bridge &bridge);
    void infOpen();
    void infClose();
    void setInterfaceEnabled(bool enabled);

    void requestSet();
    QByteArray takeSetFrame();
    void poll();
    void pollSerial();
    template<typename Bridge>
    void pollBridge(Bridge &bridge);
    void takeSerialAnswers(const QByteArray &bytes);
    void sensorAnswered(uint8_t command);
    void countSilence();

    const std::unique_ptr<Ui_setSensorAddrForm> ui;
    uint8_t alive = 0; // 0 while no sensor answers, else 1 plus the ticks of timerAlive since its last answer
    QPointer<QTimer> timerScan;
    QPointer<QTimer> timerAlive;
    QPointer<class_ch341> ch341;
    QPointer<class_uart> uart;
    QPointer<class_ch347> ch347;
    uint8_t setReq = 0; // 1 when the next poll must send the set frame
    QString m_openId;   // the bridge that was opened last, as the list shows it
    bool m_opening = false;
};
