#include "recording/whole_lines.h"

#include <QFile>

QString writeWhole(QFile &file, const QByteArray &bytes)
{
    const qint64 sizeBefore = file.size();
    const qint64 first = file.write(bytes);
    if (first == bytes.size())
        return {};
    // The rest says why a part did not fit.
    const QByteArray rest = bytes.mid(static_cast<int>(std::max<qint64>(first, 0)));
    if (first > 0 && file.write(rest) == rest.size())
        return {};
    QString reason = file.errorString();
    if (!file.isSequential())
        file.resize(sizeBefore);
    return reason;
}

QString appendToFile(const QString &path, const std::function<QByteArray(bool isEmpty)> &compose)
{
    QFile file(path);
    if (!file.open(QIODevice::Append | QIODevice::Unbuffered))
        return file.errorString();
    return writeWhole(file, compose(file.size() == 0));
}
