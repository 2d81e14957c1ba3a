#include "soak/StallingPeer.h"

#include <QRegularExpression>
#include <QTcpSocket>

using namespace std::chrono_literals;

namespace {

constexpr auto kMoodTime = 3s;
/// What may wait in our own buffer while we do not read.
constexpr qint64 kUnreadBytes = 65536;

} // namespace

StallingPeer::StallingPeer(unsigned seed)
    : m_chance(seed)
    , m_worker(std::make_unique<QObject>())
{
    m_server = new QTcpServer(m_worker.get());
    m_moods = new QTimer(m_worker.get());
    QObject::connect(m_server, &QTcpServer::newConnection, m_worker.get(), [this] { takeConnection(); });
    QObject::connect(m_moods, &QTimer::timeout, m_worker.get(), [this] { changeMood(); });
    QObject::connect(&m_thread, &QThread::started, m_moods, [this] { m_moods->start(kMoodTime); });
    // Timers and notifiers end where they live.
    QObject::connect(&m_thread, &QThread::finished, m_worker.get(), [this] {
        m_moods->stop();
        m_server->close();
        if (m_socket != nullptr)
            m_socket->abort();
    });
    if (m_server->listen(QHostAddress::LocalHost))
        m_port = m_server->serverPort();
    m_worker->moveToThread(&m_thread);
    m_thread.start();
}

StallingPeer::~StallingPeer()
{
    m_thread.quit();
    m_thread.wait();
}

void StallingPeer::takeConnection()
{
    if (m_socket != nullptr)
        m_socket->deleteLater();
    m_socket = m_server->nextPendingConnection();
    m_socket->setReadBufferSize(kUnreadBytes);
    QObject::connect(m_socket, &QTcpSocket::readyRead, m_socket, [this] { read(); });
}

void StallingPeer::read()
{
    static const QRegularExpression record(QStringLiteral("^[-0-9.,einfa]*\r\n$"));
    while (m_reads && m_socket->canReadLine())
        ++(record.match(QString::fromLatin1(m_socket->readLine())).hasMatch() ? m_records : m_torn);
}

void StallingPeer::changeMood()
{
    if (m_socket == nullptr)
        return;
    m_reads = !m_chance.oneIn(3);
    if (m_reads)
        read();
    if (m_chance.oneIn(8)) {
        ++m_resets;
        m_socket->abort();
    }
}
