#include "app/class_settings.h"
#include "app/qmain.h"
#include "recording/recording_folder.h"
#include "soak/Ledger.h"
#include "soak/LoopWatch.h"
#include "soak/Monkey.h"
#include "soak/SoakWorld.h"
#include "soak/StallingPeer.h"
#include "soak/soak_report.h"
#include "soak/vitals.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QMutex>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

#include <csignal>
#include <deque>
#include <memory>

using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kBookInterval = 5s;
/// Sensors, sockets and panels are gone after that when everything has been let go.
constexpr auto kTidyTime = 4s;
/// Small discs and glyphs that are kept have been drawn by then.
constexpr auto kFirstWeighing = 120s;
constexpr auto kSettleTime = 2s;
constexpr std::size_t kLinesKept = 300;

struct Options
{
    QString link = QStringLiteral("ch341");
    std::chrono::seconds duration{60};
    unsigned seed = 1;
};

/// One soak: the world, the window in it, the monkey at the window and the books about all of it.
class Soak
{
public:
    explicit Soak(const Options &options);
    ~Soak() { qInstallMessageHandler(nullptr); }

    /// The exit code.
    int run();
    /// The window is there; called in every new application.
    void takeWindow(QWidget *window);
    void hear(QtMsgType type, const QString &message);

private:
    void weigh(Monkey *monkey);

    Options m_options;
    QTemporaryDir m_folder;
    Chance m_chance;
    SoakWorld m_world;
    std::unique_ptr<StallingPeer> m_peer; ///< its thread needs an application to begin
    Ledger m_ledger;
    LoopWatch m_loop;
    std::vector<Vitals> m_vitals;
    std::deque<Clock::time_point> m_weighings; ///< that are still to come; the last one ends the soak
    bool m_ended = false;
    QMutex m_mutex; // guards the lines
    std::deque<QString> m_lines;
};

Soak *soak = nullptr;

void handleMessage(QtMsgType type, const QMessageLogContext & /*context*/, const QString &message)
{
    soak->hear(type, message);
}

