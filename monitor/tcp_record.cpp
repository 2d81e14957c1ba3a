#include "monitor/tcp_record.h"

#include "views/class_finger.h"

#include <QtEndian>

namespace {

/// Calls `use` with the text of each value but the status, in the order of a record.
template<typename Use>
void forEachValue(const class_finger &decoder, Use use)
{
    const auto useAll = [&use](const QVector<QString> &values) {
        for (const QString &value : values)
            use(value);
    };
    useAll(decoder.rawList);
    for (const auto &block : decoder.yddsList) {
        use(block.normal);
        use(block.tangential);
        use(block.direction);
    }
    useAll(decoder.sProxList);
    useAll(decoder.mProxList);
}

QByteArray fireWater(const class_finger &decoder)
{
    QByteArray record;
    forEachValue(decoder, [&record](const QString &value) { record += value.toLatin1() + ','; });
    if (decoder.statusList.isEmpty())
        record.chop(1);
    else
        record += decoder.statusList.first().toLatin1();
    return record + "\r\n";
}

void appendFloat(QByteArray &record, float value)
{
    char bytes[sizeof value];
    qToLittleEndian(value, bytes);
    record.append(bytes, sizeof bytes);
}

QByteArray justFloat(const class_finger &decoder)
{
    QByteArray record;
    const auto append = [&record](const QString &value) { appendFloat(record, value.toFloat()); };
    forEachValue(decoder, append);
    if (!decoder.statusList.isEmpty())
        append(decoder.statusList.first());
    return record + QByteArray::fromRawData("\x00\x00\x80\x7F", 4);
}

} // namespace

QByteArray tcpRecord(TcpFormat format, const class_finger &decoder)
{
    switch (format) {
    case TcpFormat::FireWater:
        return fireWater(decoder);
    case TcpFormat::JustFloat:
        return justFloat(decoder);
    }
    return {};
}
