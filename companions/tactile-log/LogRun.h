#pragma once

#include "companions/tactile-log/SampleLog.h"

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>
#include <QThread>
#include <QTimer>

#include <chrono>
#include <optional>

class fingerThread;

struct LogOptions
{
    uint8_t link = 0; ///< as fingerThread counts them
    QString device;   ///< empty: the only one that is listed
    bool listsOnly = false;
    QString folder; ///< empty: the standard output
    LogFormat format = LogFormat::Csv;
    std::optional<std::chrono::milliseconds> duration;
    QVector<uint8_t> addresses; ///< empty: all
};

/// Why a run ended; the program's exit code.
enum class LogEnd {
    Done = 0,
    NoSample = 1,      ///< nothing came that could be written
    DeviceUnclear = 2, ///< there are several
    DeviceMissing = 3,
    DeviceRefused = 4, ///< it is there, but cannot be opened
    NotWritten = 5,    ///< a file could not be written
    ReaderGone = 6,    ///< nobody reads the standard output any more
};

/// From the device to the files: runs the worker in a thread of its own, connects, and connects again when
/// the device comes back. Lives and ends in the main thread.
class LogRun : public QObject
{
    Q_OBJECT

public:
    explicit LogRun(LogOptions options, QObject *parent = nullptr);
    ~LogRun() override;

    const SampleLog &log() const { return m_log; }
    /// What stands on the line of the terminal.
    QString status() const;
    /// One line that tells the user what went wrong and what to do; empty when nothing did.
    QString complaint() const { return m_complaint; }
    /// Ends the run when all that has arrived is written.
    void end();

Q_SIGNALS:
    /// Once, at the end.
    void ended(LogEnd why);
    /// One line that the user should see; the run goes on.
    void noticed(const QString &line);
    /// Every name once; only when just the list is wanted.
    void listed(const QStringList &devices);

    void connectWanted(const QString &device);
    void disconnectWanted();
    void requestWanted(uint8_t infIdx, uint8_t addr, const QByteArray &frame, uint16_t rspLen);

private:
    void wireWorker();
    void takeList(const QVector<QString> &devices);
    void addSensor(const sensor_ts &sensor);
    void lookForDevice();
    void giveUpOn(const QString &device);
    void lookAtLine();
    void take(uint8_t infIdx, uint8_t addr, const QVector<uint8_t> &pack);
    bool isWanted(uint8_t addr) const;
    void stopWorker();
    void finish(LogEnd why, const QString &complaint);

    const LogOptions m_options;
    SampleLog m_log;
    QThread m_thread;
    fingerThread *m_worker; ///< deleted by its thread
    QStringList m_devices;
    QTimer m_look;
    QElapsedTimer m_waiting; ///< since the beginning, or since the device was asked for
    QElapsedTimer m_silence; ///< since a sensor was last there
    int m_liveSensors = 0;   ///< wanted or not
    bool m_asked = false;
    bool m_connected = false;
    bool m_wasConnected = false;
    bool m_ended = false;
    QString m_complaint;
};
