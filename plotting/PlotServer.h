#pragma once

#include "plotting/StreamReader.h"

#include <QHostAddress>
#include <QObject>
#include <QTcpServer>

class QTcpSocket;

/// Listens for the sender of samples and reads what it sends. A new connection takes the place of the one
/// before, which may have lost its other end without a word.
class PlotServer : public QObject
{
    Q_OBJECT

public:
    explicit PlotServer(StreamFormat format, QObject *parent = nullptr);
    ~PlotServer() override;

    /// False, with errorString(), when the port cannot be had. Port 0 takes any that is free.
    bool listen(const QHostAddress &address, quint16 port);
    QString errorString() const { return m_server.errorString(); }
    quint16 port() const { return m_server.serverPort(); }
    StreamFaults faults() const { return m_reader.faults(); }
    StreamFormat format() const { return m_reader.format(); }

Q_SIGNALS:
    void connected(const QString &peer);
    void disconnected();
    void recordArrived(const QVector<double> &values);

private:
    void accept();
    void takeOver(QTcpSocket *socket);
    StreamReader newReader();

    StreamFormat m_format;
    QTcpServer m_server;
    QTcpSocket *m_socket = nullptr;
    StreamReader m_reader;
};
