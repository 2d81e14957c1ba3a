#include "link/device_ids.h"

QStringList deviceIdTexts(const QVector<uint16_t> &ids)
{
    QStringList texts;
    texts.reserve(ids.size());
    for (const uint16_t id : ids)
        texts.append(QString::number(id));
    return texts;
}
