#include "soak/LoopWatch.h"

#include <QRegularExpression>
#include <QtDebug>

#include <algorithm>
#include <array>
#include <csignal>
#include <execinfo.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr auto kStep = 5ms;
/// Far more than any form keeps its window waiting.
constexpr auto kPatience = 60s;
/// Where the window stands is told then.
constexpr auto kTooLong = 100ms;

void tellWhere(int /*signal*/)
{
    std::array<void *, 20> frames{};
    const int count = ::backtrace(frames.data(), static_cast<int>(frames.size()));
    ::backtrace_symbols_fd(frames.data(), count, STDERR_FILENO);
}

std::chrono::milliseconds wholeMs(std::chrono::nanoseconds time)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(time);
}

} // namespace

LoopWatch::LoopWatch()
    : m_machine([this] { watchMachine(); })
{
    std::signal(SIGUSR1, tellWhere);
}

LoopWatch::~LoopWatch()
{
    m_ended = true;
    m_machine.join();
}

void LoopWatch::watchFor(QObject *object)
{
    auto *timer = new QTimer(object);
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer, &QTimer::timeout, object, [this] { tick(); });
    timer->start(kStep);
    m_last = 0;
}

void LoopWatch::hear(const QString &line)
{
    static const QRegularExpression waits(QStringLiteral(
        "^(tactViewForm|fwUpdateForm|setSensorAddrForm|sensorDebugForm) (start|stop)|^tcp "
        "connected:|connect$|"
        "^fingerThread (stop|exit)| init$|^connect success|^update|^set rate:|^ymodem |^软件复位|"
        // An address is set over a serial line; a file dialog of the toolkit closes its watches.
        "^aa550070|^choose |"
        // Up to fourteen panels go at once with their link.
        "^del tree$"));
    if (waits.match(line).hasMatch())
        m_ruleHeard = true;
    if (std::this_thread::get_id() == m_owner)
        m_lastHeard = line;
}

void LoopWatch::tick()
{
    const auto now = Clock::now().time_since_epoch();
    const auto last = Clock::duration(m_last.exchange(now.count()));
    const bool byRule = m_ruleHeard.exchange(false);
    if (last.count() == 0)
        return;
    const auto late = wholeMs(now - last) - kStep;
    std::chrono::milliseconds &longest = byRule ? m_longestByRule : m_longest;
    if (late <= longest)
        return;
    longest = late;
    if (!byRule)
        m_longestAfter = m_lastHeard;
}

void LoopWatch::watchMachine()
{
    Clock::rep told = 0;
    while (!m_ended) {
        const auto before = Clock::now();
        std::this_thread::sleep_for(kStep);
        const auto now = Clock::now();
        m_longestOfMachine = std::max(m_longestOfMachine.load(), (wholeMs(now - before) - kStep).count());
        const Clock::duration last(m_last);
        const auto age = now.time_since_epoch() - last;
        if (last.count() == 0)
            continue;
        if (age > kTooLong && !m_ruleHeard && told != last.count()) {
            told = last.count();
            ::pthread_kill(m_ownerThread, SIGUSR1);
        }
        if (age > kPatience)
            qCritical("the window does not answer");
    }
}
