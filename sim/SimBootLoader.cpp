#include "sim/SimBootLoader.h"

#include "sim/sim_boot_frame.h"

#include <QList>

#include <algorithm>

using namespace std::chrono_literals;

namespace {

constexpr char kAck = 0x06;
constexpr char kNak = 0x15;
constexpr char kPrompt = 'C';

constexpr int kMaximumSize = 1 << 20;
constexpr auto kPromptAfterAck = 25ms;
constexpr auto kPromptInterval = 100ms;
constexpr auto kLineGap = 200ms;
constexpr auto kGiveUpAfter = 1000ms;

uint8_t byteAt(const QByteArray &bytes, int index)
{
    return static_cast<uint8_t>(bytes.at(index));
}

} // namespace

void SimBootLoader::setWindow(std::chrono::milliseconds window)
{
    const std::lock_guard lock(m_mutex);
    m_window = window;
}

void SimBootLoader::setBaudRate(int baud)
{
    const std::lock_guard lock(m_mutex);
    m_baudRate = baud;
}

int SimBootLoader::baudRate() const
{
    const std::lock_guard lock(m_mutex);
    return m_baudRate;
}

void SimBootLoader::schedule(SimBootAct act, int frame, int times)
{
    const std::lock_guard lock(m_mutex);
    m_plans.push_back({act, frame, times});
}

void SimBootLoader::cutPowerAfter(int bytes)
{
    const std::lock_guard lock(m_mutex);
    m_bytesUntilCut = bytes;
}

QByteArray SimBootLoader::image() const
{
    const std::lock_guard lock(m_mutex);
    return m_image;
}

QByteArray SimBootLoader::imageName() const
{
    const std::lock_guard lock(m_mutex);
    return m_name;
}

bool SimBootLoader::hasImage() const
{
    const std::lock_guard lock(m_mutex);
    return m_hasProgram && !m_name.isEmpty();
}

void SimBootLoader::enter(SimTime now)
{
    const std::lock_guard lock(m_mutex);
    start(State::AwaitHeader, now);
}

void SimBootLoader::powerUp(SimTime now)
{
    const std::lock_guard lock(m_mutex);
    start(m_hasProgram ? State::Off : State::AwaitHeader, now);
}

bool SimBootLoader::isActive(SimTime now)
{
    const std::lock_guard lock(m_mutex);
    letTimePass(now);
    return m_state != State::Off;
}

bool SimBootLoader::claims(const QByteArray &bytes, SimTime now)
{
    const std::lock_guard lock(m_mutex);
    letTimePass(now);
    return m_state != State::Off && (!m_buffer.isEmpty() || SimBootFrame::length(bytes.at(0)) != 0);
}

bool SimBootLoader::receiveMessage(const QByteArray &bytes, SimTime now)
{
    const std::lock_guard lock(m_mutex);
    if (m_state == State::Finished && !bytes.isEmpty() && SimBootFrame::length(bytes.at(0)) == 0) {
        start(State::Off, now);
        return false;
    }
    m_buffer.clear();
    collect(bytes, now);
    return true;
}

void SimBootLoader::receiveStream(const QByteArray &bytes, SimTime now)
{
    const std::lock_guard lock(m_mutex);
    letTimePass(now);
    collect(bytes, now);
}

char SimBootLoader::readByte(SimTime now)
{
    const std::lock_guard lock(m_mutex);
    letTimePass(now);
    if (m_replies.empty())
        return isPrompting() ? kPrompt : '\0';
    const char byte = m_replies.front().byte;
    m_replies.pop_front();
    finishWhenDone();
    return byte;
}

QByteArray SimBootLoader::takeDue(SimTime now)
{
    const std::lock_guard lock(m_mutex);
    letTimePass(now);
    QByteArray bytes;
    while (!m_replies.empty() && m_replies.front().due <= now) {
        bytes.append(m_replies.front().byte);
        m_replies.pop_front();
    }
    if (bytes.isEmpty() && m_replies.empty() && isPrompting() && now >= m_nextPrompt) {
        bytes.append(kPrompt);
        m_nextPrompt = now + kPromptInterval;
    }
    if (!bytes.isEmpty())
        finishWhenDone();
    return bytes;
}

