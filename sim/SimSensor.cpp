#include "sim/SimSensor.h"

#include "sim/sim_commands.h"

#include <algorithm>

namespace {

constexpr uint8_t kNormalMark = 0x85;
constexpr std::size_t kWaitingAnswers = 2;

finger_info_ts modelOf(uint8_t programId)
{
    constexpr uint8_t plainFingertip = 0x1C;
    const finger_info_ts *row = findFingerInfoByPrg(programId);
    finger_info_ts model = row != nullptr ? *row : *findFingerInfoByPrg(plainFingertip);
    model.prg = programId;
    return model;
}

template<typename List, typename Value>
void store(List &list, int index, const Value &value)
{
    if (index >= 0 && index < static_cast<int>(list.size()))
        list[static_cast<std::size_t>(index)] = value;
}

bool isRequest(const QByteArray &request)
{
    constexpr int shortest = 8; // a set command with an empty text
    return request.size() >= shortest && request.startsWith("\xAA\x55") && simSumFits(request);
}

uint8_t commandOf(const QByteArray &request)
{
    return static_cast<uint8_t>(request.at(3));
}

bool resets(uint8_t command)
{
    return command == 0x77 || command == 0xA1;
}

} // namespace

SimSensor::SimSensor(uint8_t programId, uint8_t address)
    : SimSensor(modelOf(programId), address)
{}

SimSensor::SimSensor(const finger_info_ts &model, uint8_t address)
    : m_model(model)
    , m_settings(model, address)
    , m_values(model)
{}

uint8_t SimSensor::address() const
{
    const std::lock_guard lock(m_mutex);
    return m_settings.address;
}

/// Makes a change under the lock; the sample at hand is out of date then.
template<typename Change>
void SimSensor::change(Change change)
{
    const std::lock_guard lock(m_mutex);
    change();
    m_sample.clear();
}

SimSettings SimSensor::settings() const
{
    const std::lock_guard lock(m_mutex);
    return m_settings;
}

void SimSensor::setSettings(const SimSettings &settings)
{
    change([&] { m_settings = settings; });
}

void SimSensor::setForce(int channel, double newtons)
{
    setRaw(channel, simChannelValue(newtons));
}

void SimSensor::setRaw(int channel, uint32_t value)
{
    change([&] { store(m_values.channels, channel, value); });
}

void SimSensor::setBlock(int block, const SimForce &force)
{
    change([&] { store(m_values.forces, block, force); });
}

void SimSensor::setSelfProximity(int index, uint32_t value)
{
    change([&] { store(m_values.selfProximity, index, value); });
}

void SimSensor::setMutualProximity(int index, uint32_t value)
{
    change([&] { store(m_values.mutualProximity, index, value); });
}

void SimSensor::setStatus(uint8_t status)
{
    change([&] { m_values.status = status; });
}

void SimSensor::setMotion(SimMotion motion)
{
    change([&] {
        m_motion = std::move(motion);
        m_counter.setResting(isResting());
    });
}

void SimSensor::setSampleRateHz(double hz)
{
    change([&] { m_counter.setRateHz(hz); });
}

void SimSensor::step(int samples)
{
    change([&] { m_counter.step(samples); });
}

void SimSensor::setFrameCounter(uint8_t counter)
{
    change([&] { m_counter.restartAt(counter); });
}

void SimSensor::setFrozen(bool frozen)
{
    change([&] { m_counter.setFrozen(frozen); });
}

uint8_t SimSensor::frameCounter() const
{
    const std::lock_guard lock(m_mutex);
    return m_counter.now();
}

QByteArray SimSensor::sampleFrame() const
{
    const std::lock_guard lock(m_mutex);
    return sample();
}

void SimSensor::setFirstLook(uint8_t mark, FirstLook until)
{
    change([&] {
        m_firstMark = mark;
        m_firstLook = until;
    });
}

void SimSensor::setFrameType(std::optional<uint8_t> type)
{
    change([&] { m_type = type; });
}

void SimSensor::setBaudRate(int baud)
{
    change([&] { m_baudRate = baud; });
}

int SimSensor::baudRate() const
{
    const std::lock_guard lock(m_mutex);
    return m_baudRate;
}

void SimSensor::setAnswerDelay(std::chrono::milliseconds delay)
{
    change([&] { m_answerDelay = delay; });
}

void SimSensor::setRefusal(uint8_t command, uint8_t status)
{
    change([&] { m_refusals[command] = status; });
}

void SimSensor::setUnknown(uint8_t command, bool unknown)
{
    change([&] { m_unknown[command] = unknown; });
}

void SimSensor::powerCycle()
{
    const std::lock_guard lock(m_mutex);
    startAfresh();
    m_bootLoader.powerUp(SimClock::now());
}

SimDelivery SimSensor::answerPoll(uint8_t address)
{
    const std::lock_guard lock(m_mutex);
    if (inBootLoader() || (address != 0 && address != m_settings.address))
        return {};
    return m_faults.pass(sample(), SimTarget::samples());
}

