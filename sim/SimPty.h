#pragma once

#include <QByteArray>
#include <QString>

/// A pseudo-terminal: the bench holds one end, the host opens the other by name like any serial port.
class SimPty
{
public:
    /// Opens a pair; isOpen() tells whether the system had one.
    SimPty();
    ~SimPty();
    SimPty(const SimPty &) = delete;
    SimPty &operator=(const SimPty &) = delete;

    bool isOpen() const { return m_master >= 0; }
    /// Descriptor to wait on for bytes of the host.
    int descriptor() const { return m_master; }
    /// Name without "/dev/", as port lists show it.
    QString portName() const;
    /// Baud rate that the host has set; 0 when it is none of the usual ones.
    int baudRate() const;

    /// All bytes that the host has sent and nobody has read yet.
    QByteArray readAll();
    /// Bytes that do not fit because nobody reads are lost, as on a wire.
    void write(const QByteArray &bytes);

private:
    int m_master = -1;
    int m_slave = -1; // kept open, or the pair would hang up whenever the host closes its end
};
