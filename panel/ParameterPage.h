#pragma once

#include "protocol/command.h"

#include <QObject>

#include <chrono>
#include <cstdint>

class ChannelTable;
class QAbstractButton;
class QTimer;
class RequestPort;

namespace Ui {
class fingerForm;
}

/// The single parameters of a sensor: what their controls send, what they show of the answers, and the
/// countdown of procedures that the sensor goes through alone.
class ParameterPage : public QObject
{
public:
    ParameterPage(Ui::fingerForm &ui, RequestPort &port, ChannelTable &channels);

    /// Controls of a sensor that just came, whose output is the raw values.
    void start(uint8_t busAddress);
    /// Controls as for no sensor, and no countdown. Sends nothing.
    void reset();
    /// The view needs forces; the other pages show what the user chose.
    void requestTypeOfPage(int page);

    void setMode(uint8_t mode);

    void showAutoDacPowerUp(const QByteArray &rsp);
    void showPressReleaseThreshold(const QByteArray &rsp);
    void showProxReleaseThreshold(const QByteArray &rsp);
    void showProxClearTouch(const QByteArray &rsp);
    void showTemperature(const QByteArray &rsp);

private:
    void wireCommands();
    void wireParameters();
    void requestOnClick(QAbstractButton *button, Command command);
    void chooseSendType(int type);
    void requestSendType(uint8_t type);
    void restoreFactory();
    void autoThreshold();
    void setTouchThreshold();
    void setProxClearTouch();
    void startCountdown(std::chrono::seconds duration);
    void countDown();

    Ui::fingerForm &m_ui;
    RequestPort &m_port;
    ChannelTable &m_channels;
    QTimer *m_countdownTimer;
    std::chrono::seconds m_left{0}; ///< of the countdown
    uint8_t m_sendType = 0;         ///< chosen by the user
};
