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
    if (pendingTour != nullptr)
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

bool parse(int argc, char **argv, Options &options)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const QCommandLineOption tour(QStringLiteral("tour"),
                                  QStringLiteral("Drive the window and write pictures."),
                                  QStringLiteral("folder"));
    const QCommandLineOption language(QStringLiteral("language"), QStringLiteral("Language to start in."),
                                      QStringLiteral("en|zh_cn"));
    QCommandLineParser parser;
    parser.addOptions({tour, language});
    if (!parser.parse(arguments)) {
        std::fprintf(stderr, "%s\n%s", qUtf8Printable(parser.errorText()), qUtf8Printable(parser.helpText()));
        return false;
    }
    options = {parser.value(tour), parser.value(language)};
    return true;
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(startPendingTour)

int main(int argc, char **argv)
{
    QCoreApplication::setApplicationName(QStringLiteral("tactile-host-demo"));
    Options options;
    if (!parse(argc, argv, options))
        return 2;

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
