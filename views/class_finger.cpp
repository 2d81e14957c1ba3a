#include "views/class_finger.h"

#include "protocol/frames.h"

#include <QMessageBox>
#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

constexpr int kHeaderLength = 6;
constexpr int kSumLength = 2;
constexpr int kProximityBytes = 3;
constexpr uint8_t kSampleCommand = 0x85;
constexpr uint8_t kNoProgramId = 0xFF;

// Frames of this block format carry their one self-capacitance value inside the first block.
constexpr uint8_t kFormatWithProximity = 2;
constexpr int kProximityInBlock = 18;

struct ForceBlock
{
    float normal;
    float tangential;
    uint16_t direction;
};

uint32_t littleEndian(const uint8_t *bytes, int count)
{
    uint32_t value = 0;
    for (int i = count - 1; i >= 0; --i)
        value = (value << 8) | bytes[i];
    return value;
}

uint16_t word(const uint8_t *bytes)
{
    return qFromLittleEndian<uint16_t>(bytes);
}

float real(const uint8_t *bytes)
{
    const auto bits = qFromLittleEndian<uint32_t>(bytes);
    float value = 0;
    static_assert(sizeof value == sizeof bits);
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// 0 for an unknown format.
uint8_t blockLength(uint8_t format)
{
    switch (format) {
    case 2:
        return 22;
    case 3:
        return 4;
    case 4:
        return 6;
    case 5:
        return 10;
    default:
        return 0;
    }
}

ForceBlock decodeBlock(uint8_t format, const uint8_t *bytes)
{
    switch (format) {
    case 2:
        return {real(bytes), real(bytes + 8), word(bytes + 16)};
    case 3:
        return {static_cast<float>(bytes[0]) / 10.0F, static_cast<float>(bytes[1]) / 10.0F, word(bytes + 2)};
    case 4:
        return {static_cast<float>(word(bytes)) / 100.0F, static_cast<float>(word(bytes + 2)) / 100.0F,
                word(bytes + 4)};
    default:
        return {real(bytes), real(bytes + 4), word(bytes + 8)};
    }
}

uint16_t expectedLength(const finger_info_ts &row, uint8_t blockBytes)
{
    int length =
        kHeaderLength + row.chBytes * row.chNum + kProximityBytes * row.mProxNum + row.hasStatus + kSumLength;
    if (row.yddsFmt == kFormatWithProximity)
        length += blockLength(kFormatWithProximity) * row.yddsNum;
    else
        length += blockBytes * row.yddsNum + kProximityBytes * row.sProxNum;
    return static_cast<uint16_t>(length);
}

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
    const uint16_t length = expectedLength(row, blockBytes);
    if (length == row.packLen)
        return;
    warn(QObject::tr("传感器数据长度错误"),
         QObject::tr("数据长度不匹配:%1,长度:%2 / %3")
             .arg(QString::fromUtf8(row.name), QString::number(row.packLen), QString::number(length)));
}

QString newtonText(float newtons)
{
    return QString::number(static_cast<double>(newtons), 'f', 2);
}

/// Newtons of a raw channel value, which counts as signed: one with the top bit set is no force.
float channelForce(int32_t raw)
{
    return raw > 1 ? static_cast<float>(raw) / 1000.0F : 0.0F;
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
        if (const uint8_t known = blockLength(row.yddsFmt); known != 0)
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
    if (const uint8_t known = blockLength(row->yddsFmt); known != 0)
        yddsLen = known;
    widget = view;
}

unsigned char class_finger::parseData(QByteArray data)
{
    if (modelIdx == 0xFF)
        return 3;
    if (data.size() != info->packLen) {
        qDebug("len err:%d,%d", data.size(), info->packLen);
        return 1;
    }
    if (!frameFits(data)) {
        qDebug("chk err");
        return 2;
    }
    clearLists();
    const uint8_t *frame = frameBytes(data);
    seq = frame[4];
    const uint8_t *firstBlock = decodeChannels(frame + kHeaderLength);
    const uint8_t *proximity = decodeBlocks(firstBlock);
    proximity = decodeSProx(proximity, firstBlock);
    decodeStatus(decodeMProx(proximity));
    Q_EMIT signals.si_dataUpdate();
    return 0;
}

bool class_finger::frameFits(const QByteArray &data) const
{
    const uint8_t *frame = frameBytes(data);
    return frame[0] == 0x55 && frame[1] == 0xAA && frame[3] == kSampleCommand && frameSumFits(data);
}

void class_finger::clearLists()
{
    for (QVector<QString> *list : {&rawList, &sProxList, &mProxList, &proxList, &statusList, &dataList})
        list->clear();
    yddsList.clear();
}

const uint8_t *class_finger::decodeChannels(const uint8_t *bytes)
{
    QVector<float> forces;
    forces.reserve(info->forceChNum);
    for (int i = 0; i < info->chNum; ++i, bytes += info->chBytes) {
        const auto channel = static_cast<unsigned char>(i);
        const uint32_t value = littleEndian(bytes, info->chBytes);
        setData(channel, value);
        setTouchState(channel, (value & 1U) != 0);
        if (i < info->forceChNum) {
            const float newtons = channelForce(static_cast<int32_t>(value));
            setPress(channel, newtons, info->range);
            forces.append(newtons);
        }
        const QString text = QString::number(static_cast<int32_t>(value));
        rawList.append(text);
        dataList.append(text);
    }
    setPressNList(forces, info->range);
    return bytes;
}

const uint8_t *class_finger::decodeBlocks(const uint8_t *bytes)
{
    if (blockLength(info->yddsFmt) == 0)
        return bytes + yddsLen * info->yddsNum;
    for (int i = 0; i < info->yddsNum; ++i, bytes += yddsLen) {
        const ForceBlock block = decodeBlock(info->yddsFmt, bytes);
        setYdds(static_cast<unsigned char>(i), block.normal, block.tangential, block.direction);
        const ydds_str_ts texts{newtonText(block.normal), newtonText(block.tangential),
                                QString::number(block.direction)};
        yddsList.append(texts);
        dataList << texts.normal << texts.tangential << texts.direction;
    }
    return bytes;
}

const uint8_t *class_finger::decodeSProx(const uint8_t *bytes, const uint8_t *firstBlock)
{
    const auto take = [this](int index, uint32_t value) {
        setSProx(static_cast<unsigned char>(index), value);
        const QString text = QString::number(value);
        sProxList.append(text);
        proxList.append(text);
        dataList.append(text);
    };
    if (info->yddsFmt == kFormatWithProximity) {
        take(0, littleEndian(firstBlock + kProximityInBlock, 4));
        return bytes;
    }
    for (int i = 0; i < info->sProxNum; ++i, bytes += kProximityBytes)
        take(i, littleEndian(bytes, kProximityBytes));
    return bytes;
}

const uint8_t *class_finger::decodeMProx(const uint8_t *bytes)
{
    for (int i = 0; i < info->mProxNum; ++i, bytes += kProximityBytes) {
        const uint32_t value = littleEndian(bytes, kProximityBytes);
        setMProx(static_cast<unsigned char>(i), value);
        const QString text = QString::number(value);
        mProxList.append(text);
        proxList.append(text);
        dataList.append(text);
    }
    return bytes;
}

void class_finger::decodeStatus(const uint8_t *bytes)
{
    if (info->hasStatus != 1)
        return;
    setErrCode(*bytes);
    const QString text = QString::number(*bytes);
    statusList.append(text);
    dataList.append(text);
}
