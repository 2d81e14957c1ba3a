#include "recording/SampleRecorder.h"

#include "protocol/sample.h"
#include "recording/recording_folder.h"
#include "recording/whole_lines.h"

#include <QDateTime>
#include <QObject>

namespace {

// Files hold Latin-1: a heading of other letters becomes question marks.
void appendText(QByteArray &line, const QString &text)
{
    line += text.toLatin1();
}

void appendHeadings(QByteArray &line, const QString &text, int count)
{
    for (int i = 0; i < count; ++i)
        appendText(line, text + QString::number(i));
}

void appendBlockHeadings(QByteArray &line, int count)
{
    for (int i = 0; i < count; ++i) {
        const QString block = QObject::tr(",三维力") + QString::number(i);
        appendText(line, block + QObject::tr("_法向力"));
        appendText(line, block + QObject::tr("_切向力"));
        appendText(line, block + QObject::tr("_方向"));
    }
}

// One column short of the lines below: the first heading stands for time and counter.
QByteArray headerLine(const Sample &sample)
{
    QByteArray line;
    appendText(line, QObject::tr("序号"));
    appendHeadings(line, QObject::tr(",通道"), sample.channels.size());
    appendBlockHeadings(line, sample.blocks.size());
    appendHeadings(line, QObject::tr(",自电容接近"), sample.selfProximity.size());
    appendHeadings(line, QObject::tr(",互电容接近"), sample.mutualProximity.size());
    for (const SampleNumber &status : sample.status)
        appendText(line, QObject::tr(",状态") + status.text);
    return line + kLineEnd;
}

void appendValue(QByteArray &line, const QString &value)
{
    line += ',';
    appendText(line, value);
}

void appendValues(QByteArray &line, const QVector<SampleNumber> &numbers)
{
    for (const SampleNumber &number : numbers)
        appendValue(line, number.text);
}

void appendDataLine(QByteArray &line, const Sample &sample)
{
    line +=
        QByteArray::number(QDateTime::currentMSecsSinceEpoch()) + ',' + QByteArray::number(sample.counter);
    appendValues(line, sample.channels);
    for (const SampleBlock &block : sample.blocks) {
        appendValue(line, block.normalText);
        appendValue(line, block.tangentialText);
        appendValue(line, block.directionText);
    }
    appendValues(line, sample.selfProximity);
    appendValues(line, sample.mutualProximity);
    appendValues(line, sample.status);
    line += kLineEnd;
}

} // namespace

SampleRecorder::SampleRecorder(const QString &folder, uint8_t infIdx, uint8_t addr)
    : savePath(folder)
    , m_infIdx(infIdx)
    , m_addr(addr)
{}

bool SampleRecorder::append(const Sample &sample)
{
    if (saveFileName.isEmpty())
        saveFileName = recordingName(savePath, m_infIdx, m_addr, QStringLiteral("csv"));
    m_error = appendToFile(saveFileName, [&sample](bool isEmpty) {
        QByteArray line;
        if (isEmpty) {
            qDebug("creat save file");
            line = headerLine(sample);
        }
        appendDataLine(line, sample);
        return line;
    });
    if (!m_error.isEmpty())
        qDebug("%s", kFailure);
    return m_error.isEmpty();
}
