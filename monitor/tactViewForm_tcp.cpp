// The samples of the active panel for a plotting tool.

#include "monitor/tactViewForm.h"

#include "ui_tactViewForm.h"

#include "app/class_settings.h"
#include "monitor/class_tcp.h"
#include "monitor/tcp_record.h"
#include "panel/fingerForm.h"
#include "views/class_finger.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QRegExpValidator>

namespace {

/// The decoder whose data goes out, one for the process, and the view that it is part of.
class_finger *tcpFinger = nullptr;
QPointer<QWidget> tcpFingerView;

QString addressKey()
{
    return QStringLiteral("TCP/IP");
}

QString portKey()
{
    return QStringLiteral("TCP/PORT");
}

} // namespace

void tactViewForm::tcpInit()
{
    tcp = new class_tcp(this);
    ui->leServiceAddr->setText(class_settings::get(addressKey()));
    ui->spbServicePort->setValue(static_cast<int>(class_settings::get(portKey()).toUInt()));
    const QRegExp dottedQuad(QStringLiteral("\\b(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\\.){3}"
                                            "(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\\b"));
    ui->leServiceAddr->setValidator(new QRegExpValidator(dottedQuad, ui->leServiceAddr));
    connect(tcp, &class_tcp::si_connected, this,
            [this] { ui->pbtnServiceConnect->setText(QObject::tr("断开")); });
    connect(tcp, &class_tcp::si_disconnected, this,
            [this] { ui->pbtnServiceConnect->setText(QObject::tr("连接")); });
    connect(ui->pbtnServiceConnect, &QPushButton::clicked, this, &tactViewForm::connectOrDisconnectTcp);
}

void tactViewForm::connectOrDisconnectTcp()
{
    qDebug("tcp connected:%d", tcp->isConnected());
    if (tcp->isConnected()) {
        tcp->disconnectFromHost();
        return;
    }
    const QString address = ui->leServiceAddr->text();
    const int port = ui->spbServicePort->value();
    class_settings::set(addressKey(), address);
    class_settings::set(portKey(), QString::number(port));
    tcp->connectToHost(address, static_cast<quint16>(port));
}

// Without an active panel the last one stays the source, for as long as its view lives.
void tactViewForm::followActivePanel()
{
    if (!tcpFingerView)
        tcpFinger = nullptr;
    if (const QMdiSubWindow *window = mdi->activeSubWindow()) {
        const auto *panel = qobject_cast<fingerForm *>(window->widget());
        if (panel && panel->view() && panel->view() != tcpFinger) {
            tcpFinger = panel->view();
            tcpFingerView = dynamic_cast<QWidget *>(tcpFinger);
        }
    }
}

void tactViewForm::tcpSend()
{
    followActivePanel();
    if (!tcpFinger || !tcp->isConnected())
        return;
    tcp->send(tcpRecord(static_cast<TcpFormat>(ui->cbbTcpDataFormat->currentIndex()), *tcpFinger));
}
