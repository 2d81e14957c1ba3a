#include "sim/SimFaults.h"

#include "sim/sim_frame.h"

#include <algorithm>

namespace {

/// Up to its command byte; less than that is no frame any more.
constexpr int kShortestFrame = 4;

QByteArray flipBit(QByteArray frame, int bit)
{
    const int index = bit / 8;
    frame[index] = static_cast<char>(frame.at(index) ^ (1 << (bit % 8)));
    return frame;
}

QByteArray withWrongEcho(QByteArray frame)
{
    frame[3] = static_cast<char>(frame.at(3) ^ 0x01);
    frame.chop(2);
    return simSealed(frame);
}

QByteArray withWrongLength(QByteArray frame)
{
    frame.chop(3);
    return simSealed(frame);
}

} // namespace

SimFaults::SimFaults(uint32_t seed)
    : m_random(seed)
{}

void SimFaults::seed(uint32_t seed)
{
    const std::lock_guard lock(m_mutex);
    m_random.seed(seed);
}

void SimFaults::schedule(SimFault fault, SimTarget target, int times)
{
    const std::lock_guard lock(m_mutex);
    m_plans.push_back({fault, target, times, 0.0});
}

void SimFaults::setChance(SimFault fault, SimTarget target, double probability)
{
    const std::lock_guard lock(m_mutex);
    m_plans.push_back({fault, target, 0, probability});
}

void SimFaults::setLateBy(std::chrono::milliseconds delay)
{
    const std::lock_guard lock(m_mutex);
    m_lateBy = delay;
}

std::chrono::milliseconds SimFaults::lateBy() const
{
    const std::lock_guard lock(m_mutex);
    return m_lateBy;
}

void SimFaults::clear()
{
    const std::lock_guard lock(m_mutex);
    m_plans.clear();
}

SimDelivery SimFaults::pass(const QByteArray &frame, SimTarget target)
{
    const std::lock_guard lock(m_mutex);
    SimDelivery delivery{frame, std::chrono::milliseconds(0)};
    for (Plan &plan : m_plans) {
        if (plan.target.covers(target) && strikes(plan) && !delivery.bytes.isEmpty())
            inflict(plan.fault, delivery);
    }
    const auto spent = [](const Plan &plan) { return plan.times <= 0 && plan.probability <= 0.0; };
    m_plans.erase(std::remove_if(m_plans.begin(), m_plans.end(), spent), m_plans.end());
    return delivery;
}

bool SimFaults::strikes(Plan &plan)
{
    if (plan.times > 0) {
        --plan.times;
        return true;
    }
    return std::uniform_real_distribution<double>(0.0, 1.0)(m_random) < plan.probability;
}

void SimFaults::inflict(SimFault fault, SimDelivery &delivery)
{
    QByteArray &bytes = delivery.bytes;
    // A fault before this one may have left less than a frame.
    if (bytes.size() < kShortestFrame && fault != SimFault::Late)
        return;
    switch (fault) {
    case SimFault::Silence:
        bytes.clear();
        break;
    case SimFault::FlippedBit:
        bytes = flipBit(bytes, drawBelow(bytes.size() * 8));
        break;
    case SimFault::BadSum:
        bytes = flipBit(bytes, (bytes.size() - 2) * 8);
        break;
    case SimFault::CutFrame:
        bytes.truncate(1 + drawBelow(bytes.size() - 1));
        break;
    case SimFault::GluedFrame:
        bytes += QByteArray(bytes);
        break;
    case SimFault::LeadingNoise:
        for (int count = 1 + drawBelow(8); count > 0; --count)
            bytes.prepend(static_cast<char>(drawBelow(256)));
        break;
    case SimFault::WrongEcho:
        bytes = withWrongEcho(bytes);
        break;
    case SimFault::WrongLength:
        bytes = withWrongLength(bytes);
        break;
    case SimFault::Late:
        delivery.delay += m_lateBy;
        break;
    }
}

int SimFaults::drawBelow(int limit)
{
    return std::uniform_int_distribution<int>(0, std::max(1, limit) - 1)(m_random);
}
