#include "plotting/PlotServer.h"

#include <QTcpSocket>

namespace {

/// What waits of a sender that is faster than we are; it waits itself then. Small, so that the window stays
/// alive.
constexpr qint64 kReadBufferBytes = 64 * 1024;

} // namespace

PlotServer::PlotServer(StreamFormat format, QObject *parent)
    : QObject(parent)
    , m_format(format)
    , m_reader(newReader())
{
    connect(&m_server, &QTcpServer::newConnection, this, &PlotServer::accept);
}

PlotServer::~PlotServer()
{
    // A socket tells its end while it is destroyed, when the reader is gone already.
    if (m_socket != nullptr)
        m_socket->disconnect(this);
}

bool PlotServer::listen(const QHostAddress &address, quint16 port)
{
    return m_server.listen(address, port);
}

StreamReader PlotServer::newReader()
{
    return {m_format, [this](const QVector<double> &values) { Q_EMIT recordArrived(values); }};
}

void PlotServer::accept()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection())
        takeOver(socket);
}

void PlotServer::takeOver(QTcpSocket *socket)
{
    if (m_socket != nullptr)
        m_socket->abort();
    m_socket = socket;
    m_reader = newReader();
    socket->setReadBufferSize(kReadBufferBytes);
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { m_reader.feed(socket->readAll()); });
    connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
        if (socket->isReadable())
            m_reader.feed(socket->readAll());
        m_reader.finish();
        m_socket = nullptr;
        socket->deleteLater();
        Q_EMIT disconnected();
    });
    Q_EMIT connected(socket->peerAddress().toString());
}
