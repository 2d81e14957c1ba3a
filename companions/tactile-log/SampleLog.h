#pragma once

#include "engine/sensor_ts.h"
#include "protocol/sample.h"

#include <QFile>
#include <QString>

#include <functional>
#include <map>
#include <memory>

enum class LogFormat {
    Csv,       ///< a table with one heading a column
    JsonLines, ///< an object a line
    Recording, ///< as the window records
};

/// The samples of all sensors on their way into files: a file a sensor and stay, or all into the standard
/// output.
class SampleLog
{
public:
    /// No folder: the standard output, for every format but Recording. A table has room for one sensor there:
    /// the first.
    SampleLog(LogFormat format, QString folder);

    /// One line for the user when nothing of the sensor will be written; else empty.
    QString addSensor(const sensor_ts &sensor);
    void removeSensor(const sensor_ts &sensor);
    /// False when the sample could not be written: error() says why.
    bool take(uint8_t infIdx, uint8_t addr, const QVector<uint8_t> &pack);

    int sensorCount() const { return static_cast<int>(m_sensors.size()); }
    /// Samples written.
    quint64 samples() const { return m_samples; }
    /// Samples that the sensors made, by their counters, and that never arrived.
    quint64 lost() const { return m_lost; }
    /// Where the latest sample went; empty before the first, and for the standard output.
    QString lastFile() const { return m_lastFile; }
    QString error() const { return m_error; }
    /// Whether the reason is that nobody reads the standard output any more.
    bool isReaderGone() const;

private:
    /// Gives the reason when the sample could not be written.
    using Write = std::function<QString(const Sample &)>;
    struct Sensor
    {
        const finger_info_ts *model;
        Write write;
        Sample sample;
        bool hasSample = false;
    };
    using Place = std::pair<uint8_t, uint8_t>; ///< bus entry and address

    Write recorder(const sensor_ts &sensor);
    Write lineWriter(const sensor_ts &sensor, const finger_info_ts &model);
    QString writeOut(const QByteArray &headings, const QByteArray &line);

    LogFormat m_format;
    QString m_folder;
    QFile m_output;          ///< the standard output; closed when files are wanted
    bool m_isHeaded = false; ///< the standard output has its headings
    std::map<Place, Sensor> m_sensors;
    quint64 m_samples = 0;
    quint64 m_lost = 0;
    QString m_lastFile;
    QString m_error;
};
