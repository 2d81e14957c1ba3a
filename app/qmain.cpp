#include "app/qmain.h"

#include "app/Widget.h"
#include "app/class_settings.h"
#include "recording/recording_folder.h"

#include <QApplication>
#include <QDir>
#include <QIcon>
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
    qDebug("tactile-host " TACTILE_VERSION);
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    const QString place = QCoreApplication::applicationDirPath();
    if (!canRecord(place))
        qDebug("recordings cannot be written: %s is not writable",
               qUtf8Printable(QDir::toNativeSeparators(place)));
    // The picture of the installed program; without one the system shows its own.
    QApplication::setWindowIcon(
        QIcon(place + QStringLiteral("/../share/icons/hicolor/128x128/apps/tactile-host.png")));
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);

    // Resources of a static library stay out of the program unless something asks for them.
    Q_INIT_RESOURCE(translations);
    QTranslator translator;
    loadTranslation(translator);

    Widget widget;
    widget.show();
    return QApplication::exec();
}
