#include "companions/tactile-log/SampleLog.h"

#include "recording/SampleRecorder.h"
#include "recording/append_whole.h"
#include "recording/recording_folder.h"
#include "recording/sample_lines.h"

#include <QDateTime>

#include <cstdio>

namespace {

constexpr uint8_t kUnknownProgram = 0xFF;

/// The row by which the window would show the sensor, or null.
const finger_info_ts *modelOf(const sensor_ts &sensor)
{
    return sensor.prg == kUnknownProgram ? findFingerInfoByPackLen(sensor.pack.size())
                                         : findFingerInfoByPrg(sensor.prg);
}

QString cannotBeWritten()
{
    return QStringLiteral("cannot be written");
}

} // namespace

SampleLog::SampleLog(LogFormat format, QString folder)
    : m_format(format)
    , m_folder(std::move(folder))
{
    if (!m_folder.isEmpty())
        return;
    m_output = std::make_shared<QFile>();
    m_output->open(fileno(stdout), QIODevice::WriteOnly | QIODevice::Unbuffered);
}

void SampleLog::addSensor(const sensor_ts &sensor)
{
    const finger_info_ts *model = modelOf(sensor);
    const bool hasRoom = !m_output || m_format != LogFormat::Csv || m_sensors.empty();
    if (!model || !hasRoom)
        return;
    m_sensors[{sensor.infIdx, sensor.addr}] = {
        model, m_format == LogFormat::Recording ? recorder(sensor) : lineWriter(sensor, *model), {}};
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
    if (!sensor.append(sensor.sample))
        return false;
    ++m_samples;
    return true;
}

std::function<bool(const Sample &)> SampleLog::recorder(const sensor_ts &sensor)
{
    auto recorder = std::make_shared<SampleRecorder>(m_folder, sensor.infIdx, sensor.addr);
    return [this, recorder](const Sample &sample) {
        const bool written = recorder->append(sample);
        if (!written)
            m_error = cannotBeWritten();
        m_lastFile = recorder->fileName();
        return written;
    };
}

std::function<bool(const Sample &)> SampleLog::lineWriter(const sensor_ts &sensor,
                                                          const finger_info_ts &model)
{
    const SampleSource source{sensor.infIdx, sensor.addr, QString::fromUtf8(model.model), sensor.sn};
    return [this, sensor, source, file = m_output, isNew = true](const Sample &sample) mutable {
        if (!file)
            file = newFile(sensor);
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        if (m_format == LogFormat::JsonLines)
            return write(*file, jsonLine(sample, now, source));
        const QByteArray headings = isNew ? csvHeadings(sample) : QByteArray();
        isNew = false;
        return write(*file, headings + csvLine(sample, now));
    };
}

std::shared_ptr<QFile> SampleLog::newFile(const sensor_ts &sensor)
{
    const auto extension = m_format == LogFormat::Csv ? QStringLiteral("csv") : QStringLiteral("jsonl");
    auto file = std::make_shared<QFile>(recordingName(m_folder, sensor.infIdx, sensor.addr, extension));
    file->open(QIODevice::Append | QIODevice::Unbuffered);
    m_lastFile = file->fileName();
    return file;
}

bool SampleLog::write(QFile &file, const QByteArray &lines)
{
    if (!file.isOpen()) {
        m_error = file.errorString();
        return false;
    }
    const bool written = appendWhole(file, lines);
    if (!written)
        m_error = cannotBeWritten();
    else if (!m_output)
        m_lastFile = file.fileName();
    return written;
}