SimDelivery SimSensor::answerRequest(const QByteArray &request)
{
    const std::lock_guard lock(m_mutex);
    constexpr uint8_t synchronise = 0x72;
    if (inBootLoader() || !isRequest(request))
        return {};
    const auto address = static_cast<uint8_t>(request.at(2));
    const bool general = address == 0;
    if (!general && address != m_settings.address && address != type())
        return {};
    SimDelivery delivery = answer(request);
    // Every sensor of the line obeys a general synchronisation, so none of them may speak.
    return general && commandOf(request) == synchronise ? SimDelivery() : delivery;
}

bool SimSensor::acknowledges(uint8_t address) const
{
    const std::lock_guard lock(m_mutex);
    return address == m_settings.address || (address == 0 && !inBootLoader());
}

void SimSensor::writeI2c(const QByteArray &bytes)
{
    const std::lock_guard lock(m_mutex);
    if (inBootLoader()) {
        m_waiting.clear();
        if (m_bootLoader.receiveMessage(bytes, SimClock::now()))
            return;
    }
    if (!isRequest(bytes))
        return;
    const SimDelivery delivery = answer(bytes);
    if (delivery.bytes.isEmpty())
        return;
    m_waiting.push_back({delivery.bytes, SimClock::now() + delivery.delay});
    if (m_waiting.size() > kWaitingAnswers)
        m_waiting.pop_front();
}

QByteArray SimSensor::beginReadI2c()
{
    const std::lock_guard lock(m_mutex);
    const SimTime now = SimClock::now();
    const bool answered = !m_waiting.empty() && m_waiting.front().due <= now;
    if (!answered && inBootLoader())
        return QByteArray(1, m_bootLoader.readByte(now));
    if (!answered)
        return m_faults.pass(sample(), SimTarget::samples()).bytes;
    QByteArray bytes = m_waiting.front().bytes;
    m_waiting.pop_front();
    return bytes;
}

SimDelivery SimSensor::answer(const QByteArray &request)
{
    const uint8_t command = commandOf(request);
    m_sample.clear();
    if (m_unknown[command])
        return {};
    std::optional<QByteArray> payload;
    if (simReportsStatus(command) && m_refusals[command] != 0) {
        payload = simSinglePayload(m_refusals[command]);
    } else {
        const auto upTime = std::chrono::duration_cast<std::chrono::seconds>(SimClock::now() - m_poweredAt);
        payload = simExecute({m_model, m_settings, m_values.status, m_counter.rateHz(), upTime}, request);
    }
    if (!payload)
        return {};
    const QByteArray frame = simAnswerFrame(type(), command, *payload);
    if (command == 0x7F) {
        m_counter.rebase();
        m_sendTypeSet = true;
        m_counter.setResting(isResting());
    }
    if (resets(command)) {
        startAfresh();
        m_bootLoader.enter(SimClock::now());
    }
    SimDelivery delivery = m_faults.pass(frame, SimTarget::answersTo(command));
    delivery.delay += m_answerDelay;
    return delivery;
}

// A sensor holds one sample until it has made the next.
const QByteArray &SimSensor::sample() const
{
    const uint8_t counter = m_counter.now();
    if (m_sample.isEmpty() || m_sampleCounter != counter) {
        m_sample = compose(counter);
        m_sampleCounter = counter;
    }
    return m_sample;
}

QByteArray SimSensor::compose(uint8_t counter) const
{
    const bool firstLook = m_firstLook == FirstLook::Always || !m_sendTypeSet;
    return simSampleFrame(m_model, currentValues(), type(), firstLook ? m_firstMark : kNormalMark, counter);
}

SimValues SimSensor::currentValues() const
{
    SimValues values = m_values;
    if (m_motion && !isResting())
        m_motion(simSeconds(m_made, SimClock::now()), m_model, values);
    for (std::size_t channel = 0; channel < values.channels.size(); ++channel) {
        if (m_settings.enabled[channel] == 0)
            values.channels[channel] = 0;
    }
    applySendType(values);
    return values;
}

// Only the base values differ visibly: what a channel reads when nothing presses it.
void SimSensor::applySendType(SimValues &values) const
{
    constexpr uint8_t baseValues = 2;
    if (m_settings.sendType != baseValues)
        return;
    for (std::size_t channel = 0; channel < values.channels.size(); ++channel)
        values.channels[channel] = static_cast<uint32_t>(400 + 2 * channel);
}

uint8_t SimSensor::type() const
{
    return m_type.value_or(m_settings.address);
}

bool SimSensor::inBootLoader() const
{
    return m_bootLoader.isActive(SimClock::now());
}

void SimSensor::startAfresh()
{
    m_sample.clear();
    m_sendTypeSet = false;
    m_counter.setResting(isResting());
    m_counter.restartAt(0);
    m_poweredAt = SimClock::now();
    m_waiting.clear();
}
