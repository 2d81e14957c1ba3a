#include "views/class_finger.h"

#include <QMessageBox>

#include <algorithm>
#include <iterator>

namespace {

constexpr uint8_t kNoProgramId = 0xFF;

void warn(const QString &title, const QString &text)
{
    QMessageBox::warning(nullptr, title, text, QMessageBox::Ok);
}

void auditChannels(const finger_info_ts &row)
{
    if (row.chNum == row.forceChNum + row.sProxNum + row.mProxNum)
        return;
    warn(QObject::tr("传感器通道数量错误"), QObject::tr("通道数:%1.%2,%3,%4")
                                                .arg(row.chNum)
                                                .arg(row.forceChNum)
                                                .arg(row.sProxNum)
                                                .arg(row.mProxNum));
}

void auditLength(const finger_info_ts &row, uint8_t blockBytes)
{
    const uint16_t length = sampleLength(row, blockBytes);
    if (length == row.packLen)
        return;
    warn(QObject::tr("传感器数据长度错误"),
         QObject::tr("数据长度不匹配:%1,长度:%2 / %3")
             .arg(QString::fromUtf8(row.name), QString::number(row.packLen), QString::number(length)));
}

} // namespace

class_finger::class_finger(unsigned char prg, QWidget *view)
    : class_finger(prg, view, FingerRows{finger_infos, std::size(finger_infos)})
{}

class_finger::class_finger(unsigned char prg, QWidget *view, const FingerRows &rows)
{
    yddsLen = auditRows(rows);
    if (prg != kNoProgramId)
        takeRow(prg, view, rows);
}

unsigned char class_finger::auditRows(const FingerRows &rows)
{
    uint8_t blockBytes = 0;
    for (const finger_info_ts &row : rows) {
        auditChannels(row);
        if (const uint8_t known = sampleBlockLength(row.yddsFmt); known != 0)
            blockBytes = known;
        else
            warn(QObject::tr("错误"), QObject::tr("三维力数据格式错误"));
        auditLength(row, blockBytes);
    }
    return blockBytes;
}

void class_finger::takeRow(unsigned char prg, QWidget *view, const FingerRows &rows)
{
    const auto *row =
        std::find_if(rows.begin(), rows.end(), [prg](const finger_info_ts &each) { return each.prg == prg; });
    if (row == rows.end()) {
        qDebug("not found finger prg");
        warn(QObject::tr("传感器类型错误"), QObject::tr("未识别传感器类型%1").arg(prg));
        return;
    }
    modelIdx = static_cast<unsigned char>(row - rows.begin());
    info = row;
    if (const uint8_t known = sampleBlockLength(row->yddsFmt); known != 0)
        yddsLen = known;
    widget = view;
}

unsigned char class_finger::parseData(QByteArray data)
{
    if (modelIdx == 0xFF)
        return 3;
    switch (decodeSample(data, *info, yddsLen, m_sample)) {
    case SampleRefusal::Length:
        qDebug("len err:%d,%d", data.size(), info->packLen);
        return 1;
    case SampleRefusal::Frame:
        qDebug("chk err");
        return 2;
    case SampleRefusal::None:
        break;
    }
    clearLists();
    seq = m_sample.counter;
    tellChannels();
    tellBlocks();
    tellProximity();
    for (const SampleNumber &status : qAsConst(m_sample.status)) {
        setErrCode(static_cast<unsigned char>(status.value));
        statusList.append(status.text);
        dataList.append(status.text);
    }
    Q_EMIT signals.si_dataUpdate();
    return 0;
}

void class_finger::clearLists()
{
    for (QVector<QString> *list : {&rawList, &sProxList, &mProxList, &proxList, &statusList, &dataList})
        list->clear();
    yddsList.clear();
}

void class_finger::tellChannels()
{
    for (int i = 0; i < m_sample.channels.size(); ++i) {
        const auto channel = static_cast<unsigned char>(i);
        const SampleNumber &number = m_sample.channels.at(i);
        setData(channel, number.value);
        setTouchState(channel, (number.value & 1U) != 0);
        if (i < m_sample.forces.size())
            setPress(channel, m_sample.forces.at(i), info->range);
        rawList.append(number.text);
        dataList.append(number.text);
    }
    setPressNList(m_sample.forces, info->range);
}

void class_finger::tellBlocks()
{
    for (int i = 0; i < m_sample.blocks.size(); ++i) {
        const SampleBlock &block = m_sample.blocks.at(i);
        setYdds(static_cast<unsigned char>(i), block.normal, block.tangential, block.direction);
        yddsList.append({block.normalText, block.tangentialText, block.directionText});
        dataList << block.normalText << block.tangentialText << block.directionText;
    }
}

void class_finger::tellProximity()
{
    const auto keep = [this](const QString &text, QVector<QString> &list) {
        list.append(text);
        proxList.append(text);
        dataList.append(text);
    };
    for (int i = 0; i < m_sample.selfProximity.size(); ++i) {
        setSProx(static_cast<unsigned char>(i), m_sample.selfProximity.at(i).value);
        keep(m_sample.selfProximity.at(i).text, sProxList);
    }
    for (int i = 0; i < m_sample.mutualProximity.size(); ++i) {
        setMProx(static_cast<unsigned char>(i), m_sample.mutualProximity.at(i).value);
        keep(m_sample.mutualProximity.at(i).text, mProxList);
    }
}
