#include "panel/AnswerTable.h"

#include "protocol/class_sensorCmd.h"
#include "protocol/payloads.h"

#include <QDebug>
#include <QMessageBox>

#include <utility>

namespace {

constexpr int kStatusAt = 7;
constexpr int kAddressValueAt = 7;

constexpr Command kAcknowledged[] = {
    Command::SetAutoDacPowerUp,
    Command::ClearCalibration,
    Command::SetPressReleaseThreshold,
    Command::SetProxReleaseThreshold,
    Command::SetExcitation,
    Command::SetRange,
    Command::SetFilter,
    Command::SetProxClearTouch,
    Command::SetTimeout,
    Command::SetCalibrationPoint,
    Command::SetChannelThreshold,
    Command::SetTouchThreshold,
    Command::SetGroupCalibration,
    Command::SetTemperature,
    Command::RestoreFactory,
    Command::EnableChannel,
    Command::ResetChannel,
    Command::SetSendType,
    Command::SetSerialNumber,
};
/// Any answer to these is a good one.
constexpr Command kAnswered[] = {
    Command::SetMode, Command::AutoDac, Command::AutoThreshold, Command::ResetAllChannels, Command::Reset,
};

QByteArray nameOf(const QByteArray &request)
{
    return class_sensorCmd::getStr(FrameReader(request).byteAt(kCommandAt)).toUtf8();
}

void warn(const QString &text)
{
    QMessageBox::warning(nullptr, QObject::tr("命令错误"), text, QMessageBox::Ok);
}

void logSuccess(const QByteArray &req, const QByteArray &)
{
    qDebug("%s:成功", nameOf(req).constData());
}

void compareAddress(const QByteArray &req, const QByteArray &rsp)
{
    if (FrameReader(rsp).byteAt(kAddressValueAt) == FrameReader(req).byteAt(kAddressValueAt)) {
        logSuccess(req, rsp);
        return;
    }
    const QByteArray name = nameOf(req);
    qDebug("%s:失败", name.constData());
    warn(QString::fromUtf8(name));
}

void logUnknown(const QByteArray &req, const QByteArray &rsp)
{
    if (FrameReader(rsp).byteAt(kCommandAt) != 0)
        qDebug("rsp cmd not found");
    else
        qDebug("不支持的命令:%s", nameOf(req).constData());
}

} // namespace

void acknowledge(const QByteArray &req, const QByteArray &rsp)
{
    const uint8_t status = FrameReader(rsp).byteAt(kStatusAt);
    if (status == 0) {
        logSuccess(req, rsp);
        return;
    }
    const QByteArray name = nameOf(req);
    qDebug("%s:失败%d", name.constData(), status);
    warn(QString::fromUtf8(name) + QLatin1Char(':') + QString::number(status));
}

AnswerTable::AnswerTable()
{
    for (const Command command : kAcknowledged)
        add(command, acknowledge);
    for (const Command command : kAnswered)
        add(command, logSuccess);
    add(Command::SetIicAddress, compareAddress);
}

void AnswerTable::add(Command command, Handler handler)
{
    m_handlers[command] = std::move(handler);
}

void AnswerTable::take(const QByteArray &req, const QByteArray &rsp) const
{
    if (req.size() <= kCommandAt || rsp.size() <= kCommandAt) {
        qDebug("cmd req len err");
        return;
    }
    qDebug("req:%s   %s", nameOf(req).constData(), req.toHex().constData());
    qDebug("rsp:%s", rsp.toHex().constData());
    const auto row = m_handlers.find(static_cast<Command>(FrameReader(req).byteAt(kCommandAt)));
    // A copy, for the table may not outlive the box that a handler opens.
    const Handler handler = row == m_handlers.end() ? Handler(logUnknown) : row->second;
    handler(req, rsp);
}
