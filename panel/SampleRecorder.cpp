#include "panel/SampleRecorder.h"

#include "views/class_finger.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QObject>

namespace {

// Spelt out, for a text file would write a line in pieces where its end has two bytes.
#ifdef Q_OS_WIN
constexpr const char *kLineEnd = "\r\n";
#else
constexpr const char *kLineEnd = "\n";
#endif

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

QByteArray headerLine(const class_finger &view)
{
    QByteArray line;
    appendText(line, QObject::tr("序号"));
    appendHeadings(line, QObject::tr(",通道"), view.rawList.size());
    appendBlockHeadings(line, view.yddsList.size());
    appendHeadings(line, QObject::tr(",自电容接近"), view.sProxList.size());
    appendHeadings(line, QObject::tr(",互电容接近"), view.mProxList.size());
    if (!view.statusList.isEmpty())
        appendText(line, QObject::tr(",状态") + view.statusList.first());
    return line + kLineEnd;
}

void appendValue(QByteArray &line, const QString &value)
{
    line += ',';
    appendText(line, value);
}

void appendValues(QByteArray &line, const QVector<QString> &values)
{
    for (const QString &value : values)
        appendValue(line, value);
}

void appendDataLine(QByteArray &line, const class_finger &view)
{
    line += QByteArray::number(QDateTime::currentMSecsSinceEpoch()) + ',' + QByteArray::number(view.seq);
    appendValues(line, view.rawList);
    for (const auto &block : view.yddsList) {
        appendValue(line, block.normal);
        appendValue(line, block.tangential);
        appendValue(line, block.direction);
    }
    appendValues(line, view.sProxList);
    appendValues(line, view.mProxList);
    if (!view.statusList.isEmpty())
        appendValue(line, view.statusList.first());
    line += kLineEnd;
}

// All of it or nothing: what a full disk let through is cut off again.
bool appendWhole(QFile &file, qint64 sizeBefore, const QByteArray &bytes)
{
    if (file.write(bytes) == bytes.size())
        return true;
    file.resize(sizeBefore);
    return false;
}

} // namespace

SampleRecorder::SampleRecorder(const QString &folder, uint8_t infIdx, uint8_t addr)
    : savePath(folder)
    , m_infIdx(infIdx)
    , m_addr(addr)
{}

QString SampleRecorder::newFileName() const
{
    return savePath + QDir::separator() +
           QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd_hhmmss_zzz")) +
           QString::asprintf("__%d__0x%02X.csv", m_infIdx + 1, m_addr);
}

bool SampleRecorder::append(const class_finger &view)
{
    if (saveFileName.isEmpty())
        saveFileName = newFileName();
    QFile file(saveFileName);
    // Unbuffered, so that the line goes out in one piece and its fate is known at once.
    if (!file.open(QIODevice::Append | QIODevice::Unbuffered)) {
        qDebug("%s", kFailure);
        return false;
    }
    const qint64 size = file.size();
    QByteArray line;
    if (size == 0) {
        qDebug("creat save file");
        line = headerLine(view);
    }
    appendDataLine(line, view);
    const bool written = appendWhole(file, size, line);
    if (!written)
        qDebug("%s", kFailure);
    return written;
}
