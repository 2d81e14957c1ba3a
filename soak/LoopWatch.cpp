#include "soak/LoopWatch.h"

#include <QRegularExpression>
#include <QtDebug>

#include <algorithm>

using namespace std::chrono_literals;

namespace {

constexpr auto kStep = 5ms;
/// Far more than any form keeps its window waiting.
constexpr auto kPatience = 60s;

std::chrono::milliseconds wholeMs(std::chrono::nanoseconds time)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(time);
}

} // namespace

LoopWatch::LoopWatch()
    : m_machine([this] { watchMachine(); })
{}

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
        "^fingerThread (stop|exit)| init$|^connect success|^update|^set rate:|^ymodem |^软件复位"));
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
    while (!m_ended) {
        const auto before = Clock::now();
        std::this_thread::sleep_for(kStep);
        const auto now = Clock::now();
        m_longestOfMachine = std::max(m_longestOfMachine.load(), (wholeMs(now - before) - kStep).count());
        const Clock::duration last(m_last);
        if (last.count() != 0 && now.time_since_epoch() - last > kPatience)
            qCritical("the window does not answer");
    }
}
