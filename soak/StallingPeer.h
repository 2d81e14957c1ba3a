#pragma once

#include "soak/Chance.h"

#include <QObject>
#include <QTcpServer>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <memory>

class QTcpSocket;

/// Listens where the tool sends to, and is a bad peer: reads for a while, then stops reading, or resets the
/// connection. Works in a thread of its own.
class StallingPeer
{
public:
    explicit StallingPeer(unsigned seed);
    ~StallingPeer();
    StallingPeer(const StallingPeer &) = delete;
    StallingPeer &operator=(const StallingPeer &) = delete;

    quint16 port() const { return m_port; }
    qint64 records() const { return m_records; } ///< that came whole
    qint64 torn() const { return m_torn; }       ///< lines that are no record
    int resets() const { return m_resets; }

private:
    void takeConnection();
    void read();
    void changeMood();

    Chance m_chance;
    QThread m_thread;
    std::unique_ptr<QObject> m_worker; ///< lives in the thread, owns the next three
    QTcpServer *m_server = nullptr;
    QTcpSocket *m_socket = nullptr;
    QTimer *m_moods = nullptr;
    bool m_reads = true;
    quint16 m_port = 0;
    std::atomic<qint64> m_records{0};
    std::atomic<qint64> m_torn{0};
    std::atomic<int> m_resets{0};
};
