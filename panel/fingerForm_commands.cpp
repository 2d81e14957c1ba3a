// What the controls of a panel send.

#include "panel/fingerForm.h"

#include "ui_fingerForm.h"

#include "engine/cmd_ts.h"
#include "panel/force_threshold.h"
#include "protocol/payloads.h"

#include <QDebug>
#include <QMessageBox>
#include <QTimer>

#include <chrono>

namespace {

constexpr uint16_t kVersionLength = 25;
constexpr uint16_t kShortAnswerLength = 11;

/// Rereads give the sensor time to take over what it was sent.
constexpr std::chrono::milliseconds kThresholdRereadMs{200};

uint8_t switchedOn(const QCheckBox *box)
{
    return static_cast<uint8_t>(box->checkState() / 2);
}

uint8_t lowByte(int value)
{
    return static_cast<uint8_t>(value);
}

uint32_t word(int value)
{
    return static_cast<uint32_t>(value);
}

} // namespace

void fingerForm::cmdFuncInit()
{
    requestOnClick(ui->pbtnReset, Command::Reset);
    requestOnClick(ui->pbtnAutoDac, Command::AutoDac);
    requestOnClick(ui->pbtnChannelResetAll, Command::ResetAllChannels);
    onClick(ui->pbtnSetFactor, &fingerForm::restoreFactory);
    connect(ui->cbbSetSendType, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &fingerForm::setSendType);
    onClick(ui->pbtnSetIICAddr, &fingerForm::setIicAddress);
    onClick(ui->pbtnGetThreshold, &fingerForm::groupRead);
    onClick(ui->pbtnAutoThreshold, &fingerForm::autoThreshold);
    onClick(ui->pbtnCaliRefresh, &fingerForm::refreshCalibration);
    onClick(ui->pbtnCaliClear, &fingerForm::clearCalibration);
    onClick(ui->pbtnCaliMaxAuto, &fingerForm::fillMaxAuto);
    onClick(ui->pbtnCaliSave, &fingerForm::saveCalibration);
    onClick(ui->pbtnTouchThreshold, &fingerForm::setTouchThreshold);
    onClick(ui->rbtnModeNor, &fingerForm::chooseStandardMode);
    onClick(ui->rbtnModeHighBd, &fingerForm::chooseHighSensitivityMode);
}

void fingerForm::wireParameterControls()
{
    onClick(ui->chkbtnProxClearTouch, &fingerForm::setProxClearTouch);
    onClick(ui->pbtnSetProxClearTouch, &fingerForm::setProxClearTouch);
    onClick(ui->chkbtnAutoDacPowerUp, &fingerForm::setAutoDacPowerUp);
    requestOnClick(ui->pbtnGetTemp, Command::GetTemperature);
    onClick(ui->pbtnTempCali, &fingerForm::setTemperature);
    onClick(ui->pbtnSetPressReleaseThreshold, &fingerForm::setPressReleaseThreshold);
    onClick(ui->pbtnSetProxReleaseThreshold, &fingerForm::setProxReleaseThreshold);
    onClick(ui->pbtnSetPressThreshold, &fingerForm::setPressThreshold);
}

void fingerForm::onClick(QAbstractButton *button, void (fingerForm::*handler)())
{
    connect(button, &QAbstractButton::clicked, this, handler);
}

void fingerForm::requestOnClick(QAbstractButton *button, Command command)
{
    connect(button, &QAbstractButton::clicked, this, [this, command] { port.request(command); });
}

void fingerForm::requestPerChannel(Command command, int bytesPerChannel)
{
    port.request(command, {}, static_cast<uint16_t>(bytesPerChannel * channelCount() + kFrameOverhead));
}

void fingerForm::getVersion()
{
    port.request(Command::GetVersion, {}, kVersionLength);
}

void fingerForm::getPrg()
{
    port.request(Command::GetProgram, {}, kShortAnswerLength);
}

void fingerForm::getSN()
{
    port.request(Command::GetSerialNumber, {}, kUnknownResponse);
}

void fingerForm::getSensorNum()
{
    port.request(Command::GetSensorNum, {}, kShortAnswerLength);
}

void fingerForm::getDac()
{
    requestPerChannel(Command::GetDac, 4);
}

void fingerForm::getProxClearTouch()
{
    port.request(Command::GetProxClearTouch);
}

void fingerForm::getAutoDacPowerUp()
{
    port.request(Command::GetAutoDacPowerUp);
}

void fingerForm::getReleaseThreshold()
{
    port.request(Command::GetPressReleaseThreshold);
    port.request(Command::GetProxReleaseThreshold);
}

void fingerForm::setMode(unsigned char mode)
{
    port.request(Command::SetMode, {mode});
}

