// What a panel does with the answers to its requests.

#include "panel/fingerForm.h"

#include "ui_fingerForm.h"

#include "protocol/class_sensorCmd.h"
#include "protocol/payloads.h"

#include <QMessageBox>

#include <algorithm>
#include <chrono>
#include <limits>

namespace {

constexpr int kSerialNumberMax = 50;
constexpr std::chrono::milliseconds kParameterRereadMs{1000};

Command commandOf(const QByteArray &request)
{
    return static_cast<Command>(static_cast<uint8_t>(request.at(kCommandAt)));
}

QByteArray nameOf(const QByteArray &request)
{
    return class_sensorCmd::getStr(static_cast<uint8_t>(request.at(kCommandAt))).toUtf8();
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

QString textAt(const QByteArray &frame, int position, int length)
{
    return QString::fromUtf8(frame.mid(position, length));
}

// True when the payload holds exactly so many bytes for each channel.
bool holdsPerChannel(const QByteArray &response, int bytesPerChannel, int channels)
{
    return channels == (response.size() - kFrameOverhead) / bytesPerChannel;
}

QVector<unsigned char> bytesOf(const FrameReader &reader, int position, int count)
{
    QVector<unsigned char> values;
    for (int i = 0; i < count; ++i)
        values += reader.byteAt(position + i);
    return values;
}

QVector<unsigned int> wordsOf(const FrameReader &reader, int position, int count)
{
    QVector<unsigned int> values;
    for (int i = 0; i < count; ++i)
        values += reader.u32At(position + 4 * i);
    return values;
}

void warn(const QString &text)
{
    QMessageBox::warning(nullptr, QObject::tr("命令错误"), text, QMessageBox::Ok);
}

} // namespace

void fingerForm::sl_cmdRsp(uint8_t inf, uint8_t address, QByteArray req, QByteArray rsp)
{
    if (!isMine(inf, address))
        return;
    if (req.size() <= kCommandAt || rsp.size() <= kCommandAt) {
        qDebug("cmd req len err");
        return;
    }
    qDebug("req:%s   %s", nameOf(req).constData(), req.toHex().constData());
    qDebug("rsp:%s", rsp.toHex().constData());
    (this->*answerHandler(commandOf(req)))(req, rsp);
}

void fingerForm::sl_cmdRspErr(uint8_t, uint8_t, QByteArray, QByteArray) {}

fingerForm::AnswerHandler fingerForm::answerHandler(Command command)
{
    switch (command) {
    case Command::SetAutoDacPowerUp:
    case Command::ClearCalibration:
    case Command::SetPressReleaseThreshold:
    case Command::SetProxReleaseThreshold:
    case Command::SetExcitation:
    case Command::SetRange:
    case Command::SetFilter:
    case Command::SetProxClearTouch:
    case Command::SetTimeout:
    case Command::SetCalibrationPoint:
    case Command::SetChannelThreshold:
    case Command::SetTouchThreshold:
    case Command::SetGroupCalibration:
    case Command::SetTemperature:
    case Command::RestoreFactory:
    case Command::EnableChannel:
    case Command::ResetChannel:
    case Command::SetSendType:
    case Command::SetSerialNumber:
        return &fingerForm::acknowledged;
    case Command::SetMode:
    case Command::AutoDac:
    case Command::AutoThreshold:
    case Command::ResetAllChannels:
    case Command::Reset:
        return &fingerForm::done;
    case Command::SetIicAddress:
        return &fingerForm::addressSet;
    default:
        return readHandler(command);
    }
}

fingerForm::AnswerHandler fingerForm::readHandler(Command command)
{
    switch (command) {
    case Command::GetAutoDacPowerUp:
        return &fingerForm::showAutoDacPowerUp;
    case Command::GetPressReleaseThreshold:
        return &fingerForm::showPressReleaseThreshold;
    case Command::GetProxReleaseThreshold:
        return &fingerForm::showProxReleaseThreshold;
    case Command::GetDac:
        return &fingerForm::showDac;
    case Command::GetExcitation:
        return &fingerForm::showExcitation;
    case Command::GetRange:
        return &fingerForm::showRange;
    case Command::GetFilter:
        return &fingerForm::showFilter;
    case Command::GetProxClearTouch:
        return &fingerForm::showProxClearTouch;
    case Command::GetTimeout:
        return &fingerForm::showTimeout;
    case Command::GetSensorNum:
        return &fingerForm::storeSensorNum;
    case Command::GetCalibration:
        return &fingerForm::showCalibration;
    case Command::GetThreshold:
        return &fingerForm::showThreshold;
    case Command::GetCalibrationForces:
        return &fingerForm::showCalibrationForces;
    case Command::GetCalibrationState:
        return &fingerForm::showCalibrationState;
    case Command::GetTemperature:
        return &fingerForm::showTemperature;
    case Command::GetVersion:
        return &fingerForm::showVersion;
    case Command::GetSerialNumber:
        return &fingerForm::showSerialNumber;
    case Command::GetProgram:
        return &fingerForm::showProgram;
    case Command::GetRunTime:
        return &fingerForm::showRunTime;
    default:
        return &fingerForm::unknownAnswer;
    }
}

// A short acknowledgement has no status and counts as good.
void fingerForm::acknowledged(const QByteArray &req, const QByteArray &rsp)
{
    const QPointer<fingerForm> self(this);
    const Command command = commandOf(req);
    const QByteArray name = nameOf(req);
    const uint8_t status = FrameReader(rsp).byteAt(7);
    if (status == 0) {
        qDebug("%s:成功", name.constData());
    } else {
        qDebug("%s:失败%d", name.constData(), status);
        warn(QString::fromUtf8(name) + QLatin1Char(':') + QString::number(status));
    }
    // The box ran an event loop, in which the sensor may have gone and the panel with it.
    if (self && (command == Command::SetExcitation || command == Command::SetRange))
        rereadLater(kParameterRereadMs);
}

void fingerForm::done(const QByteArray &req, const QByteArray &)
{
    qDebug("%s:成功", nameOf(req).constData());
}

void fingerForm::addressSet(const QByteArray &req, const QByteArray &rsp)
{
    const QByteArray name = nameOf(req);
    if (FrameReader(rsp).byteAt(7) == FrameReader(req).byteAt(7)) {
        qDebug("%s:成功", name.constData());
        return;
    }
    qDebug("%s:失败", name.constData());
    warn(QString::fromUtf8(name));
}

void fingerForm::unknownAnswer(const QByteArray &req, const QByteArray &rsp)
{
    if (FrameReader(rsp).byteAt(kCommandAt) != 0)
        qDebug("rsp cmd not found");
    else
        qDebug("不支持的命令:%s", nameOf(req).constData());
}

void fingerForm::showAutoDacPowerUp(const QByteArray &, const QByteArray &rsp)
{
    ui->chkbtnAutoDacPowerUp->setCheckState(checkState(FrameReader(rsp).signedAt(7)));
}

void fingerForm::showPressReleaseThreshold(const QByteArray &, const QByteArray &rsp)
{
    const FrameReader reader(rsp);
    ui->spbPressReleaseThreshold->setValue(spinValue(reader.u32At(kPayloadAt)));
    ui->spbPressReleaseThresholdScale->setValue(reader.signedAt(8));
}

void fingerForm::showProxReleaseThreshold(const QByteArray &, const QByteArray &rsp)
{
    const FrameReader reader(rsp);
    ui->spbProxReleaseThreshold->setValue(spinValue(reader.u32At(kPayloadAt)));
    ui->spbProxReleaseThresholdScale->setValue(reader.signedAt(8));
}

void fingerForm::showDac(const QByteArray &, const QByteArray &rsp)
{
    const FrameReader reader(rsp);
    QVector<unsigned char> first;
    QVector<unsigned char> second;
    QVector<unsigned short> third;
    for (int i = 0; i < channelCount(); ++i) {
        const int position = kPayloadAt + 4 * i;
        first += reader.byteAt(position);
        second += reader.byteAt(position + 1);
        third += reader.u16At(position + 2);
    }
    setDac(first, second, third);
}

void fingerForm::showExcitation(const QByteArray &, const QByteArray &rsp)
{
    if (holdsPerChannel(rsp, 1, channelCount()))
        setExcF(bytesOf(FrameReader(rsp), kPayloadAt, channelCount()));
}

void fingerForm::showRange(const QByteArray &, const QByteArray &rsp)
{
    if (holdsPerChannel(rsp, 1, channelCount()))
        setRange(bytesOf(FrameReader(rsp), kPayloadAt, channelCount()));
}

void fingerForm::showFilter(const QByteArray &, const QByteArray &rsp)
{
    const int channels = channelCount();
    if (!holdsPerChannel(rsp, 6, channels))
        return;
    const FrameReader reader(rsp);
    QVector<float> third;
    for (int i = 0; i < channels; ++i)
        third += reader.floatAt(kPayloadAt + 2 * channels + 4 * i);
    setFilter(bytesOf(reader, kPayloadAt, channels), bytesOf(reader, kPayloadAt + channels, channels), third);
}

void fingerForm::showProxClearTouch(const QByteArray &, const QByteArray &rsp)
{
    const FrameReader reader(rsp);
    ui->chkbtnProxClearTouch->setCheckState(checkState(reader.signedAt(kPayloadAt)));
    ui->spbProxClearTouchTimeout->setValue(spinValue(reader.u32At(5)));
}

void fingerForm::showTimeout(const QByteArray &, const QByteArray &rsp)
{
    if (holdsPerChannel(rsp, 4, channelCount()))
        setTimeout(wordsOf(FrameReader(rsp), kPayloadAt, channelCount()));
}

void fingerForm::storeSensorNum(const QByteArray &, const QByteArray &rsp)
{
    const FrameReader reader(rsp);
    sensorNum0 = reader.byteAt(5);
    sensorNum1 = reader.byteAt(6);
    sensorNum2 = reader.byteAt(7);
    sensorNum3 = reader.byteAt(8);
}

void fingerForm::showThreshold(const QByteArray &, const QByteArray &rsp)
{
    if (holdsPerChannel(rsp, 4, channelCount()))
        setThreshold(wordsOf(FrameReader(rsp), kPayloadAt, channelCount()));
}

void fingerForm::showTemperature(const QByteArray &, const QByteArray &rsp)
{
    const uint16_t hundredths = FrameReader(rsp).u16At(kPayloadAt);
    qDebug("temp:%d", hundredths);
    ui->lbTemp->setText(QString::number(hundredths / 100.0, 'f', 2));
}

void fingerForm::showVersion(const QByteArray &, const QByteArray &rsp)
{
    ui->lbVersionDate->setText(textAt(rsp, 4, 11));
    ui->lbVersionTime->setText(textAt(rsp, 15, 8));
}

void fingerForm::showSerialNumber(const QByteArray &, const QByteArray &rsp)
{
    const int length = FrameReader(rsp).byteAt(kPayloadAt);
    ui->lbSN->setText(textAt(rsp, 5, std::min(length, kSerialNumberMax)));
}

void fingerForm::showProgram(const QByteArray &, const QByteArray &rsp)
{
    const FrameReader reader(rsp);
    ui->lbVersion->setText(
        QString::asprintf("%d.%d.%d", reader.byteAt(4), reader.byteAt(5), reader.byteAt(6)));
    fwPrg = reader.byteAt(7);
}

void fingerForm::showRunTime(const QByteArray &, const QByteArray &rsp)
{
    ui->lbRunTime->setText(QString::number(FrameReader(rsp).u32At(5)));
}
