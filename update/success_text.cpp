#include "update/success_text.h"

#include <QObject>

QString updateSuccessText(std::chrono::milliseconds elapsed)
{
    const qint64 ms = elapsed.count();
    return QObject::tr("更新成功,用时：") + QString::asprintf("%lld.%lld秒", ms / 1000, ms % 1000);
}
