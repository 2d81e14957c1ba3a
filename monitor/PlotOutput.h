#pragma once

#include "monitor/tcp_record.h"

#include <QObject>
#include <QString>

class class_finger;
class class_tcp;

/// What goes to a plotting tool: the samples of one view, over a connection whose address is remembered.
class PlotOutput : public QObject
{
    Q_OBJECT

public:
    explicit PlotOutput(QObject *parent = nullptr);

    static QString storedAddress();
    static int storedPort();

    /// Ends the connection, or remembers the address and tries it for half a second at most.
    void connectOrDisconnect(const QString &address, int port);
    /// Sends what the active panel's decoder holds. Without one (null) the last one stays the source, for as
    /// long as its view lives.
    void send(TcpFormat format, class_finger *active);

Q_SIGNALS:
    void connectedChanged(bool connected);

private:
    class_tcp *tcp;
};
