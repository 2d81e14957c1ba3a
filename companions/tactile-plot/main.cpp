#include "companions/EndSignals.h"
#include "companions/command_line.h"
#include "plotting/PlotServer.h"
#include "plotting/window/PlotWindow.h"
#include "plotting/window/plot_language.h"
#include "plotting/window/plot_picture.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTranslator>

#include <cstdio>

namespace {

constexpr quint16 kUsualPort = 1347;

/// The language of the system, where it is one of ours.
QString usualLanguage()
{
    return QLocale::system().language() == QLocale::Chinese ? QStringLiteral("zh_cn") : QStringLiteral("en");
}

struct Options
{
    QHostAddress address = QHostAddress(QHostAddress::LocalHost);
    quint16 port = kUsualPort;
    StreamFormat format = StreamFormat::Automatic;
    QString picture;
    QString language = usualLanguage();
    QStringList files;
};

/// Takes "port" or "address:port".
bool readPlace(const QString &text, Options &options)
{
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    bool isNumber = false;
    options.port = text.midRef(colon + 1).toUShort(&isNumber);
    return isNumber && (colon < 0 || options.address.setAddress(text.left(colon)));
}

bool readFormat(const QString &name, StreamFormat &format)
{
    const QStringList names{QStringLiteral("auto"), QStringLiteral("firewater"), QStringLiteral("justfloat")};
    const int index = names.indexOf(name.toLower());
    format = static_cast<StreamFormat>(index);
    return index >= 0;
}

/// The exit code if the program is to end here.
std::optional<int> readOptions(int argc, char **argv, Options &options)
{
    // Help is given without a display, too.
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Draws the samples of a sensor, live from the tool's TCP output or from recordings (*.csv)."));
    const QCommandLineOption listen(
        QStringLiteral("listen"),
        QStringLiteral(
            "Wait for the tool on this port; 1347 if nothing is said. Other computers are heard with "
            "0.0.0.0:port."),
        QStringLiteral("[address:]port"));
    const QCommandLineOption format(QStringLiteral("format"),
                                    QStringLiteral("What comes in; auto tells by the first bytes."),
                                    QStringLiteral("auto|firewater|justfloat"), QStringLiteral("auto"));
    const QCommandLineOption picture(QStringLiteral("picture"),
                                     QStringLiteral("Draw the recordings into a file (.png, .svg) and end; "
                                                    "while listening, draw what came in at the end."),
                                     QStringLiteral("file"));
    const QCommandLineOption language(QStringLiteral("language"),
                                      QStringLiteral("Speaks that language instead of the system's."),
                                      QStringLiteral("en|zh_cn"), options.language);
    parser.addOptions({listen, format, picture, language});
    parser.addPositionalArgument(QStringLiteral("files"), QStringLiteral("Recordings to open."),
                                 QStringLiteral("[files...]"));
    if (const auto code = readCommandLine(parser))
        return code;
    options.files = parser.positionalArguments();
    options.picture = parser.value(picture);
    if (parser.isSet(listen) && !options.files.isEmpty())
        return complain(WrongUse, QStringLiteral("either --listen or recordings, not both."));
    if (parser.isSet(listen) && !readPlace(parser.value(listen), options))
        return complain(WrongUse, QStringLiteral("--listen takes a port from 0 to 65535, or address:port."));
    options.language = parser.value(language).toLower();
    if (options.language != QLatin1String("en") && options.language != QLatin1String("zh_cn"))
        return complain(WrongUse, QStringLiteral("--language takes en or zh_cn."));
    if (!readFormat(parser.value(format), options.format))
        return complain(WrongUse, QStringLiteral("--format takes auto, firewater or justfloat."));
    if (parser.isSet(picture) && !isPicturePath(options.picture))
        return complain(WrongUse, QStringLiteral("--picture takes a name that ends in .png or .svg."));
    return std::nullopt;
}

bool isWithoutDisplay()
{
#ifdef Q_OS_LINUX
    return qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
           qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
#else
    return false;
#endif
}

/// Nothing if one of the files cannot be drawn; then it has been said why.
std::optional<std::vector<NamedRecording>> readFiles(const QStringList &paths)
{
    std::vector<NamedRecording> recordings;
    for (const QString &path : paths) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            complain(Failed, QStringLiteral("%1: %2.").arg(path, file.errorString()));
            return std::nullopt;
        }
        Recording recording = readRecording(file);
        if (!recording.store) {
            complain(
                Failed,
                QStringLiteral("%1 %2. Open a .csv file as the tool records it.").arg(path, recording.error));
            return std::nullopt;
        }
        recordings.push_back({QFileInfo(path).fileName(), std::move(recording)});
    }
    return recordings;
}

/// The exit code.
int savePicture(PlotWindow &window, const QString &path)
{
    if (savePlotPicture(window.plot(), path))
        return Done;
    return complain(Failed, QStringLiteral("%1 cannot be written. Choose another folder.").arg(path));
}

int showRecordings(const Options &options)
{
    auto recordings = readFiles(options.files);
    if (!recordings)
        return Failed;
    PlotWindow window;
    window.open(std::move(*recordings));
    if (!options.picture.isEmpty())
        return savePicture(window, options.picture);
    window.show();
    return QApplication::exec();
}

int showLive(const Options &options)
{
    PlotServer server(options.format);
    if (!server.listen(options.address, options.port))
        return complain(Failed, QStringLiteral("cannot listen on port %1: %2. Choose another with --listen.")
                                    .arg(options.port)
                                    .arg(server.errorString()));
    PlotWindow window;
    window.follow(server);
    window.show();
    std::printf("listening on %s port %d\n", qUtf8Printable(options.address.toString()), server.port());
    std::fflush(stdout);
    const int status = QApplication::exec();
    return options.picture.isEmpty() ? status : savePicture(window, options.picture);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication::setApplicationName(QStringLiteral("tactile-plot"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TACTILE_VERSION));
    Options options;
    if (const auto code = readOptions(argc, argv, options))
        return *code;
    if (isWithoutDisplay()) {
        if (options.picture.isEmpty())
            return complain(Failed,
                            QStringLiteral("there is no display. Set DISPLAY, or use --picture FILE."));
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }

    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    const QApplication application(argc, argv);
    QTranslator table;
    if (options.language == QLatin1String("zh_cn") && !speakChinese(table))
        return complain(Failed, QStringLiteral("the Chinese texts cannot be read. Use --language en."));
    const EndSignals endSignals([] { QCoreApplication::quit(); });
    return options.files.isEmpty() ? showLive(options) : showRecordings(options);
}
