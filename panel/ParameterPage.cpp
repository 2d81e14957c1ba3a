#include "panel/ParameterPage.h"

#include "ui_fingerForm.h"

#include "panel/ChannelTable.h"
#include "panel/RequestPort.h"
#include "protocol/payloads.h"

#include <QButtonGroup>
#include <QDebug>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>

#include <algorithm>
#include <limits>

using namespace std::chrono_literals;

namespace {

constexpr int kViewPage = 0;
constexpr std::chrono::milliseconds kThresholdReread = 200ms;

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

// A box knows off and on; whatever else a sensor says counts as the nearer of the two.
Qt::CheckState checkState(int8_t value)
{
    return value > 0 ? Qt::Checked : Qt::Unchecked;
}

int spinValue(uint32_t value)
{
    return static_cast<int>(std::min<uint32_t>(value, std::numeric_limits<int>::max()));
}

} // namespace

ParameterPage::ParameterPage(Ui::fingerForm &ui, RequestPort &port, ChannelTable &channels)
    : m_ui(ui)
    , m_port(port)
    , m_channels(channels)
    , m_countdownTimer(new QTimer(ui.lbAutoThresholdTime))
{
    auto *modes = new QButtonGroup(this);
    modes->addButton(ui.rbtnModeNor);
    modes->addButton(ui.rbtnModeHighBd);
    connect(m_countdownTimer, &QTimer::timeout, this, &ParameterPage::countDown);
    wireCommands();
    wireParameters();
}

void ParameterPage::wireCommands()
{
    requestOnClick(m_ui.pbtnReset, Command::Reset);
    requestOnClick(m_ui.pbtnAutoDac, Command::AutoDac);
    requestOnClick(m_ui.pbtnChannelResetAll, Command::ResetAllChannels);
    requestOnClick(m_ui.pbtnGetTemp, Command::GetTemperature);
    connect(m_ui.pbtnSetFactor, &QAbstractButton::clicked, this, &ParameterPage::restoreFactory);
    connect(m_ui.cbbSetSendType, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &ParameterPage::chooseSendType);
    connect(m_ui.spbIICAddr, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this](int value) { m_ui.lbIICAddr->setText(QString::number(value)); });
    connect(m_ui.pbtnSetIICAddr, &QAbstractButton::clicked, this, [this] {
        m_port.request(Command::SetIicAddress, payloadByte7(lowByte(m_ui.spbIICAddr->value())));
    });
    connect(m_ui.pbtnAutoThreshold, &QAbstractButton::clicked, this, &ParameterPage::autoThreshold);
    connect(m_ui.rbtnModeNor, &QAbstractButton::clicked, this, [this] {
        setMode(0);
        startCountdown(2s);
    });
    connect(m_ui.rbtnModeHighBd, &QAbstractButton::clicked, this, [this] {
        setMode(1);
        startCountdown(15s);
    });
}

void ParameterPage::wireParameters()
{
    connect(m_ui.pbtnTouchThreshold, &QAbstractButton::clicked, this, &ParameterPage::setTouchThreshold);
    connect(m_ui.chkbtnProxClearTouch, &QAbstractButton::clicked, this, &ParameterPage::setProxClearTouch);
    connect(m_ui.pbtnSetProxClearTouch, &QAbstractButton::clicked, this, &ParameterPage::setProxClearTouch);
    connect(m_ui.chkbtnAutoDacPowerUp, &QAbstractButton::clicked, this,
            [this] { m_port.request(Command::SetAutoDacPowerUp, {switchedOn(m_ui.chkbtnAutoDacPowerUp)}); });
    connect(m_ui.pbtnTempCali, &QAbstractButton::clicked, this, [this] {
        const auto degrees = static_cast<float>(m_ui.dspbTempCali->value());
        m_port.request(Command::SetTemperature, payloadWordAndByte(floatBits(degrees), 0));
    });
    connect(m_ui.pbtnSetPressReleaseThreshold, &QAbstractButton::clicked, this, [this] {
        m_port.request(Command::SetPressReleaseThreshold,
                       payloadWordAndByte(word(m_ui.spbPressReleaseThreshold->value()),
                                          lowByte(m_ui.spbPressReleaseThresholdScale->value())));
    });
    connect(m_ui.pbtnSetProxReleaseThreshold, &QAbstractButton::clicked, this, [this] {
        m_port.request(Command::SetProxReleaseThreshold,
                       payloadWordAndByte(word(m_ui.spbProxReleaseThreshold->value()),
                                          lowByte(m_ui.spbProxReleaseThresholdScale->value())));
    });
}

void ParameterPage::requestOnClick(QAbstractButton *button, Command command)
{
    connect(button, &QAbstractButton::clicked, this, [this, command] { m_port.request(command); });
}

void ParameterPage::start(uint8_t busAddress)
{
    m_ui.spbIICAddr->setValue(busAddress);
    m_channels.reread();
    m_sendType = 0;
    m_ui.cbbSetSendType->setCurrentIndex(0);
}

