#include "app/class_settings.h"
#include "tests/fuzz/FuzzBytes.h"
#include "tests/fuzz/fuzz_inputs.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

void fuzzSettings(const uint8_t *input, std::size_t size)
{
    static const QTemporaryDir home;
    qputenv("XDG_DATA_HOME", QFile::encodeName(home.path()));
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(folder);
    FuzzBytes bytes(input, size);
    const QString value = QString::fromUtf8(bytes.take(bytes.byte() % 16));
    const QByteArray whole = bytes.take(static_cast<std::ptrdiff_t>(size));
    QFile file(folder + QStringLiteral("/setting.ini"));
    fuzzCheck(file.open(QIODevice::WriteOnly) && file.write(whole) == whole.size(), "a file can be written");
    file.close();

    const QString key = QStringLiteral("UPDATE/FILE_PATH");
    const QString read = class_settings::get(key, QStringLiteral("none"));
    fuzzCheck(class_settings::get(key, read) == read, "what was read is read again");
    class_settings::set(key, value);
    fuzzCheck(class_settings::get(key) == value || class_settings::get(key) == read,
              "a value is stored, or the file is left as it is");
}
