#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>

#include <cstdint>

/// Sends one image to a sensor's boot loader. It owns no link: its owner answers si_read and si_write, and
/// deletes it after one of the three signals that end a transfer, never inside a signal. The receiver is
/// polled: it never pushes. Lives in one thread. Two at a time would share their count of missed polls.
class class_ymodem : public QObject
{
    Q_OBJECT

public:
    /// name is the bare file name; of it 20 bytes in Latin-1 are sent.
    class_ymodem(QString name, QByteArray image);
    ~class_ymodem() override;

Q_SIGNALS:
    /// Asks the owner to write pack whole, in one go, and then to call sl_writeSuccess.
    void si_write(QByteArray pack);
    /// Asks the owner to read len bytes and to hand what came, even if nothing did, to sl_received1.
    void si_read(uint16_t len);
    /// Percent, 100 only when the receiver has confirmed the end.
    void si_setProgress(uint8_t data);
    void si_updateSuccess();
    /// Nothing has moved for 2000 ms. Polling goes on until the sender is deleted.
    void si_updateTimeout();
    /// Either side has given up.
    void si_updateCancel();

public Q_SLOTS:
    void update_start();
    void update_stop();
    /// Tells the receiver to give up; si_updateCancel follows 100 ms later.
    void update_cancel();
    /// Of arr only the first byte counts, but for five cancel bytes at its front.
    void sl_received1(QByteArray arr);
    void sl_writeSuccess();

private:
    enum class State { Idle, HeaderRequest, HeaderAck, DataRequest, BlockAck, EndAck };

    void accept(const QByteArray &arr);
    void process(char byte);
    void expect(char awaited, char byte, void (class_ymodem::*step)());
    void miss();
    void sendHeader();
    void headerAcknowledged();
    void sendFirstBlock();
    void blockAcknowledged();
    void sendNextBlock();
    void sendEndOfFile();
    void endAcknowledged();
    void delayRead();
    void delayWrite();
    QByteArray remaining(int maxBytes) const;
    bool isContentEmpty() const { return m_offset >= m_content.size(); }

    State m_state = State::Idle;
    QByteArray m_name;
    uint32_t m_size;
    QByteArray m_content;
    int m_offset = 0; ///< of the block in flight within the content
    uint8_t m_sequence = 0;
    uint16_t m_blockPayload = 0; ///< bytes
    uint32_t m_sent = 0;         ///< payload bytes acknowledged
    QTimer *m_guardTimer;
    QTimer *m_readTimer;
    QByteArray m_received;
    QByteArray m_sendBuffer;
};
