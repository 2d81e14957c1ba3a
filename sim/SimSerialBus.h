#pragma once

#include "sim/SimJournal.h"
#include "sim/SimRequestParser.h"
#include "sim/SimSensor.h"
#include "sim/SimWire.h"

#include <QString>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

class SimPty;

/// Sensors on one serial line, reached through a pseudo-terminal that any serial port class can open. A
/// thread of its own answers. The port stands in the list of ports while the object lives, except between
/// removePort() and restorePort(). All operations may be called from any thread.
class SimSerialBus
{
public:
    SimSerialBus();
    ~SimSerialBus();
    SimSerialBus(const SimSerialBus &) = delete;
    SimSerialBus &operator=(const SimSerialBus &) = delete;

    /// Like "pts/3"; empty while the port is away.
    QString portName() const;
    /// Baud rate that the host has set; 0 while the port is away.
    int baudRate() const;

    /// Plugs a sensor in, which powers it up.
    void plug(const std::shared_ptr<SimSensor> &sensor);
    void unplug(const std::shared_ptr<SimSensor> &sensor);
    std::vector<std::shared_ptr<SimSensor>> sensors() const;

    /// The adapter is pulled out: the host's end hangs up.
    void removePort();
    /// The adapter is back; the system usually gives it the old name again, but need not.
    void restorePort();

    /// True at first: bytes take the time that the baud rate gives them, in both directions.
    void setPaced(bool paced);

    SimJournal &journal() { return m_journal; }

private:
    void run();
    void wake();
    void waitForEvent();
    void followPort();
    void setWantPort(bool want);
    void readHost();
    bool passToBootLoaders(const QByteArray &bytes);
    void collectFromBootLoaders(SimTime now);
    void dispatch(const SimRequestParser::Item &item, SimTime end);
    std::vector<SimDelivery> deliveriesFor(const SimRequestParser::Item &item, int baud);
    void send(const std::vector<SimDelivery> &deliveries, SimTime start);

    SimJournal m_journal;
    const int m_wakeEvent;

    mutable std::mutex m_mutex; // guards the next five
    std::condition_variable m_portFollowed;
    std::vector<std::shared_ptr<SimSensor>> m_sensors;
    std::unique_ptr<SimPty> m_pty;
    bool m_wantPort = true;
    bool m_paced = true;

    // Only the thread touches these.
    SimRequestParser m_parser;
    SimWire m_wire;
    SimTime m_hostLineFree;
    std::optional<SimTime> m_bootLoaderDue;

    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};
