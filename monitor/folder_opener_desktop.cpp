#include "monitor/folder_opener.h"

#include <QDesktopServices>
#include <QDir>
#include <QUrl>

void openFolder(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(QDir::fromNativeSeparators(path)));
}
