#include "demo/demo_image.h"

#include "app/class_settings.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

void offerDemoImage()
{
    const QString key = QStringLiteral("UPDATE/FILE_PATH");
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    const QString path = folder.filePath(QStringLiteral("demo-firmware.hex"));
    folder.mkpath(QStringLiteral("."));
    QFile::remove(path);
    if (QFile::copy(QStringLiteral(":/demo/demo-firmware.hex"), path) && class_settings::get(key).isEmpty())
        class_settings::set(key, QDir::toNativeSeparators(path));
}
