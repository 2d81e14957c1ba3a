#include "monitor/class_tcp.h"

#include <QHostAddress>
#include <QTcpSocket>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kConnectTimeout{500};
/// The most that waits for a peer that does not read.
constexpr qint64 kUnsentMaxBytes = 4 * 1024 * 1024;
/// A peer counts as caught up below this, so that one on the brink does not flood the log.
constexpr qint64 kCaughtUpBytes = kUnsentMaxBytes / 2;

} // namespace

class_tcp::class_tcp(QObject *parent)
    : QObject(parent)
    , socket(new QTcpSocket(this))
{
    qDebug("tcp new");
    connect(socket, &QTcpSocket::connected, this, &class_tcp::onConnected);
    connect(socket, &QTcpSocket::disconnected, this, &class_tcp::onDisconnected);
    connect(socket, &QTcpSocket::readyRead, this, [this] { Q_EMIT si_receive(socket->readAll()); });
}

void class_tcp::onConnected()
{
    qDebug("tcp connected");
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_leavingOut = false;
    connected = true;
    Q_EMIT si_connected();
}

void class_tcp::onDisconnected()
{
    qDebug("tcp disconnected");
    connected = false;
    Q_EMIT si_disconnected();
}

void class_tcp::connectToHost(const QString &address, quint16 port)
{
    // A name would be looked up first, without regard to the time-out.
    if (!QHostAddress().setAddress(address))
        return;
    socket->connectToHost(address, port, QIODevice::ReadWrite, QAbstractSocket::AnyIPProtocol);
    socket->waitForConnected(static_cast<int>(kConnectTimeout.count()));
}

void class_tcp::disconnectFromHost()
{
    socket->disconnectFromHost();
    socket->abort();
}

bool class_tcp::hasRoomFor(const QByteArray &record)
{
    const qint64 unsent = socket->bytesToWrite();
    if (m_leavingOut) {
        m_leavingOut = unsent > kCaughtUpBytes;
    } else if (unsent + record.size() > kUnsentMaxBytes) {
        qDebug("tcp peer does not read, records are left out");
        m_leavingOut = true;
    }
    return !m_leavingOut;
}

void class_tcp::send(const QByteArray &record)
{
    if (!hasRoomFor(record))
        return;
    socket->write(record);
    socket->flush();
}
