#include "recording/recording_folder.h"

#include <QCoreApplication>
#include <QDir>

QString recordingFolder()
{
    const QDir beside(QCoreApplication::applicationDirPath());
    const QString name = QStringLiteral("data");
    if (!beside.exists(name))
        beside.mkdir(name);
    return QDir::toNativeSeparators(beside.filePath(name));
}
