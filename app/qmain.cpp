#include "app/qmain.h"

#include "app/Widget.h"
#include "app/class_settings.h"

#include <QApplication>
#include <QTranslator>

namespace {

// The texts in the source are Chinese, so only English needs a table.
void loadTranslation(QTranslator &translator)
{
    const QString language =
        class_settings::get(QStringLiteral("language"), QStringLiteral("zh_cn"), QStringLiteral("config"));
    if (language == QLatin1String("en") && !translator.load(QStringLiteral(":/en.qm")))
        qDebug("load trans err");
    if (translator.isEmpty())
        return;
    if (QCoreApplication::installTranslator(&translator))
        qDebug("load trans success");
    else
        qDebug("install trasn err");
}

} // namespace

int qMain(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);

    // Resources of a static library stay out of the program unless something asks for them.
    Q_INIT_RESOURCE(translations);
    QTranslator translator;
    loadTranslation(translator);

    Widget widget;
    widget.show();
    return QApplication::exec();
}