Soak::Soak(const Options &options)
    : m_options(options)
    , m_chance(options.seed)
    , m_world(options.seed)
    , m_weighings{Clock::now() + std::min<Clock::duration>(kFirstWeighing, options.duration / 4),
                  Clock::now() + options.duration / 2, Clock::now() + options.duration}
{
    for (const char *place : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
        qputenv(place, m_folder.path().toLocal8Bit());
    QFile image(m_folder.filePath(QStringLiteral("image.bin")));
    if (image.open(QIODevice::WriteOnly))
        image.write(QByteArray(5000, '\x5A'));
    class_settings::set(QStringLiteral("UPDATE/FILE_PATH"), image.fileName());
    soak = this;
    qInstallMessageHandler(handleMessage);
}

int Soak::run()
{
    // A change of language ends the application.
    while (!m_ended) {
        char name[] = "tactile-host-soak";
        char *arguments[] = {name, nullptr};
        qMain(1, arguments);
    }
    SoakReport report;
    report.link = m_options.link;
    report.duration = m_options.duration;
    report.vitals = m_vitals;
    report.pulls = m_world.pulls();
    report.disksFilled = m_world.disksFilled();
    report.sent = m_peer->records();
    report.torn = m_peer->torn();
    report.resets = m_peer->resets();
    report.stall = m_loop.longest();
    report.stallAfter = m_loop.longestAfter();
    report.stallByRule = m_loop.longestByRule();
    report.stallOfMachine = m_loop.longestOfMachine();
    return report.print(m_ledger.counts()) ? 0 : 1;
}

void Soak::takeWindow(QWidget *window)
{
    const QStringList links{QStringLiteral("uart"), QStringLiteral("ch341"), QStringLiteral("ch347")};
    if (!m_peer) {
        m_peer = std::make_unique<StallingPeer>(m_options.seed);
        QDir(recordingFolder()).removeRecursively();
    }
    MonkeyHabits habits;
    habits.interface = links.indexOf(m_options.link);
    habits.plotPort = m_peer->port();
    habits.image = m_folder.filePath(QStringLiteral("image.bin"));
    auto *monkey = new Monkey(window, m_chance, habits);
    m_loop.watchFor(window);
    m_world.setTrouble(true);
    if (m_vitals.empty())
        QTimer::singleShot(kSettleTime, window, [this] { m_vitals.push_back(takeVitals()); });
    auto *books = new QTimer(window);
    QObject::connect(books, &QTimer::timeout, window, [this, monkey] {
        m_ledger.takeRecordings();
        if (!m_weighings.empty() && Clock::now() >= m_weighings.front())
            weigh(monkey);
    });
    books->start(kBookInterval);
}

// What panels, sockets and the debug tab's log hold is given back first.
void Soak::weigh(Monkey *monkey)
{
    m_weighings.pop_front();
    m_world.setTrouble(false);
    monkey->setRestless(false);
    monkey->tidyUp();
    QTimer::singleShot(kTidyTime, monkey, [this, monkey] {
        m_ledger.takeRecordings();
        m_vitals.push_back(takeVitals());
        if (m_weighings.empty()) {
            m_ended = true;
            return QCoreApplication::quit();
        }
        m_world.setTrouble(true);
        monkey->setRestless(true);
    });
}

void Soak::hear(QtMsgType type, const QString &message)
{
    m_ledger.hear(message);
    m_loop.hear(message);
    const QMutexLocker lock(&m_mutex);
    m_lines.push_back(message);
    if (m_lines.size() > kLinesKept)
        m_lines.pop_front();
    // What the offscreen platform cannot do, and what a chosen firmware file may deserve.
    static const QRegularExpression harmless(QStringLiteral(
        "^This plugin does not support |^Checksum error |^Unsupported record |^QStandardPaths"));
    if (type == QtDebugMsg || type == QtInfoMsg || harmless.match(message).hasMatch())
        return;
    for (const QString &line : m_lines)
        std::fprintf(stderr, "%s\n", qUtf8Printable(line));
    std::abort();
}

void startSoak()
{
    if (soak == nullptr)
        return;
    QTimer::singleShot(0, qApp, [] {
        const auto widgets = QApplication::topLevelWidgets();
        for (QWidget *widget : widgets) {
            if (widget->inherits("Widget"))
                soak->takeWindow(widget);
        }
    });
}

/// "90", "90s", "10m" or "2h"; nothing for any other text.
std::chrono::seconds readDuration(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\d{1,6})([smh]?)$"));
    const auto match = pattern.match(text);
    const std::chrono::seconds number{match.captured(1).toInt()};
    const QString unit = match.captured(2);
    return unit == QLatin1String("h") ? number * 3600 : unit == QLatin1String("m") ? number * 60 : number;
}

bool readOptions(int argc, char **argv, Options &options)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Works the whole tool on a bench full of faults and keeps the books."));
    parser.addHelpOption();
    const QCommandLineOption link(QStringLiteral("link"), QStringLiteral("What the sensors hang on."),
                                  QStringLiteral("uart|ch341|ch347"), options.link);
    const QCommandLineOption duration(QStringLiteral("for"),
                                      QStringLiteral("How long, such as 90s, 10m, 1h."),
                                      QStringLiteral("time"), QStringLiteral("60s"));
    const QCommandLineOption seed(QStringLiteral("seed"), QStringLiteral("Repeats the faults of a run."),
                                  QStringLiteral("number"), QStringLiteral("1"));
    parser.addOptions({link, duration, seed});
    parser.process(application);
    options.link = parser.value(link);
    options.duration = readDuration(parser.value(duration));
    options.seed = parser.value(seed).toUInt();
    return options.duration.count() > 0 &&
           QStringList{QStringLiteral("uart"), QStringLiteral("ch341"), QStringLiteral("ch347")}.contains(
               options.link);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(startSoak)

int main(int argc, char **argv)
{
    Options options;
    if (!readOptions(argc, argv, options)) {
        std::fprintf(stderr, "tactile-host-soak: see --help\n");
        return 2;
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    return Soak(options).run();
}
