#include "link/SerialPortPoller.h"

#include "link/class_uart.h"

namespace {
constexpr std::chrono::milliseconds kPollInterval{500};
}

SerialPortPoller::SerialPortPoller(class_uart *link, std::function<bool()> wanted)
    : QObject(link)
    , m_link(link)
    , m_wanted(std::move(wanted))
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(kPollInterval);
    connect(&m_timer, &QTimer::timeout, this, &SerialPortPoller::poll);
    connect(link, &class_uart::si_scanEnd, this, &SerialPortPoller::handleList);
    connect(link, &class_uart::si_close, this, &SerialPortPoller::handleClose);
}

void SerialPortPoller::handleList(const QStringList &names)
{
    if (!isWanted())
        return;
    m_timer.start();
    Q_EMIT portsListed(names);
}

void SerialPortPoller::handleClose()
{
    if (isWanted())
        m_timer.start();
}

void SerialPortPoller::poll()
{
    if (isWanted() && !m_link->port->isOpen())
        m_link->scan(false);
}
