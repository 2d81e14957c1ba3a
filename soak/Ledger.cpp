#include "soak/Ledger.h"

#include "engine/fingerThread.h"
#include "panel/fingerForm.h"
#include "recording/SampleRecorder.h"
#include "recording/recording_folder.h"
#include "soak/signal_hooks.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QMetaMethod>

namespace {

SoakCounts *books = nullptr;

/// The number that the hooks use: signals are counted without the other methods.
template<typename Signal>
int numberOf(Signal signal)
{
    const QMetaMethod wanted = QMetaMethod::fromSignal(signal);
    int number = 0;
    for (int i = 0; i < wanted.methodIndex(); ++i)
        number += wanted.enclosingMetaObject()->method(i).methodType() == QMetaMethod::Signal ? 1 : 0;
    return number;
}

bool isRecording(const QObject *panel)
{
    const auto *box = panel->findChild<QCheckBox *>(QStringLiteral("chkbtnSave"));
    return box != nullptr && box->isChecked();
}

void countOfWorker(int signal, void **arguments)
{
    static const int rates = numberOf(&fingerThread::si_setHz1);
    static const int answer = numberOf(&fingerThread::si_cmdRsp1);
    static const int failure = numberOf(&fingerThread::si_cmdRspErr1);
    if (signal == rates) {
        books->made += *static_cast<const uint16_t *>(arguments[3]);
        books->arrived += *static_cast<const uint16_t *>(arguments[4]);
    } else if (signal == answer) {
        ++books->answered;
    } else if (signal == failure) {
        ++books->failed;
    }
}

void countOfPanel(const QObject *panel, int signal)
{
    static const int sample = numberOf(&fingerForm::si_sendDataStrList);
    static const int request = numberOf(&fingerForm::si_cmdReq1);
    if (signal == sample) {
        ++books->delivered;
        books->wanted += isRecording(panel) ? 1 : 0;
    } else if (signal == request) {
        ++books->asked;
    }
}

void beforeSignal(QObject *caller, int signal, void **arguments)
{
    const QMetaObject *type = caller->metaObject();
    if (type == &fingerThread::staticMetaObject)
        countOfWorker(signal, arguments);
    else if (type == &fingerForm::staticMetaObject)
        countOfPanel(caller, signal);
}

} // namespace

Ledger::Ledger()
{
    books = &m_counts;
    static QSignalSpyCallbackSet callbacks{beforeSignal, nullptr, nullptr, nullptr};
    qt_register_signal_spy_callbacks(&callbacks);
}

void Ledger::hear(const QString &line)
{
    static const QString loss = QString::fromUtf8(SampleRecorder::kFailure);
    if (line == loss)
        ++m_counts.toldLost;
}

void Ledger::takeRecordings()
{
    const QDir folder(recordingFolder());
    const QStringList names = folder.entryList({QStringLiteral("*.csv")}, QDir::Files);
    for (const QString &name : names)
        take(folder.filePath(name));
}

// A line is whole when it begins with a time and a counter, has a line end, and one field more than the
// heading. A heading without columns tells nothing: it was written before the first good frame came.
void Ledger::take(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const int width = file.readLine().count(',') + 1;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        const bool fits = width == 1 || line.count(',') == width;
        const bool whole = fits && line.indexOf(',') == 13 && line.endsWith('\n');
        ++(whole ? m_counts.recorded : m_counts.broken);
        if (!whole && m_counts.firstBroken.isEmpty())
            m_counts.firstBroken = QStringLiteral("%1, beside a heading of %2 fields: %3")
                                       .arg(path)
                                       .arg(width)
                                       .arg(QString::fromLatin1(line));
    }
    file.remove();
}
