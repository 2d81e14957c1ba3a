#include "update/success_text.h"

#include <QObject>

QString updateSuccessText(qint64 elapsedMs)
{
    return QObject::tr("更新成功,用时：") +
           QString::asprintf("%lld.%lld秒", elapsedMs / 1000, elapsedMs % 1000);
}
