// Time from the start of the process to the first paint of the window, against an empty window of the same
// toolkit. The program starts itself for either.

#include "app/qmain.h"
#include "bench/offscreen.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int kRounds = 15;

/// Ends the application when a window has been painted and the loop comes round again.
class FirstPaint : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *widget = qobject_cast<QWidget *>(watched);
        if (event->type() == QEvent::Paint && widget != nullptr && widget->isWindow())
            QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        return false;
    }
};

void endAtFirstPaint()
{
    qApp->installEventFilter(new FirstPaint(qApp));
}

int showEmptyWindow(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(1000, 600);
    window.show();
    return QApplication::exec();
}

double millisecondsOf(const QString &program, const QString &what)
{
    QElapsedTimer timer;
    timer.start();
    QProcess process;
    process.start(program, {what});
    process.waitForFinished();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double least(const std::vector<double> &times)
{
    return *std::min_element(times.begin(), times.end());
}

int measure(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir settings;
    qputenv("XDG_DATA_HOME", settings.path().toLocal8Bit());
    const QString self = QCoreApplication::applicationFilePath();
    std::vector<double> tool;
    std::vector<double> empty;
    for (int round = 0; round < kRounds; ++round) {
        tool.push_back(millisecondsOf(self, QStringLiteral("tool")));
        empty.push_back(millisecondsOf(self, QStringLiteral("empty")));
    }
    std::printf("start to first paint, against an empty window: %.0f ms against %.0f ms, ratio %.2f\n",
                least(tool), least(empty), least(tool) / least(empty));
    return 0;
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(endAtFirstPaint)

int main(int argc, char **argv)
{
    drawOffscreenByDefault();
    const QByteArray what = argc > 1 ? argv[1] : "";
    if (what == "tool")
        return qMain(argc, argv);
    return what == "empty" ? showEmptyWindow(argc, argv) : measure(argc, argv);
}