// The one refresh: the attach, every countdown and every delayed reread click its button. Reads as many parameters as
// the table has columns for.
void fingerForm::groupRead()
{
    struct Read
    {
        Command command;
        int bytesPerChannel;
    };
    constexpr std::array<Read, 6> reads = {{{Command::GetThreshold, 4},
                                            {Command::GetExcitation, 1},
                                            {Command::GetRange, 1},
                                            {Command::GetFilter, 6},
                                            {Command::GetTimeout, 4},
                                            {Command::GetDac, 4}}};
    const auto columns = static_cast<size_t>(ui->tbwThreshold->columnCount());
    for (size_t i = 0; i < qMin(columns, reads.size()); ++i)
        requestPerChannel(reads.at(i).command, reads.at(i).bytesPerChannel);
}

void fingerForm::rereadLater(std::chrono::milliseconds delay)
{
    QTimer::singleShot(delay, this, [this] { Q_EMIT ui->pbtnGetThreshold->clicked(); });
}

void fingerForm::startCountdown(unsigned char seconds)
{
    countdown = seconds;
    countdownTimer->start(1000);
}

void fingerForm::autoThreshold()
{
    port.request(Command::AutoThreshold, payloadByteAndWord(lowByte(ui->spbThresholdSNR->value()),
                                                            word(ui->spbThresholdMin->value())));
    startCountdown(10);
}

void fingerForm::chooseStandardMode()
{
    setMode(0);
    startCountdown(2);
}

void fingerForm::chooseHighSensitivityMode()
{
    setMode(1);
    startCountdown(15);
}

void fingerForm::setSendType(int type)
{
    if (type == 5 || type == 6)
        return;
    sendType = static_cast<uint8_t>(type);
    requestSendType(sendType);
}

void fingerForm::requestSendType(uint8_t type)
{
    port.request(Command::SetSendType, payloadByte7(type));
}

void fingerForm::setIicAddress()
{
    port.request(Command::SetIicAddress, payloadByte7(lowByte(ui->spbIICAddr->value())));
}

void fingerForm::restoreFactory()
{
    const QPointer<fingerForm> self(this);
    const auto answer = QMessageBox::question(nullptr, tr("提示"), tr("确认回复出厂设置？"),
                                              QMessageBox::Reset | QMessageBox::No, QMessageBox::No);
    if (self && answer == QMessageBox::Reset)
        port.request(Command::RestoreFactory);
}

void fingerForm::setTouchThreshold()
{
    const auto hundredths = static_cast<uint32_t>(ui->dspbTouchThreshold->value() * 100);
    port.request(Command::SetTouchThreshold, payloadByteAndWord(1, hundredths));
    rereadLater(kThresholdRereadMs);
}

void fingerForm::setPressThreshold()
{
    const uint channel = ui->cbbSetPressThresholdCh->currentText().toUInt();
    const QTableWidget *table = ui->tbwCaliTable;
    if (caliNList.isEmpty() || table->rowCount() == 0 || channel >= static_cast<uint>(table->columnCount())) {
        qDebug("no calibration of channel:%u", channel);
        return;
    }
    QVector<uint32_t> curve;
    for (int row = 0; row < table->rowCount(); ++row)
        curve += calibrationCell(row, static_cast<int>(channel)).toUInt();
    qDebug() << curve;
    const uint32_t threshold =
        thresholdForForce(caliNList, curve, static_cast<float>(ui->dspbSetPressThresholdPress->value()));
    qDebug("%u", threshold);
    port.request(Command::SetChannelThreshold, payloadByteAndWord(static_cast<uint8_t>(channel), threshold));
    rereadLater(kThresholdRereadMs);
}

void fingerForm::setProxClearTouch()
{
    port.request(Command::SetProxClearTouch, payloadByteAndWord(switchedOn(ui->chkbtnProxClearTouch),
                                                                word(ui->spbProxClearTouchTimeout->value())));
    getProxClearTouch();
}

void fingerForm::setAutoDacPowerUp()
{
    port.request(Command::SetAutoDacPowerUp, {switchedOn(ui->chkbtnAutoDacPowerUp)});
}

void fingerForm::setTemperature()
{
    port.request(Command::SetTemperature,
                 payloadWordAndByte(floatBits(static_cast<float>(ui->dspbTempCali->value())), 0));
}

void fingerForm::setPressReleaseThreshold()
{
    port.request(Command::SetPressReleaseThreshold,
                 payloadWordAndByte(word(ui->spbPressReleaseThreshold->value()),
                                    lowByte(ui->spbPressReleaseThresholdScale->value())));
}

void fingerForm::setProxReleaseThreshold()
{
    port.request(Command::SetProxReleaseThreshold,
                 payloadWordAndByte(word(ui->spbProxReleaseThreshold->value()),
                                    lowByte(ui->spbProxReleaseThresholdScale->value())));
}

void fingerForm::resetChannel(unsigned char ch)
{
    port.request(Command::ResetChannel, {ch});
}

void fingerForm::enableChannel(unsigned char ch, bool on)
{
    port.request(Command::EnableChannel, {ch, 0, 0, static_cast<uint8_t>(on), 0});
}
