#pragma once

#include "sim/SimClock.h"

#include <QByteArray>

#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

/// What the boot loader does with a frame instead of obeying.
enum class SimBootAct {
    Nak,     ///< refuses it and asks for it again
    Cancel,  ///< gives up the whole transfer
    Silence, ///< does not hear it
    LostAck, ///< takes it, but the answer gets lost
    Rubbish, ///< does not hear it and answers with bytes that mean nothing
    PowerCut ///< loses its power in the middle of it
};

/// The receiver of firmware images in a sensor. It is entered by a reset and left when an image is complete,
/// or when nobody has begun a transfer in time and there is a program to start. All operations may be called
/// from any thread.
class SimBootLoader
{
public:
    /// Time after a reset in which a transfer must begin; 1500 ms at first.
    void setWindow(std::chrono::milliseconds window);
    /// The only baud rate at which it hears on a serial line; 460800 at first.
    void setBaudRate(int baud);
    int baudRate() const;
    /// From the frame of that number on, counted since the reset with the header as 0, the next `times`
    /// frames meet the act.
    void schedule(SimBootAct act, int frame, int times = 1);
    /// The power fails when that many more bytes have come in.
    void cutPowerAfter(int bytes);

    /// The image received last, and whether it is complete.
    QByteArray image() const;
    QByteArray imageName() const;
    bool hasImage() const;

    // The side of the sensor.

    void enter(SimTime now);
    /// Power-up: enters the loader when an update was broken off and there is no program to start.
    void powerUp(SimTime now);
    bool isActive(SimTime now);
    /// True when bytes that come now on a shared serial line can only be meant for the loader.
    bool claims(const QByteArray &bytes, SimTime now);
    /// A whole message of an I2C write. False when it is none for the loader: with its image complete it
    /// gives way to the program at the first message that is no frame, even with its last answer unread.
    bool receiveMessage(const QByteArray &bytes, SimTime now);
    /// Bytes of a serial line.
    void receiveStream(const QByteArray &bytes, SimTime now);
    /// I2C: the next control byte, 0 when there is none.
    char readByte(SimTime now);
    /// Serial line: control bytes that are due. To be called again by nextDue().
    QByteArray takeDue(SimTime now);
    std::optional<SimTime> nextDue() const;

private:
    enum class State { Off, AwaitHeader, AwaitFirstBlock, AwaitBlock, AwaitEnd, Finished };
    struct Reply
    {
        char byte;
        SimTime due;
    };
    struct Plan
    {
        SimBootAct act;
        int frame;
        int times;
    };

    void start(State state, SimTime now);
    /// What happens by itself when the host is quiet.
    void letTimePass(SimTime now);
    void collect(const QByteArray &bytes, SimTime now);
    bool takeFrame(SimTime now);
    void handle(const QByteArray &frame, SimTime now);
    bool actOn(int number, const QByteArray &frame, SimTime now);
    std::optional<SimBootAct> plannedAct(int number);
    void obey(const QByteArray &frame, SimTime now);
    bool isHeader(const QByteArray &frame) const;
    void obeyHeader(const QByteArray &data, SimTime now);
    void beginImage(const QByteArray &name, int size);
    void obeyLastHeader(SimTime now);
    void obeyBlock(uint8_t sequence, const QByteArray &data, SimTime now);
    void obeyEnd(SimTime now);
    void reply(char byte, SimTime due);
    void replyAndPrompt(SimTime now);
    void cancel(SimTime now);
    void losePower(SimTime now);
    bool waitsForHost() const;
    bool isPrompting() const;
    void finishWhenDone();

    mutable std::mutex m_mutex; // guards everything below
    std::chrono::milliseconds m_window{1500};
    int m_baudRate = 460800;
    std::vector<Plan> m_plans;
    int m_bytesUntilCut = -1;

    State m_state = State::Off;
    bool m_hasProgram = true;
    SimTime m_entered;
    SimTime m_nextPrompt;
    SimTime m_lastReceived;
    QByteArray m_buffer;
    std::deque<Reply> m_replies;
    int m_frames = 0;
    uint8_t m_sequence = 0;
    int m_size = 0;
    QByteArray m_name;
    QByteArray m_image;
};
