#include "app/class_settings.h"
#include "app/qmain.h"
#include "demo/Tour.h"
#include "demo/demo_image.h"
#include "sim/SimBench.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <memory>
#include <optional>

namespace {

struct Options
{
    QString tourFolder; ///< empty: no tour
    QString language;   ///< empty: as it was left
};

/// A tour must neither see nor change what the user has set.
std::unique_ptr<QTemporaryDir> separateSettings()
{
    auto folder = std::make_unique<QTemporaryDir>();
    qputenv("XDG_DATA_HOME", folder->path().toLocal8Bit());
    return folder;
}

std::unique_ptr<Tour> pendingTour;

// The tool makes its application object itself, so the tour is hung on when that object comes into being.
void startPendingTour()
{
    if (pendingTour)
        QTimer::singleShot(0, pendingTour.get(), &Tour::run);
}

QVector<TourStop> stopsOn(SimBench &bench)
{
    return {
        {QStringLiteral("uart"), bench.serialBus().portName(), SimBench::kSerialSensors},
        {QStringLiteral("ch341"), QString::number(SimBench::kCh341Id), SimBench::kCh341Sensors},
        {QStringLiteral("ch347"), QString::number(SimBench::kCh347Id), SimBench::kCh347Sensors},
    };
}

/// Leaves Qt's own options to the application object that the tool makes, which takes them out.
QList<QCommandLineOption> optionsOfQt()
{
    const QString value = QStringLiteral("value");
    QList<QCommandLineOption> options;
    for (const char *name :
         {"platform", "platformpluginpath", "platformtheme", "plugin", "qwindowgeometry", "qwindowtitle",
          "qwindowicon", "geometry", "title", "icon", "display", "name", "session", "style", "stylesheet"})
        options.append({QString::fromLatin1(name), QString(), value});
    for (const char *name : {"reverse", "widgetcount", "nograb", "dograb"})
        options.append(QCommandLineOption(QString::fromLatin1(name)));
    for (QCommandLineOption &option : options)
        option.setFlags(QCommandLineOption::HiddenFromHelp);
    return options;
}

int refuse(const QString &why)
{
    std::fprintf(stderr, "%s: %s\n", qUtf8Printable(QCoreApplication::applicationName()),
                 qUtf8Printable(why));
    return 2;
}

/// The status to end with, when the window is not to open.
std::optional<int> parse(int argc, char **argv, Options &options)
{
    // The parser asks an application object for the program's name, and the tool's own comes with a window.
    const QCoreApplication application(argc, argv);
    const QCommandLineOption tour(
        QStringLiteral("tour"),
        QStringLiteral("Drives the window, writes pictures into the folder and ends."),
        QStringLiteral("folder"));
    const QCommandLineOption language(QStringLiteral("language"), QStringLiteral("Starts in that language."),
                                      QStringLiteral("en|zh_cn"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "The sensor tool on a simulated bench. Options of Qt, such as -platform and -style, work too."));
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Displays this text."));
    const QCommandLineOption version = parser.addVersionOption();
    parser.addOptions({help, tour, language});
    parser.addOptions(optionsOfQt());
    if (!parser.parse(QCoreApplication::arguments()))
        return refuse(parser.errorText());
    if (parser.isSet(help) || parser.isSet(version)) {
        const QString text = parser.isSet(help) ? parser.helpText()
                                                : QCoreApplication::applicationName() +
                                                      QStringLiteral(" " TACTILE_VERSION "\n");
        std::printf("%s", qUtf8Printable(text));
        return 0;
    }
    options = {parser.value(tour), parser.value(language)};
    if (!parser.positionalArguments().isEmpty())
        return refuse(
            QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().constFirst()));
    if (parser.isSet(language) && options.language != QLatin1String("en") &&
        options.language != QLatin1String("zh_cn"))
        return refuse(QStringLiteral("Unknown language '%1'.").arg(options.language));
    return std::nullopt;
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(startPendingTour)

int main(int argc, char **argv)
{
    QCoreApplication::setApplicationName(QStringLiteral("tactile-host-demo"));
    Options options;
    if (const std::optional<int> status = parse(argc, argv, options))
        return *status;

    std::unique_ptr<QTemporaryDir> settings;
    if (!options.tourFolder.isEmpty())
        settings = separateSettings();
    if (!options.language.isEmpty())
        class_settings::set(QStringLiteral("language"), options.language, QStringLiteral("config"));

    offerDemoImage();

    SimBench bench;
    if (!options.tourFolder.isEmpty())
        pendingTour = std::make_unique<Tour>(options.tourFolder, stopsOn(bench));
    const int status = qMain(argc, argv);
    pendingTour.reset();
    return status;
}
