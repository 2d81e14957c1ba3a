#include "recording/sample_lines.h"

#include "protocol/sample.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>

namespace {

/// Calls take(name, index, text) for every value of the sample, in the order of the frame. The name ends
/// where its index goes.
template<typename Take>
void forEachValue(const Sample &sample, Take take)
{
    const auto list = [&take](const char *name, const QVector<SampleNumber> &numbers) {
        for (int i = 0; i < numbers.size(); ++i)
            take(name, i, numbers.at(i).text);
    };
    list("ch", sample.channels);
    for (int i = 0; i < sample.blocks.size(); ++i) {
        const SampleBlock &block = sample.blocks.at(i);
        take("normal_force_n_", i, block.normalText);
        take("tangential_force_n_", i, block.tangentialText);
        take("direction_deg_", i, block.directionText);
    }
    list("self_proximity_", sample.selfProximity);
    list("mutual_proximity_", sample.mutualProximity);
    for (const SampleNumber &status : sample.status)
        take("status", -1, status.text);
}

void appendName(QByteArray &line, const char *name, int index)
{
    line += name;
    if (index >= 0)
        line += QByteArray::number(index);
}

QByteArray quoted(const QString &text)
{
    const QByteArray list = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return list.mid(1, list.size() - 2);
}

} // namespace

QByteArray csvHeadings(const Sample &sample)
{
    QByteArray line = "time_ms,counter";
    forEachValue(sample, [&line](const char *name, int index, const QString &) {
        line += ',';
        appendName(line, name, index);
    });
    return line + '\n';
}

QByteArray csvLine(const Sample &sample, std::chrono::milliseconds time)
{
    QByteArray line = QByteArray::number(qint64(time.count())) + ',' + QByteArray::number(sample.counter);
    forEachValue(sample, [&line](const char *, int, const QString &text) { line += ',' + text.toLatin1(); });
    return line + '\n';
}

QByteArray jsonLine(const Sample &sample, std::chrono::milliseconds time, const SampleSource &source)
{
    QByteArray line = "{\"time_ms\":" + QByteArray::number(qint64(time.count())) +
                      ",\"bus\":" + QByteArray::number(source.infIdx + 1) +
                      ",\"address\":" + QByteArray::number(source.addr) +
                      ",\"model\":" + quoted(source.model) +
                      ",\"serial_number\":" + quoted(source.serialNumber) +
                      ",\"counter\":" + QByteArray::number(sample.counter);
    forEachValue(sample, [&line](const char *name, int index, const QString &text) {
        line += ",\"";
        appendName(line, name, index);
        line += "\":" + (std::isfinite(text.toDouble()) ? text.toLatin1() : QByteArray("null"));
    });
    return line + "}\n";
}