std::optional<SimTime> SimBootLoader::nextDue() const
{
    const std::lock_guard lock(m_mutex);
    if (!m_replies.empty())
        return m_replies.front().due;
    if (isPrompting())
        return m_nextPrompt;
    if (!m_buffer.isEmpty())
        return m_lastReceived + kLineGap + 1ms;
    if (waitsForHost())
        return m_lastReceived + kGiveUpAfter + 1ms;
    if (m_state == State::AwaitHeader && m_hasProgram)
        return m_entered + m_window + 1ms;
    return std::nullopt;
}

void SimBootLoader::start(State state, SimTime now)
{
    m_state = state;
    m_entered = now;
    m_nextPrompt = now + kPromptAfterAck;
    m_buffer.clear();
    m_replies.clear();
    m_frames = 0;
}

void SimBootLoader::letTimePass(SimTime now)
{
    if (now - m_lastReceived > kLineGap)
        m_buffer.clear();
    if (waitsForHost() && now - m_lastReceived > kGiveUpAfter)
        start(m_state == State::Finished ? State::Off : State::AwaitHeader, now);
    if (m_state == State::AwaitHeader && m_hasProgram && now - m_entered > m_window)
        m_state = State::Off;
}

void SimBootLoader::collect(const QByteArray &bytes, SimTime now)
{
    m_lastReceived = now;
    if (m_bytesUntilCut >= 0 && bytes.size() >= m_bytesUntilCut) {
        losePower(now);
        return;
    }
    if (m_bytesUntilCut >= 0)
        m_bytesUntilCut -= bytes.size();
    m_buffer += bytes;
    while (takeFrame(now)) {
    }
}

bool SimBootLoader::takeFrame(SimTime now)
{
    if (m_buffer.isEmpty())
        return false;
    const int length = SimBootFrame::length(m_buffer.at(0));
    if (length > m_buffer.size())
        return false;
    const QByteArray frame = m_buffer.left(length);
    m_buffer.remove(0, std::max(1, length));
    if (length > 0)
        handle(frame, now);
    return true;
}

void SimBootLoader::handle(const QByteArray &frame, SimTime now)
{
    m_replies.clear();
    const int number = m_frames++; // before a restart, which counts anew
    if (!actOn(number, frame, now))
        obey(frame, now);
}

bool SimBootLoader::actOn(int number, const QByteArray &frame, SimTime now)
{
    const std::optional<SimBootAct> act = plannedAct(number);
    if (!act)
        return false;
    switch (*act) {
    case SimBootAct::Nak:
        reply(kNak, now);
        break;
    case SimBootAct::Cancel:
        cancel(now);
        break;
    case SimBootAct::Silence:
        break;
    case SimBootAct::LostAck:
        obey(frame, now);
        m_replies.clear();
        break;
    case SimBootAct::Rubbish:
        reply(0x7E, now);
        reply(0x33, now);
        break;
    case SimBootAct::PowerCut:
        losePower(now);
        break;
    }
    return true;
}

std::optional<SimBootAct> SimBootLoader::plannedAct(int number)
{
    for (Plan &plan : m_plans) {
        if (number >= plan.frame && plan.times > 0) {
            --plan.times;
            return plan.act;
        }
    }
    return std::nullopt;
}

void SimBootLoader::obey(const QByteArray &frame, SimTime now)
{
    const char kind = frame.at(0);
    if (kind == SimBootFrame::kCancel) {
        start(State::AwaitHeader, now);
        return;
    }
    if (kind == SimBootFrame::kEnd) {
        obeyEnd(now);
        return;
    }
    if (!SimBootFrame::isIntact(frame)) {
        reply(kNak, now);
        return;
    }
    const QByteArray data = SimBootFrame::data(frame);
    if (isHeader(frame))
        obeyHeader(data, now);
    else
        obeyBlock(byteAt(frame, 1), data, now);
}

