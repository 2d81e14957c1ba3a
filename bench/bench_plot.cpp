// What live curves cost: repaints a second and processor time while a sender feeds them over TCP, and the
// memory they hold in the course of time. bench_plot [curves [seconds [picture]]]; without arguments 64
// curves at 100 Hz for 20 s.

#include "bench/offscreen.h"
#include "plotting/PlotServer.h"
#include "plotting/window/PlotWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTcpSocket>
#include <QThread>

#include <atomic>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <memory>

namespace {

constexpr int kRecordMs = 10;
constexpr int kSettlingMs = 12000; ///< until the window is full
constexpr double kLeastRepaints = 29;
constexpr double kMostCores = 0.5;

QByteArray record(int curves, double seconds)
{
    QByteArray line;
    for (int i = 0; i < curves; ++i) {
        const double value = 1000 * (1 + i / 8.0) * std::sin(seconds * (0.6 + i * 0.07) + i) + 200 * i;
        line += QByteArray::number(qRound64(value)) + (i + 1 < curves ? "," : "\r\n");
    }
    return line;
}

/// Sends from a thread of its own, whose time does not count.
std::unique_ptr<QThread> startSender(quint16 port, int curves, const std::atomic<bool> &isOver)
{
    std::unique_ptr<QThread> thread(QThread::create([port, curves, &isOver] {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, port);
        socket.waitForConnected();
        socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        QElapsedTimer clock;
        clock.start();
        for (qint64 due = 0; !isOver; due += kRecordMs) {
            socket.write(record(curves, static_cast<double>(due) / 1000));
            socket.waitForBytesWritten();
            QThread::msleep(
                static_cast<unsigned long>(std::max<qint64>(due + kRecordMs - clock.elapsed(), 0)));
        }
    }));
    thread->start();
    return thread;
}

double threadSeconds()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double residentMegabytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    constexpr double pageMegabytes = 4096 / 1e6;
    return file.readAll().split(' ').at(1).toDouble() * pageMegabytes;
}

void run(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

int main(int argc, char *argv[])
{
    drawOffscreenByDefault();
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int curves = arguments.value(1, QStringLiteral("64")).toInt();
    const int seconds = arguments.value(2, QStringLiteral("20")).toInt();

    PlotServer server(StreamFormat::Automatic);
    if (!server.listen(QHostAddress::LocalHost, 0))
        return 1;
    PlotWindow window;
    window.follow(server);
    window.show();
    std::atomic<bool> isOver = false;
    const std::unique_ptr<QThread> sender = startSender(server.port(), curves, isOver);
    run(kSettlingMs);

    constexpr int stretches = 4;
    double repaints = 0;
    double cores = 0;
    for (int i = 1; i <= stretches; ++i) {
        const quint64 paintingsBefore = window.plot().paintings();
        const double cpuBefore = threadSeconds();
        QElapsedTimer clock;
        clock.start();
        run(seconds * 1000 / stretches);
        const double elapsed = static_cast<double>(clock.nsecsElapsed()) * 1e-9;
        repaints = static_cast<double>(window.plot().paintings() - paintingsBefore) / elapsed;
        cores = (threadSeconds() - cpuBefore) / elapsed;
        std::printf("%d curves at %d Hz, %3d s: %.1f repaints/s, %.2f cores, %.1f MB\n", curves,
                    1000 / kRecordMs, kSettlingMs / 1000 + i * seconds / stretches, repaints, cores,
                    residentMegabytes());
        std::fflush(stdout);
    }
    if (arguments.size() > 3)
        window.grab().save(arguments.at(3));
    isOver = true;
    sender->wait();
    const bool within = repaints >= kLeastRepaints && cores <= kMostCores;
    std::printf("%s\n", within ? "within half a core" : "BEYOND half a core");
    return within ? 0 : 1;
}
