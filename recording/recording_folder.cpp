#include "recording/recording_folder.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QTemporaryFile>

QString recordingFolder()
{
    const QDir beside(QCoreApplication::applicationDirPath());
    const QString name = QStringLiteral("data");
    if (!beside.exists(name))
        beside.mkdir(name);
    return QDir::toNativeSeparators(beside.filePath(name));
}

bool canRecord(const QString &place)
{
    const QDir beside(place);
    const QString name = QStringLiteral("data");
    // Only an attempt tells: permissions say nothing of a medium that is read-only or full.
    QTemporaryFile file(
        beside.filePath(beside.exists(name) ? name + QLatin1String("/XXXXXX") : QStringLiteral("XXXXXX")));
    return file.open();
}

QString recordingName(const QString &folder, uint8_t infIdx, uint8_t addr, const QString &extension)
{
    return folder + QDir::separator() +
           QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd_hhmmss_zzz")) +
           QString::asprintf("__%d__0x%02X.", infIdx + 1, addr) + extension;
}
