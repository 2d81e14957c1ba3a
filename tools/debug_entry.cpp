#include "tools/debug_entry.h"

#include "protocol/frames.h"

namespace {

/// Address, length and bytes, a line each.
QString transferLines(uint8_t address, const QByteArray &bytes)
{
    QStringList numbers;
    numbers.reserve(bytes.size());
    for (const char byte : bytes) {
        numbers << QString::asprintf("0x%02x", static_cast<uint8_t>(byte));
    }
    return QStringLiteral("地址:") + QString::asprintf("0x%02X", address) + QStringLiteral("\n长度:") +
           QString::number(bytes.size()) + QStringLiteral("\n命令:") + numbers.join(QLatin1Char(','));
}

QString sumVerdict(const QByteArray &bytes)
{
    if (frameSumFits(bytes)) {
        return QStringLiteral("成功");
    }
    const uint16_t sum = frameSum(bytes.left(qMax(0, bytes.size() - kSumLength)));
    return QStringLiteral("失败:") + QString::asprintf("0x%04x", sum);
}

} // namespace

QString writeEntry(uint8_t address, const QByteArray &bytes)
{
    return QStringLiteral("写:\n") + transferLines(address, bytes);
}

QString readEntry(uint8_t address, const QByteArray &bytes)
{
    return QStringLiteral("读:校验") + sumVerdict(bytes) + QLatin1Char('\n') + transferLines(address, bytes);
}

QString notConnectedEntry()
{
    return QStringLiteral("转接板未连接");
}

QString stampedEntry(const QDateTime &time, const QString &entry)
{
    return QLatin1Char('[') + time.toString(QStringLiteral("yyyy/MM/dd hh:mm:ss:zzz")) +
           QStringLiteral("]:") + entry + QLatin1Char('\n');
}
