#include "plotting/window/plot_language.h"

#include <QCoreApplication>
#include <QTranslator>

bool speakChinese(QTranslator &table)
{
    Q_INIT_RESOURCE(plot_translations);
    return table.load(QStringLiteral(":/plot/zh_cn.qm")) && QCoreApplication::installTranslator(&table);
}
