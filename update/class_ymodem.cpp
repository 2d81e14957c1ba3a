#include "update/class_ymodem.h"

#include "update/ymodem_frames.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPollInterval{10};
constexpr milliseconds kWriteDelay{10};
constexpr milliseconds kGuardTime{2000};
constexpr milliseconds kCancelTime{100};
constexpr uint8_t kMissLimit = 20;
constexpr int kCancelCount = 5;
constexpr char kMissMark = '\xFF';

/// Shared by all transfers, and not cleared between them.
uint8_t &missCount()
{
    static uint8_t count = 0;
    return count;
}

} // namespace

class_ymodem::class_ymodem(QString name, QByteArray image)
    : m_name(name.toLatin1())
    , m_size(static_cast<uint32_t>(image.size()))
    , m_content(std::move(image))
    , m_guardTimer(new QTimer(this))
    , m_readTimer(new QTimer(this))
{
    qDebug("ymodem create");
    qDebug("name:%s", qUtf8Printable(name));
    qDebug("size:%u", m_size);
    m_guardTimer->setTimerType(Qt::PreciseTimer);
    m_readTimer->setTimerType(Qt::PreciseTimer);
    connect(m_readTimer, &QTimer::timeout, this, [this] { Q_EMIT si_read(1); });
    connect(m_guardTimer, &QTimer::timeout, this, [this] {
        m_guardTimer->stop();
        qDebug("ymodem timeout");
        Q_EMIT si_updateTimeout();
    });
}

class_ymodem::~class_ymodem()
{
    qDebug("ymodem delete");
}

void class_ymodem::update_start()
{
    qDebug("update start");
    m_received.clear();
    m_sendBuffer.clear();
    m_sequence = 0;
    m_blockPayload = 0;
    m_sent = 0;
    m_state = State::HeaderRequest;
    m_guardTimer->start(kGuardTime);
    delayRead();
}

void class_ymodem::update_stop()
{
    m_guardTimer->stop();
    qDebug("update stop");
    Q_EMIT si_updateCancel();
}

void class_ymodem::update_cancel()
{
    m_sendBuffer = YmodemFrames::cancel();
    delayWrite();
    m_guardTimer->stop();
    QTimer::singleShot(kCancelTime, this, [this] {
        qDebug("update cancel");
        Q_EMIT si_updateCancel();
    });
}

void class_ymodem::sl_received1(QByteArray arr)
{
    accept(arr);
    while (!m_received.isEmpty()) {
        const char byte = m_received.front();
        if (byte == YmodemFrames::kCan) {
            update_stop();
            return;
        }
        process(byte);
        m_received.remove(0, 1);
    }
}

void class_ymodem::sl_writeSuccess()
{
    delayRead();
}

void class_ymodem::accept(const QByteArray &arr)
{
    switch (arr.isEmpty() ? '\0' : arr.front()) {
    case '\0':
        m_received.append(kMissMark);
        break;
    case YmodemFrames::kAck:
    case YmodemFrames::kNak:
    case YmodemFrames::kRequest:
        m_received.append(arr.front());
        break;
    case YmodemFrames::kCan:
        if (arr.startsWith(QByteArray(kCancelCount, YmodemFrames::kCan)))
            m_received.append(arr);
        break;
    default:
        break;
    }
}

void class_ymodem::process(char byte)
{
    if (byte == YmodemFrames::kNak) {
        qDebug("retry write");
        m_readTimer->stop();
        delayWrite();
        return;
    }
    switch (m_state) {
    case State::Idle:
        break;
    case State::HeaderRequest:
        expect(YmodemFrames::kRequest, byte, &class_ymodem::sendHeader);
        break;
    case State::HeaderAck:
        expect(YmodemFrames::kAck, byte, &class_ymodem::headerAcknowledged);
        break;
    case State::DataRequest:
        expect(YmodemFrames::kRequest, byte, &class_ymodem::sendFirstBlock);
        break;
    case State::BlockAck:
        expect(YmodemFrames::kAck, byte, &class_ymodem::blockAcknowledged);
        break;
    case State::EndAck:
        expect(YmodemFrames::kAck, byte, &class_ymodem::endAcknowledged);
        break;
    }
}