// The number of a header is also that of block 256, which is a small one only at the very end of an image.
bool SimBootLoader::isHeader(const QByteArray &frame) const
{
    if (frame.at(0) != SimBootFrame::kSmall || byteAt(frame, 1) != 0)
        return false;
    const int remaining = m_size - m_image.size();
    const bool lastBlock = m_sequence == 0 && remaining > 0 && remaining <= 128;
    const bool lastBlockAgain = m_sequence == 1 && remaining == 0;
    return m_state != State::AwaitBlock || !(lastBlock || lastBlockAgain);
}

// A header without a name ends a transfer; any other one begins a transfer anew.
void SimBootLoader::obeyHeader(const QByteArray &data, SimTime now)
{
    const QList<QByteArray> fields = data.split('\0');
    if (fields.first().isEmpty()) {
        obeyLastHeader(now);
        return;
    }
    bool isNumber = false;
    const int size = fields.value(1).toInt(&isNumber);
    if (!isNumber || size < 0) {
        reply(kNak, now);
        return;
    }
    if (size > kMaximumSize) {
        cancel(now);
        return;
    }
    beginImage(fields.first(), size);
    replyAndPrompt(now);
}

// What is there is erased before the first block comes.
void SimBootLoader::beginImage(const QByteArray &name, int size)
{
    m_name = name;
    m_size = size;
    m_image.clear();
    m_sequence = 1;
    m_hasProgram = size == 0;
    m_state = size == 0 ? State::Finished : State::AwaitFirstBlock;
}

void SimBootLoader::obeyLastHeader(SimTime now)
{
    const bool ends = m_state == State::AwaitEnd || m_state == State::Finished;
    reply(ends ? kAck : kNak, now);
    if (!ends)
        return;
    m_hasProgram = true;
    m_state = State::Finished;
}

// The block before the one expected comes again when its acknowledgement was lost.
void SimBootLoader::obeyBlock(uint8_t sequence, const QByteArray &data, SimTime now)
{
    const bool receives = m_state == State::AwaitFirstBlock || m_state == State::AwaitBlock;
    if (receives && m_image.size() < m_size && sequence == m_sequence) {
        m_image += data.left(m_size - m_image.size());
        ++m_sequence;
        m_state = State::AwaitBlock;
        reply(kAck, now);
        return;
    }
    const bool repeated = m_state == State::AwaitBlock && sequence == static_cast<uint8_t>(m_sequence - 1);
    reply(repeated ? kAck : kNak, now);
}

void SimBootLoader::obeyEnd(SimTime now)
{
    const bool repeated = m_state == State::AwaitEnd;
    if (!repeated && (m_state != State::AwaitBlock || m_image.size() != m_size)) {
        reply(kNak, now);
        return;
    }
    m_state = State::AwaitEnd;
    replyAndPrompt(now);
}

void SimBootLoader::reply(char byte, SimTime due)
{
    m_replies.push_back({byte, due});
}

void SimBootLoader::replyAndPrompt(SimTime now)
{
    reply(kAck, now);
    m_nextPrompt = now + kPromptAfterAck;
}

void SimBootLoader::cancel(SimTime now)
{
    start(State::AwaitHeader, now);
    for (int i = 0; i < 5; ++i)
        reply(SimBootFrame::kCancel, now);
}

void SimBootLoader::losePower(SimTime now)
{
    m_bytesUntilCut = -1;
    start(m_hasProgram ? State::Off : State::AwaitHeader, now);
}

bool SimBootLoader::waitsForHost() const
{
    return m_state != State::Off && m_state != State::AwaitHeader;
}

bool SimBootLoader::isPrompting() const
{
    const bool asks =
        m_state == State::AwaitHeader || m_state == State::AwaitFirstBlock || m_state == State::AwaitEnd;
    return asks && m_buffer.isEmpty();
}

void SimBootLoader::finishWhenDone()
{
    if (m_state == State::Finished && m_replies.empty())
        m_state = State::Off;
}
