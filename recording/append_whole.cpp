#include "recording/append_whole.h"

#include <QFileDevice>

bool appendWhole(QFileDevice &file, const QByteArray &bytes)
{
    const qint64 sizeBefore = file.size();
    if (file.write(bytes) == bytes.size())
        return true;
    if (!file.isSequential())
        file.resize(sizeBefore);
    return false;
}
