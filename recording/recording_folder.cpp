#include "recording/recording_folder.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>

QString recordingFolder()
{
    const QDir beside(QCoreApplication::applicationDirPath());
    const QString name = QStringLiteral("data");
    if (!beside.exists(name))
        beside.mkdir(name);
    return QDir::toNativeSeparators(beside.filePath(name));
}

QString recordingName(const QString &folder, uint8_t infIdx, uint8_t addr, const QString &extension)
{
    return folder + QDir::separator() +
           QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd_hhmmss_zzz")) +
           QString::asprintf("__%d__0x%02X.", infIdx + 1, addr) + extension;
}