void ParameterPage::reset()
{
    m_countdownTimer->stop();
    {
        const QSignalBlocker blocker(m_ui.cbbSetSendType);
        m_ui.cbbSetSendType->setCurrentIndex(0);
    }
    m_ui.spbProxReleaseThreshold->setValue(0);
    m_ui.spbProxReleaseThresholdScale->setValue(1);
    m_ui.spbPressReleaseThreshold->setValue(0);
    m_ui.spbPressReleaseThresholdScale->setValue(1);
    m_ui.rbtnModeNor->setChecked(true);
}

void ParameterPage::requestTypeOfPage(int page)
{
    if (page != m_ui.tabWidget->currentIndex())
        m_ui.tabWidget->setCurrentIndex(page);
    if (m_ui.tabWidget->currentIndex() == kViewPage) {
        requestSendType(kForceSendType);
        return;
    }
    qDebug("set sendType:%d", m_sendType);
    if (m_ui.cbbSetSendType->currentIndex() == m_sendType)
        Q_EMIT m_ui.cbbSetSendType->currentIndexChanged(m_sendType);
    else
        m_ui.cbbSetSendType->setCurrentIndex(m_sendType);
}

void ParameterPage::chooseSendType(int type)
{
    if (type == 5 || type == 6)
        return;
    m_sendType = static_cast<uint8_t>(type);
    requestSendType(m_sendType);
}

void ParameterPage::requestSendType(uint8_t type)
{
    m_port.request(Command::SetSendType, payloadByte7(type));
}

void ParameterPage::setMode(uint8_t mode)
{
    m_port.request(Command::SetMode, {mode});
}

void ParameterPage::restoreFactory()
{
    const QPointer<ParameterPage> self(this);
    const auto answer = QMessageBox::question(nullptr, QCoreApplication::translate("fingerForm", "提示"),
                                              QCoreApplication::translate("fingerForm", "确认回复出厂设置？"),
                                              QMessageBox::Reset | QMessageBox::No, QMessageBox::No);
    if (self && answer == QMessageBox::Reset)
        m_port.request(Command::RestoreFactory);
}

void ParameterPage::autoThreshold()
{
    m_port.request(Command::AutoThreshold, payloadByteAndWord(lowByte(m_ui.spbThresholdSNR->value()),
                                                              word(m_ui.spbThresholdMin->value())));
    startCountdown(10s);
}

void ParameterPage::setTouchThreshold()
{
    const auto hundredths = static_cast<uint32_t>(m_ui.dspbTouchThreshold->value() * 100);
    m_port.request(Command::SetTouchThreshold, payloadByteAndWord(1, hundredths));
    m_channels.rereadLater(kThresholdReread);
}

void ParameterPage::setProxClearTouch()
{
    m_port.request(Command::SetProxClearTouch,
                   payloadByteAndWord(switchedOn(m_ui.chkbtnProxClearTouch),
                                      word(m_ui.spbProxClearTouchTimeout->value())));
    m_port.request(Command::GetProxClearTouch);
}

void ParameterPage::startCountdown(std::chrono::seconds duration)
{
    m_left = duration;
    m_countdownTimer->start(1s);
}

void ParameterPage::countDown()
{
    --m_left;
    m_ui.lbAutoThresholdTime->setText(QCoreApplication::translate("fingerForm", "倒计时：") +
                                      QString::number(m_left.count()) +
                                      QCoreApplication::translate("fingerForm", "秒"));
    if (m_left > 0s)
        return;
    m_channels.reread();
    m_countdownTimer->stop();
}

void ParameterPage::showAutoDacPowerUp(const QByteArray &rsp)
{
    m_ui.chkbtnAutoDacPowerUp->setCheckState(checkState(FrameReader(rsp).signedAt(7)));
}

void ParameterPage::showPressReleaseThreshold(const QByteArray &rsp)
{
    const FrameReader reader(rsp);
    m_ui.spbPressReleaseThreshold->setValue(spinValue(reader.u32At(kPayloadAt)));
    m_ui.spbPressReleaseThresholdScale->setValue(reader.signedAt(8));
}

void ParameterPage::showProxReleaseThreshold(const QByteArray &rsp)
{
    const FrameReader reader(rsp);
    m_ui.spbProxReleaseThreshold->setValue(spinValue(reader.u32At(kPayloadAt)));
    m_ui.spbProxReleaseThresholdScale->setValue(reader.signedAt(8));
}

void ParameterPage::showProxClearTouch(const QByteArray &rsp)
{
    const FrameReader reader(rsp);
    m_ui.chkbtnProxClearTouch->setCheckState(checkState(reader.signedAt(kPayloadAt)));
    m_ui.spbProxClearTouchTimeout->setValue(spinValue(reader.u32At(kPayloadAt + 1)));
}

void ParameterPage::showTemperature(const QByteArray &rsp)
{
    const uint16_t hundredths = FrameReader(rsp).u16At(kPayloadAt);
    qDebug("temp:%d", hundredths);
    m_ui.lbTemp->setText(QString::number(hundredths / 100.0, 'f', 2));
}
