#include "monitor/PlotOutput.h"

#include "app/class_settings.h"
#include "monitor/class_tcp.h"
#include "views/class_finger.h"

#include <QPointer>
#include <QWidget>

namespace {

/// The decoder whose data goes out, one for the process: the active one, or the last one that was as long as
/// it lives. Null without any.
class_finger *followed(class_finger *active)
{
    static class_finger *finger = nullptr;
    static QPointer<QWidget> view; // that the decoder is part of
    if (!view)
        finger = nullptr;
    if (active && active != finger) {
        finger = active;
        view = dynamic_cast<QWidget *>(active);
    }
    return finger;
}

QString addressKey()
{
    return QStringLiteral("TCP/IP");
}

QString portKey()
{
    return QStringLiteral("TCP/PORT");
}

} // namespace

PlotOutput::PlotOutput(QObject *parent)
    : QObject(parent)
    , tcp(new class_tcp(this))
{
    connect(tcp, &class_tcp::si_connected, this, [this] { Q_EMIT connectedChanged(true); });
    connect(tcp, &class_tcp::si_disconnected, this, [this] { Q_EMIT connectedChanged(false); });
}

QString PlotOutput::storedAddress()
{
    return class_settings::get(addressKey());
}

int PlotOutput::storedPort()
{
    return static_cast<int>(class_settings::get(portKey()).toUInt());
}

void PlotOutput::connectOrDisconnect(const QString &address, int port)
{
    qDebug("tcp connected:%d", tcp->isConnected());
    if (tcp->isConnected()) {
        tcp->disconnectFromHost();
        return;
    }
    class_settings::set(addressKey(), address);
    class_settings::set(portKey(), QString::number(port));
    tcp->connectToHost(address, static_cast<quint16>(port));
}

void PlotOutput::send(TcpFormat format, class_finger *active)
{
    const class_finger *finger = followed(active);
    if (finger && tcp->isConnected())
        tcp->send(tcpRecord(format, *finger));
}
