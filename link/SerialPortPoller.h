#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <functional>

class class_uart;

/// Keeps the list of serial ports fresh while nobody has a port open: a list every 500 ms, from the first
/// call of `class_uart::scan` on, and again after the port has been closed. There is one timer, so that lists
/// never come twice as often, whoever asks for scans besides.
///
/// Belongs to the link (which is its parent) and dies with it.
class SerialPortPoller : public QObject
{
    Q_OBJECT

public:
    /// `wanted` tells whether the serial interface is still the chosen one; while it is false lists are
    /// dropped and polling rests. Without it ports are always wanted.
    explicit SerialPortPoller(class_uart *link, std::function<bool()> wanted = {});

Q_SIGNALS:
    /// A list that is wanted; it may be the same as the one before.
    void portsListed(const QStringList &names);

private:
    bool isWanted() const { return !m_wanted || m_wanted(); }
    void handleList(const QStringList &names);
    void handleClose();
    void poll();

    class_uart *m_link;
    std::function<bool()> m_wanted;
    QTimer m_timer;
};
