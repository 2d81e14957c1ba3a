#include "app/class_settings.h"

#include <QSettings>
#include <QStandardPaths>

namespace {

QString filePath(const QString &file)
{
    const QString directory = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    const QString name = file.isEmpty() ? QStringLiteral("setting") : file;
    return directory + QLatin1Char('/') + name + QStringLiteral(".ini");
}

} // namespace

QString class_settings::get(const QString &key, const QString &defaultValue, const QString &file)
{
    QSettings settings(filePath(file), QSettings::IniFormat);
    QString value = settings.value(key, defaultValue).toString();
    settings.setValue(key, value);
    return value;
}

void class_settings::set(const QString &key, const QString &value, const QString &file)
{
    QSettings settings(filePath(file), QSettings::IniFormat);
    settings.setValue(key, value);
}
