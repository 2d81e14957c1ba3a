#include "companions/command_line.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

int complain(int code, const QString &line)
{
    std::fprintf(stderr, "%s: %s\n", qUtf8Printable(QCoreApplication::applicationName()),
                 qUtf8Printable(line));
    return code;
}

std::optional<int> readCommandLine(QCommandLineParser &parser)
{
    const auto help = parser.addHelpOption();
    const auto version = parser.addVersionOption();
    if (!parser.parse(QCoreApplication::arguments()))
        return complain(WrongUse, parser.errorText() + QStringLiteral(" See --help."));
    if (!parser.isSet(help) && !parser.isSet(version))
        return std::nullopt;
    const QString line = QCoreApplication::applicationName() + QLatin1Char(' ') +
                         QCoreApplication::applicationVersion() + QLatin1Char('\n');
    std::fputs(qUtf8Printable(parser.isSet(help) ? parser.helpText() : line), stdout);
    return Done;
}
