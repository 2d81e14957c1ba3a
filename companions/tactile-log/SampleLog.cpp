#include "companions/tactile-log/SampleLog.h"

#include "recording/SampleRecorder.h"
#include "recording/recording_folder.h"
#include "recording/sample_lines.h"
#include "recording/whole_lines.h"

#include <QDateTime>

#include <cerrno>
#include <chrono>
#include <cstdio>

namespace {

constexpr uint8_t kUnknownProgram = 0xFF;

/// The row of the program id; without one, the first whose frames are as long. Null if neither fits.
const finger_info_ts *modelOf(const sensor_ts &sensor)
{
    const finger_info_ts *model = sensor.prg == kUnknownProgram ? nullptr : findFingerInfoByPrg(sensor.prg);
    return model ? model : findFingerInfoByPackLen(sensor.pack.size());
}

QString nameOf(const sensor_ts &sensor)
{
    return QString::asprintf("sensor 0x%02X of bus %d", sensor.addr, sensor.infIdx + 1);
}

} // namespace

SampleLog::SampleLog(LogFormat format, QString folder)
    : m_format(format)
    , m_folder(std::move(folder))
{
    if (m_folder.isEmpty())
        m_output.open(fileno(stdout), QIODevice::WriteOnly | QIODevice::Unbuffered);
}

QString SampleLog::addSensor(const sensor_ts &sensor)
{
    const finger_info_ts *model = modelOf(sensor);
    if (!model)
        return QStringLiteral("%1 is left out: no known model has frames of %2 bytes.")
            .arg(nameOf(sensor))
            .arg(sensor.pack.size());
    if (m_output.isOpen() && m_format == LogFormat::Csv && !m_sensors.empty())
        return QStringLiteral("%1 is left out: one table has room for one sensor.").arg(nameOf(sensor));
    m_sensors[{sensor.infIdx, sensor.addr}] = {
        model, m_format == LogFormat::Recording ? recorder(sensor) : lineWriter(sensor, *model), {}};
    return {};
}

void SampleLog::removeSensor(const sensor_ts &sensor)
{
    m_sensors.erase({sensor.infIdx, sensor.addr});
}

bool SampleLog::take(uint8_t infIdx, uint8_t addr, const QVector<uint8_t> &pack)
{
    const auto found = m_sensors.find({infIdx, addr});
    if (found == m_sensors.end())
        return true;
    Sensor &sensor = found->second;
    const uint8_t before = sensor.sample.counter;
    const auto frame = QByteArray::fromRawData(reinterpret_cast<const char *>(pack.constData()), pack.size());
    const uint8_t blockBytes = sampleBlockLength(sensor.model->yddsFmt);
    const bool good = decodeSample(frame, *sensor.model, blockBytes, sensor.sample) == SampleRefusal::None;
    // The window records what it refuses like the sample before.
    if (!good && m_format != LogFormat::Recording)
        return true;
    if (good && sensor.hasSample)
        m_lost += static_cast<uint8_t>(sensor.sample.counter - before - 1);
    sensor.hasSample = sensor.hasSample || good;
    m_error = sensor.write(sensor.sample);
    if (!m_error.isEmpty())
        return false;
    ++m_samples;
    return true;
}

bool SampleLog::isReaderGone() const
{
    return m_output.isOpen() && m_error == qt_error_string(EPIPE);
}

SampleLog::Write SampleLog::recorder(const sensor_ts &sensor)
{
    auto recorder = std::make_shared<SampleRecorder>(m_folder, sensor.infIdx, sensor.addr);
    return [this, recorder](const Sample &sample) {
        recorder->append(sample);
        m_lastFile = recorder->fileName();
        return recorder->error();
    };
}

SampleLog::Write SampleLog::lineWriter(const sensor_ts &sensor, const finger_info_ts &model)
{
    const SampleSource source{sensor.infIdx, sensor.addr, QString::fromUtf8(model.model), sensor.sn};
    const bool isTable = m_format == LogFormat::Csv;
    return [this, source, isTable, path = QString()](const Sample &sample) mutable {
        const std::chrono::milliseconds now(QDateTime::currentMSecsSinceEpoch());
        const QByteArray line = isTable ? csvLine(sample, now) : jsonLine(sample, now, source);
        if (m_output.isOpen())
            return writeOut(isTable ? csvHeadings(sample) : QByteArray(), line);
        if (path.isEmpty())
            path = recordingName(m_folder, source.infIdx, source.addr,
                                 isTable ? QStringLiteral("csv") : QStringLiteral("jsonl"));
        m_lastFile = path;
        return appendToFile(
            path, [&](bool isEmpty) { return isEmpty && isTable ? csvHeadings(sample) + line : line; });
    };
}

QString SampleLog::writeOut(const QByteArray &headings, const QByteArray &line)
{
    QString reason = writeWhole(m_output, m_isHeaded ? line : headings + line);
    m_isHeaded = m_isHeaded || reason.isEmpty();
    return reason;
}
