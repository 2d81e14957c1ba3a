#pragma once

#include <QString>

#include <optional>

class QCommandLineParser;

/// What every companion ends with; one that tells more kinds of failure apart has numbers of its own from 3
/// on.
enum ExitCode { Done = 0, Failed = 1, WrongUse = 2 };

/// One line on standard error, with the program's name before it. Gives the code back.
int complain(int code, const QString &line);

/// Reads the arguments of the application. The exit code if the program is to end here: after help and
/// version, which are options of every companion, and after wrong use.
std::optional<int> readCommandLine(QCommandLineParser &parser);
