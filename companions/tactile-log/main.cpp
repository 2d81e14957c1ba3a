#include "companions/EndSignals.h"
#include "companions/command_line.h"
#include "companions/tactile-log/LogRun.h"
#include "engine/fingerThread.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QTranslator>

#include <cmath>
#include <csignal>
#include <cstdio>

#ifdef Q_OS_WIN
#    include <io.h>
#else
#    include <unistd.h>
#endif

using namespace std::chrono_literals;

namespace {

bool hasTerminal()
{
#ifdef Q_OS_WIN
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

/// Reads "500ms", "10s", "1.5h"; nothing for anything else and for more than a timer can wait.
std::optional<std::chrono::milliseconds> readDuration(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^(\\d+(?:\\.\\d+)?)(ms|s|m|h)$"));
    const QRegularExpressionMatch match = form.match(text);
    const QStringList units{QStringLiteral("ms"), QStringLiteral("s"), QStringLiteral("m"),
                            QStringLiteral("h")};
    const std::array<double, 4> lengths{1.0, 1e3, 60e3, 3600e3};
    const int unit = units.indexOf(match.captured(2));
    if (unit < 0)
        return std::nullopt;
    const double ms = std::round(match.captured(1).toDouble() * lengths.at(static_cast<std::size_t>(unit)));
    if (!(ms >= 1 && ms <= std::numeric_limits<int>::max()))
        return std::nullopt;
    return std::chrono::milliseconds(static_cast<qint64>(ms));
}

std::optional<QVector<uint8_t>> readAddresses(const QStringList &texts)
{
    QVector<uint8_t> addresses;
    for (const QString &text : texts) {
        bool isNumber = false;
        const int address = text.toInt(&isNumber, 0);
        if (!isNumber || address < 0x01 || address > 0x6F)
            return std::nullopt;
        addresses.append(static_cast<uint8_t>(address));
    }
    return addresses;
}

struct Arguments
{
    const QCommandLineOption link{QStringLiteral("link"), QStringLiteral("What the sensors hang on."),
                                  QStringLiteral("uart|ch341|ch347")};
    const QCommandLineOption device{
        QStringLiteral("device"),
        QStringLiteral("One of --list, or the path of a serial port; needed only where there are several."),
        QStringLiteral("name")};
    const QCommandLineOption list{QStringLiteral("list"), QStringLiteral("Lists the devices and ends.")};
    const QCommandLineOption out{QStringLiteral("out"),
                                 QStringLiteral("Where the files go; the current folder if not given."),
                                 QStringLiteral("folder"), QStringLiteral(".")};
    const QCommandLineOption format{
        QStringLiteral("format"),
        QStringLiteral("csv: a table with a heading for each column; jsonl: an object a line; recording: as "
                       "the window records. csv if not given."),
        QStringLiteral("csv|jsonl|recording"), QStringLiteral("csv")};
    const QCommandLineOption duration{QStringLiteral("for"),
                                      QStringLiteral("Ends after that time: 500ms, 10s, 5m, 8h."),
                                      QStringLiteral("time")};
    const QCommandLineOption sensor{
        QStringLiteral("sensor"),
        QStringLiteral("Only the sensors of that address; may stand several times."), QStringLiteral("0x61")};
    const QCommandLineOption output{QStringLiteral("stdout"),
                                    QStringLiteral("Into the standard output instead of files.")};
};

/// What is wrong with the values of the options; empty when nothing is.
QString takeValues(const QCommandLineParser &parser, const Arguments &arguments, LogOptions &options)
{
    const QStringList links{QStringLiteral("uart"), QStringLiteral("ch341"), QStringLiteral("ch347")};
    const int link = links.indexOf(parser.value(arguments.link));
    if (link < 0)
        return QStringLiteral("--link uart, ch341 or ch347 is needed. See --help.");
    options.link = static_cast<uint8_t>(link);
    const QStringList formats{QStringLiteral("csv"), QStringLiteral("jsonl"), QStringLiteral("recording")};
    const int format = formats.indexOf(parser.value(arguments.format));
    if (format < 0)
        return QStringLiteral("--format takes csv, jsonl or recording.");
    options.format = static_cast<LogFormat>(format);
    // "--sensor 0x61 0x62" reads as one would expect.
    const auto addresses = readAddresses(parser.values(arguments.sensor) + parser.positionalArguments());
    if (!addresses)
        return QStringLiteral("--sensor takes an address from 0x01 to 0x6F.");
    options.addresses = *addresses;
    if (parser.isSet(arguments.duration)) {
        options.duration = readDuration(parser.value(arguments.duration));
        if (!options.duration)
            return QStringLiteral("--for takes a time like 10s, up to 500h.");
    }
    options.device = parser.value(arguments.device);
    options.listsOnly = parser.isSet(arguments.list);
    if (!parser.isSet(arguments.output))
        options.folder = parser.value(arguments.out);
    else if (parser.isSet(arguments.out))
        return QStringLiteral("either --out or --stdout, not both.");
    else if (options.format == LogFormat::Recording)
        return QStringLiteral("--stdout takes csv or jsonl.");
    else if (options.format == LogFormat::Csv && options.addresses.size() != 1)
        return QStringLiteral("one table has room for one sensor: name one --sensor, or use --format jsonl.");
    return {};
}

/// The exit code if the program is to end here.
std::optional<int> readOptions(LogOptions &options)
{
    const Arguments arguments;
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Records the samples of all sensors without a window, until it is ended."));
    parser.addOptions({arguments.link, arguments.device, arguments.list, arguments.out, arguments.format,
                       arguments.duration, arguments.sensor, arguments.output});
    if (const auto code = readCommandLine(parser))
        return code;
    const bool hasStray = !parser.positionalArguments().isEmpty() && !parser.isSet(arguments.sensor);
    const QString wrong =
        hasStray
            ? QStringLiteral("%1: not an option. See --help.").arg(parser.positionalArguments().constFirst())
            : takeValues(parser, arguments, options);
    if (!wrong.isEmpty())
        return complain(WrongUse, wrong);
    if (!options.folder.isEmpty() && !QDir().mkpath(options.folder))
        return complain(
            static_cast<int>(LogEnd::NotWritten),
            QStringLiteral("%1 cannot be made. Choose another folder with --out.").arg(options.folder));
    return std::nullopt;
}

int record(const LogOptions &options)
{
    LogRun run(options);
    int code = Done;
    QObject::connect(&run, &LogRun::listed, &run, [](const QStringList &devices) {
        for (const QString &device : devices)
            std::puts(qUtf8Printable(device));
    });
    QObject::connect(&run, &LogRun::ended, &run,
                     [&code](LogEnd why) { QCoreApplication::exit(code = static_cast<int>(why)); });
    QObject::connect(&run, &LogRun::noticed, &run, [](const QString &line) { complain(Done, line); });
    const EndSignals endSignals([&run] { run.end(); });

    QTimer statusTimer;
    const bool tells = hasTerminal() && !options.listsOnly;
    QObject::connect(&statusTimer, &QTimer::timeout, &run,
                     [&run] { std::fprintf(stderr, "\r\033[K%s", qUtf8Printable(run.status())); });
    if (tells)
        statusTimer.start(1s);
    QCoreApplication::exec();
    if (tells)
        std::fprintf(stderr, "\r\033[K%s\n", qUtf8Printable(run.status()));
    return run.complaint().isEmpty() ? code : complain(code, run.complaint());
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("tactile-log"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TACTILE_VERSION));
    LogOptions options;
    if (const auto code = readOptions(options))
        return *code;

    // The worker's own log is for whoever sets QT_LOGGING_RULES.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
#ifndef Q_OS_WIN
    // A reader that has gone and a full quota show as failed writes.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    // Recordings are headed in English.
    Q_INIT_RESOURCE(translations);
    QTranslator english;
    if (english.load(QStringLiteral(":/en.qm")))
        QCoreApplication::installTranslator(&english);
    return record(options);
}
