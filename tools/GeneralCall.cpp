#include "tools/GeneralCall.h"

#include "link/SensorLink.h"
#include "protocol/command.h"
#include "protocol/frames.h"

#include <QDebug>
#include <QSerialPort>

#include <thread>

using namespace std::chrono_literals;

namespace {

constexpr auto kSetAnswerWait = 100ms;
constexpr auto kPollAnswerWait = 10ms;
constexpr auto kReplyDelay = 10ms;

constexpr uint8_t kGeneralAddress = 0;
constexpr auto kSetAddress = static_cast<uint8_t>(Command::SetIicAddress);
constexpr auto kReadAddress = static_cast<uint8_t>(Command::GetIicAddress);
constexpr int kReadAddressAt = kPayloadAt + 3;

QByteArray setFrame(uint8_t target)
{
    qDebug("set addr:0x%02x", target);
    QByteArray frame = requestFrame(kGeneralAddress, kSetAddress, {0, 0, 0, target, 0});
    qDebug("%s", frame.toHex().constData());
    return frame;
}

bool startsLikeAnswer(const QByteArray &bytes)
{
    return frameBytes(bytes)[0] == kResponseSync1 && frameBytes(bytes)[1] == kResponseSync2;
}

} // namespace

std::optional<GeneralCall::Answer> GeneralCall::ask(std::optional<uint8_t> target)
{
    return m_link.isBridge() ? askOverBridge(target) : askOverPort(target);
}

std::optional<GeneralCall::Answer> GeneralCall::askOverPort(std::optional<uint8_t> target)
{
    QSerialPort *port = m_link.port();
    if (target) {
        port->write(setFrame(*target));
        port->waitForReadyRead(static_cast<int>(kSetAnswerWait.count()));
    }
    // Either wait may find that the device is gone, and then the port is closed.
    if (port->isOpen()) {
        port->write(QByteArray::fromHex("00FF"));
        port->waitForReadyRead(static_cast<int>(kPollAnswerWait.count()));
    }
    return port->isOpen() ? answerIn(port->readAll()) : std::optional<Answer>();
}

/// Any frame is an answer here, a sample too. Bytes that are no whole frame yet wait for the next ones.
std::optional<GeneralCall::Answer> GeneralCall::answerIn(const QByteArray &bytes)
{
    static QByteArray buffer;
    buffer.append(bytes);
    while (buffer.size() >= kFrameOverhead && !startsLikeAnswer(buffer))
        buffer.remove(0, 1);
    if (buffer.size() < kFrameOverhead)
        return {};
    const Answer answer{frameBytes(buffer)[kCommandAt], frameBytes(buffer)[kAddressAt]};
    buffer.clear();
    return answer;
}

std::optional<GeneralCall::Answer> GeneralCall::askOverBridge(std::optional<uint8_t> target)
{
    if (target)
        m_link.write(kGeneralAddress, setFrame(*target));
    m_link.write(kGeneralAddress, requestFrame(kGeneralAddress, kReadAddress));
    std::this_thread::sleep_for(kReplyDelay);

    QByteArray reply(kRequestLength, '\0');
    m_link.read(kGeneralAddress, reinterpret_cast<uint8_t *>(reply.data()), reply.size());
    if (!startsLikeAnswer(reply))
        return {};
    Answer answer{frameBytes(reply)[kCommandAt], {}};
    if (answer.command == (kReadAddress | kResponseBit))
        answer.address = frameBytes(reply)[kReadAddressAt];
    return answer;
}

bool isAddressSet(const GeneralCall::Answer &answer)
{
    return answer.command == (kSetAddress | kResponseBit);
}
