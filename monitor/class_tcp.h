#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

class QTcpSocket;

/// The connection to a plotting tool. Records go out whole or not at all: a peer that stops reading makes us
/// leave records out rather than grow without bound. GUI thread only.
class class_tcp : public QObject
{
    Q_OBJECT

public:
    explicit class_tcp(QObject *parent = nullptr);

    bool isConnected() const { return connected; }

    /// Blocks for half a second at most. Success comes as si_connected(), a failure without a word. The
    /// address is one in numbers; any other text is a failure.
    void connectToHost(const QString &address, quint16 port);
    void disconnectFromHost();
    /// One record, sent at once so that the peer sees it singly. Call only while connected.
    void send(const QByteArray &record);

Q_SIGNALS:
    void si_connected();
    void si_disconnected();
    void si_getIp(QString ip);
    /// What the peer said; nobody asks it anything.
    void si_receive(QByteArray data);

private:
    void onConnected();
    void onDisconnected();
    bool hasRoomFor(const QByteArray &record);

    QTcpSocket *socket;
    bool connected = false;
    bool m_leavingOut = false;
};
