#include "companions/EndSignals.h"
#include "companions/command_line.h"
#include "sim/SimSerialBus.h"
#include "sim/StableName.h"
#include "sim/sensor_plan.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <vector>

namespace {

constexpr double kFastest = 1000.0;
constexpr std::size_t kJournalLimit = 1; // nobody reads it

struct Options
{
    std::vector<SensorPlan> sensors;
    std::optional<uint32_t> faultSeed;
    FingerPlay play = FingerPlay::Sweep;
    double rateHz = 100.0;
    QString stableName;
};

void listModels()
{
    std::puts("number  frame  channels  forces  model    name");
    for (const finger_info_ts &model : finger_infos) {
        // Of a number that stands twice only the first row can be asked for.
        if (findFingerInfoByPrg(model.prg) == &model)
            std::printf("%6d  %5d  %8d  %6d  %-7s  %s\n", model.prg, model.packLen, model.chNum,
                        model.yddsNum, model.model, model.name);
    }
}

/// False after it has said what is wrong.
bool readSensors(const QStringList &texts, std::vector<SensorPlan> &sensors)
{
    for (const QString &text : texts) {
        const auto plan = SensorPlan::parse(text);
        if (!plan) {
            complain(WrongUse, QStringLiteral("--sensor %1: wanted is a number of --list-models, @ and an "
                                              "address from 0x01 to 0x6F, like 17@0x61.")
                                   .arg(text));
            return false;
        }
        for (const SensorPlan &other : sensors) {
            if (other.address == plan->address) {
                complain(WrongUse, QStringLiteral("--sensor %1: another sensor has that address.").arg(text));
                return false;
            }
        }
        sensors.push_back(*plan);
    }
    if (sensors.empty())
        complain(WrongUse, QStringLiteral("no sensor. Name one or more: --sensor 17@0x61."));
    return !sensors.empty();
}

/// The exit code if the program is to end here.
std::optional<int> readOptions(Options &options)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Simulated sensors on a serial line. Prints the name of the port and serves it until it is ended."));
    const QCommandLineOption sensor(QStringLiteral("sensor"),
                                    QStringLiteral("A sensor by model and address; may stand several times."),
                                    QStringLiteral("number@address"));
    const QCommandLineOption faults(
        QStringLiteral("faults"),
        QStringLiteral("About one frame in twenty is spoilt; the same seed spoils the same ones."),
        QStringLiteral("seed"));
    const QCommandLineOption force(QStringLiteral("force"), QStringLiteral("What the finger does; sweep."),
                                   QStringLiteral("press|sweep|idle"), QStringLiteral("sweep"));
    const QCommandLineOption rate(QStringLiteral("rate"),
                                  QStringLiteral("Samples that a sensor makes a second; 100."),
                                  QStringLiteral("hertz"), QStringLiteral("100"));
    const QCommandLineOption list(QStringLiteral("list-models"), QStringLiteral("Lists the models."));
    const QCommandLineOption stable(QStringLiteral("link-to"),
                                    QStringLiteral("A link to the port, so that its name stays the same."),
                                    QStringLiteral("path"));
    parser.addOptions({sensor, faults, force, rate, list, stable});
    if (const auto code = readCommandLine(parser))
        return code;
    if (parser.isSet(list)) {
        listModels();
        return Done;
    }
    if (!parser.positionalArguments().isEmpty())
        return complain(
            WrongUse,
            QStringLiteral("%1: not an option. See --help.").arg(parser.positionalArguments().constFirst()));
    if (!readSensors(parser.values(sensor), options.sensors))
        return WrongUse;
    bool isNumber = true;
    if (parser.isSet(faults))
        options.faultSeed = parser.value(faults).toUInt(&isNumber);
    if (!isNumber)
        return complain(WrongUse, QStringLiteral("--faults takes a whole number."));
    options.rateHz = parser.value(rate).toDouble(&isNumber);
    if (!isNumber || !(options.rateHz > 0 && options.rateHz <= kFastest))
        return complain(WrongUse, QStringLiteral("--rate takes a number up to 1000."));
    const QStringList plays{QStringLiteral("sweep"), QStringLiteral("press"), QStringLiteral("idle")};
    const int play = plays.indexOf(parser.value(force));
    if (play < 0)
        return complain(WrongUse, QStringLiteral("--force takes press, sweep or idle."));
    options.play = static_cast<FingerPlay>(play);
    options.stableName = parser.value(stable);
    return std::nullopt;
}

int serve(const Options &options)
{
    SimSerialBus line;
    line.journal().setLimit(kJournalLimit);
    for (const SensorPlan &plan : options.sensors) {
        const auto sensor = makeSensor(plan, options.rateHz, options.play);
        if (options.faultSeed)
            letErr(*sensor, *options.faultSeed);
        line.plug(sensor);
    }
    if (line.portName().isEmpty())
        return complain(Failed,
                        QStringLiteral("the system has no pseudo-terminal left. End other programs."));
    const QString port = QStringLiteral("/dev/") + line.portName();
    const StableName stable(options.stableName, port);
    if (!stable.error().isEmpty())
        return complain(Failed, QStringLiteral("%1 cannot be made: %2. Choose another name for --link-to.")
                                    .arg(options.stableName, stable.error()));
    const EndSignals endSignals([] { QCoreApplication::quit(); });
    std::puts(qUtf8Printable(port));
    std::fflush(stdout);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("tactile-sim"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TACTILE_VERSION));
    Options options;
    if (const auto code = readOptions(options))
        return *code;
    return serve(options);
}
