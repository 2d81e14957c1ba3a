#pragma once

#include "link/SensorLink.h"
#include "tools/GeneralCall.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <cstdint>
#include <memory>

namespace Ui {
class setSensorAddrForm;
}

/// The tab that gives a sensor a new bus address. It talks to the general address, so exactly one sensor may
/// be plugged in. Between start() and stop() it owns a link of its own, which it polls from the user
/// interface thread.
class setSensorAddrForm : public QWidget
{
    Q_OBJECT

public:
    explicit setSensorAddrForm(QWidget *parent = nullptr);
    ~setSensorAddrForm() override;

    /// Called when the tab becomes the current one. Builds up the serial link whatever interface the box
    /// shows.
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

private:
    void setupLooks();
    void setupConnections();

    /// Rows of cbbInf are the kinds of links in their order.
    void chooseInterface(int index);
    void setInterfaceArguments(const QString &caption, const QStringList &items);
    void makeLink(SensorLink::Kind kind);
    void release(SensorLink::Kind kind);
    bool isChosen(SensorLink::Kind kind) const;
    bool isLinkOpen() const;

    void linkUp();
    void toggleConnection();
    void selectBoard();
    void infOpen();
    void infClose();
    void setInterfaceEnabled(bool enabled);

    void requestSet();
    void poll();
    void sensorAnswered(const GeneralCall::Answer &answer);
    void countSilence();

    std::unique_ptr<Ui::setSensorAddrForm> ui;
    uint8_t alive =
        0; ///< 0 while no sensor answers, else 1 plus the ticks of timerAlive since its last answer
    QPointer<QTimer> timerScan;
    QPointer<QTimer> timerAlive;
    uint8_t setReq = 0; ///< 1 when the next poll must send the set frame
    std::unique_ptr<SensorLink> m_link;
    QString m_openId; ///< the device that was opened last, as the list shows it
    bool m_opening = false;
};
