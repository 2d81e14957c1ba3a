#pragma once

#include <QByteArray>

#include <array>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <random>
#include <vector>

/// What may happen to a frame on its way from the sensor to the host.
enum class SimFault {
    Silence,      ///< the frame is not sent at all
    FlippedBit,   ///< one bit anywhere in it is turned
    BadSum,       ///< the sum is wrong, everything else right
    CutFrame,     ///< only its beginning is sent
    GluedFrame,   ///< it is sent twice without a gap
    LeadingNoise, ///< one to eight bytes of rubbish stand before it
    WrongEcho,    ///< the command byte is another one, with a right sum
    WrongLength,  ///< one byte before the sum is missing, with a right sum
    Late,         ///< it comes after lateBy(); an I2C read takes what is there until then
};
constexpr int kSimFaultCount = 9;

/// What a fault strikes.
class SimTarget
{
public:
    /// Frames that answer a poll.
    static constexpr SimTarget samples() { return SimTarget(kSamples); }
    /// Answers to any request.
    static constexpr SimTarget answers() { return SimTarget(kAnswers); }
    /// Answers to one command only.
    static constexpr SimTarget answersTo(uint8_t command) { return SimTarget(command); }

    /// True when a fault aimed here strikes that target, which is samples() or answersTo().
    constexpr bool covers(SimTarget frame) const
    {
        return m_code == frame.m_code || (m_code == kAnswers && frame.m_code < kSamples);
    }

private:
    static constexpr int kSamples = 0x100;
    static constexpr int kAnswers = 0x101;
    explicit constexpr SimTarget(int code)
        : m_code(code)
    {}
    int m_code;
};

/// Bytes on their way to the host, and how much later than usual they come. No bytes: nothing is sent.
struct SimDelivery
{
    QByteArray bytes;
    std::chrono::milliseconds delay{0};
};

/// The faults of one sensor. The same seed and the same frames give the same faults. All operations may be
/// called from any thread.
class SimFaults
{
public:
    explicit SimFaults(uint32_t seed = 1);

    /// Starts the sequence of random faults afresh.
    void seed(uint32_t seed);
    /// The next `times` frames of the target suffer the fault, whatever chance says.
    void schedule(SimFault fault, SimTarget target, int times = 1);
    /// Every frame of the target suffers the fault with this probability, 0 to 1.
    void setChance(SimFault fault, SimTarget target, double probability);
    void setLateBy(std::chrono::milliseconds delay);
    std::chrono::milliseconds lateBy() const;
    /// Takes back everything that was scheduled or left to chance.
    void clear();

    /// What becomes of a frame of the target.
    SimDelivery pass(const QByteArray &frame, SimTarget target);

private:
    struct Plan
    {
        SimFault fault;
        SimTarget target;
        int times;
        double probability;
    };

    bool strikes(Plan &plan);
    void inflict(SimFault fault, SimDelivery &delivery);
    int drawBelow(int limit);

    mutable std::mutex m_mutex; // guards everything below
    std::mt19937 m_random;
    std::vector<Plan> m_plans;
    std::chrono::milliseconds m_lateBy{150};
};
