#include "monitor/folder_opener.h"

#include <QProcess>

void openFolder(const QString &path)
{
    QProcess::startDetached(QStringLiteral("explorer"), {QStringLiteral("/root,"), path});
}