void class_ymodem::expect(char awaited, char byte, void (class_ymodem::*step)())
{
    if (byte != awaited) {
        miss();
        return;
    }
    m_readTimer->stop();
    (this->*step)();
}

void class_ymodem::miss()
{
    if (++missCount() < kMissLimit)
        return;
    missCount() = 0;
    if (m_state == State::DataRequest)
        m_state = State::HeaderAck;
    delayWrite();
}

void class_ymodem::sendHeader()
{
    m_sequence = 0;
    qDebug("<--------------------FILE C");
    m_guardTimer->start(kGuardTime);
    Q_EMIT si_setProgress(0);
    m_sendBuffer = YmodemFrames::header(m_name, m_size);
    m_state = State::HeaderAck;
    qDebug("%s", isContentEmpty() ? "NULL FILE INFO--------------->" : "FILE INFO--------------->");
    missCount() = 0;
    Q_EMIT si_write(m_sendBuffer);
}

void class_ymodem::headerAcknowledged()
{
    if (isContentEmpty()) {
        qDebug("<--------------------NULL FILE ACK");
        m_guardTimer->stop();
        Q_EMIT si_setProgress(100);
        Q_EMIT si_updateSuccess();
        return;
    }
    m_guardTimer->start(kGuardTime);
    qDebug("<--------------------FILE ACK");
    m_state = State::DataRequest;
    delayRead();
}

void class_ymodem::sendFirstBlock()
{
    qDebug("<--------------------CONTENT C");
    m_guardTimer->start(kGuardTime);
    m_sequence = 1;
    m_state = State::BlockAck;
    const QByteArray payload = remaining(YmodemFrames::kLargePayload);
    if (payload.size() > YmodemFrames::kSmallPayload) {
        // The first large block counts whole, whatever the image fills of it.
        m_blockPayload = YmodemFrames::kLargePayload;
        m_sendBuffer = YmodemFrames::largeBlock(m_sequence, payload, '\0');
    } else {
        m_blockPayload = static_cast<uint16_t>(payload.size());
        m_sendBuffer = YmodemFrames::smallBlock(m_sequence, payload);
    }
    qDebug("DATA:%d--------------->", m_sequence);
    missCount() = 0;
    delayWrite();
}

void class_ymodem::blockAcknowledged()
{
    qDebug("<--------------------CONTENT ACK");
    m_guardTimer->start(kGuardTime);
    ++m_sequence;
    m_offset = std::min(m_offset + m_blockPayload, m_content.size());
    m_sent += m_blockPayload;
    qDebug("%u / %u", m_sent, m_size);
    const uint64_t percent = uint64_t{m_sent} * 100 / m_size;
    Q_EMIT si_setProgress(static_cast<uint8_t>(std::min<uint64_t>(99, percent)));
    if (isContentEmpty())
        sendEndOfFile();
    else
        sendNextBlock();
}

void class_ymodem::sendNextBlock()
{
    const QByteArray payload = remaining(YmodemFrames::kLargePayload);
    m_blockPayload = static_cast<uint16_t>(payload.size());
    if (payload.size() > YmodemFrames::kSmallPayload) {
        m_sendBuffer = YmodemFrames::largeBlock(m_sequence, payload);
    } else {
        qDebug("send:128");
        m_sendBuffer = YmodemFrames::smallBlock(m_sequence, payload);
    }
    qDebug("DATA--------------->");
    missCount() = 0;
    delayWrite();
}

void class_ymodem::sendEndOfFile()
{
    m_sendBuffer = YmodemFrames::endOfFile();
    m_state = State::EndAck;
    qDebug("EOT--------------->");
    delayWrite();
}

void class_ymodem::endAcknowledged()
{
    qDebug("<--------------------EOT ACK");
    m_state = State::HeaderRequest;
    m_name.clear();
    m_size = 0;
    delayRead();
}

void class_ymodem::delayRead()
{
    m_readTimer->start(kPollInterval);
}

void class_ymodem::delayWrite()
{
    QTimer::singleShot(kWriteDelay, this, [this] { Q_EMIT si_write(m_sendBuffer); });
}

QByteArray class_ymodem::remaining(int maxBytes) const
{
    return m_content.mid(m_offset, maxBytes);
}
