// The plotter from the socket to the picture, the mouse on it, and the program as it is started.

#include "plotting/PlotServer.h"
#include "plotting/SampleStore.h"
#include "plotting/window/CursorReader.h"
#include "plotting/window/CurveList.h"
#include "plotting/window/PlotWindow.h"
#include "plotting/window/plot_language.h"

#include <QTcpSocket>
#include <QtTest>
#include <QtWidgets>
#include <qwt_text.h>

#include <csignal>

namespace {

constexpr int kPatienceMs = 20000;

/// A window that listens, and somebody who sends to it.
struct Bench
{
    Bench()
    {
        server.listen(QHostAddress::LocalHost, 0);
        window.follow(server);
        window.show();
        socket.connectToHost(QHostAddress::LocalHost, server.port());
        socket.waitForConnected();
    }

    void send(const QByteArray &bytes)
    {
        socket.write(bytes);
        socket.flush();
    }
    int curves() { return window.plot().sources().size(); }
    int rows() { return window.plot().sources().value(0).store->size(); }
    QString trouble() { return window.findChild<QLabel *>(QStringLiteral("trouble"))->text(); }
    QAction *pause() { return window.findChild<QAction *>(QStringLiteral("pause")); }
    QSpinBox *seconds() { return window.findChild<QSpinBox *>(QStringLiteral("seconds")); }

    void turnWheel(int angle, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWidget *canvas = window.plot().canvas();
        const QPointF middle = canvas->rect().center();
        QWheelEvent event(middle, canvas->mapToGlobal(middle.toPoint()), {}, {0, angle}, Qt::NoButton,
                          modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(canvas, &event);
    }

    PlotServer server{StreamFormat::Automatic};
    PlotWindow window;
    QTcpSocket socket;
};

QProcess *startPlot(QObject *parent, const QStringList &arguments)
{
    auto *process = new QProcess(parent);
    process->start(QStringLiteral(TACTILE_PLOT), arguments);
    return process;
}

} // namespace

class TestPlotWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void holdsAndGoesOn()
    {
        Bench bench;
        bench.send("1,20\r\n2,30\r\nrubbish\r\n");
        QTRY_COMPARE(bench.curves(), 2);
        QTRY_COMPARE(bench.rows(), 2);
        QTRY_COMPARE(bench.trouble(), QStringLiteral("Records refused: 1 not numbers"));
        QTRY_VERIFY(bench.window.plot().values().to >= 30);

        bench.pause()->trigger();
        bench.send("5,6\r\n7,8,9\r\n7,8,9\r\n7,8,9\r\n");
        QTRY_COMPARE(bench.server.faults().otherWidth, 2ULL);
        QCOMPARE(bench.curves(), 2);
        QCOMPARE(bench.rows(), 2);
        bench.pause()->trigger();
        QCOMPARE(bench.curves(), 3);
        QCOMPARE(bench.rows(), 1);
    }

    void anotherSenderTakesOver()
    {
        Bench bench;
        bench.send("7,8,9\r\n");
        QTRY_COMPARE(bench.curves(), 3);
        QTcpSocket other; // in the other format
        other.connectToHost(QHostAddress::LocalHost, bench.server.port());
        QTRY_COMPARE(bench.socket.state(), QAbstractSocket::UnconnectedState);
        QTRY_COMPARE(other.state(), QAbstractSocket::ConnectedState);
        other.write(QByteArray::fromHex("0000803f 00000040 00004040 0000807f"));
        QTRY_COMPARE(bench.server.format(), StreamFormat::JustFloat);
        QTRY_COMPARE(bench.rows(), 3);
        QVERIFY(std::isnan(bench.window.plot().sources().at(0).store->value(1, 0)));
    }

    void followsTheMouse()
    {
        Bench bench;
        bench.send("1,20\r\n");
        QTRY_COMPARE(bench.curves(), 2);
        CurvePlot &plot = bench.window.plot();
        bench.turnWheel(-120);
        QCOMPARE(bench.seconds()->value(), 13);
        for (int i = 0; i < 20; ++i)
            bench.turnWheel(120);
        QCOMPARE(bench.seconds()->value(), 1);
        QVERIFY(!plot.hasFixedValues());
        bench.turnWheel(120, Qt::ControlModifier);
        QVERIFY(plot.hasFixedValues());

        const QPoint middle = plot.canvas()->rect().center();
        QTest::mousePress(plot.canvas(), Qt::LeftButton, {}, middle);
        QMouseEvent drag(QEvent::MouseMove, middle + QPoint(plot.canvas()->width() / 4, 0), Qt::LeftButton,
                         Qt::LeftButton, {});
        QCoreApplication::sendEvent(plot.canvas(), &drag);
        QTest::mouseRelease(plot.canvas(), Qt::LeftButton, {}, middle);
        QVERIFY(bench.pause()->isChecked());
        QVERIFY2(std::abs(plot.times().to + 0.25) < 0.02, qPrintable(QString::number(plot.times().to)));
        QTest::mouseDClick(plot.canvas(), Qt::LeftButton, {}, middle);
        QVERIFY(!bench.pause()->isChecked());
        QVERIFY(!plot.hasFixedValues());
        QCOMPARE(plot.times().to, 0.0);

        const auto *cursor = plot.canvas()->findChild<CursorReader *>();
        QVERIFY(cursor->trackerTextF({0, 19}).text().startsWith(QStringLiteral("Value 2  20\n")));
        auto *list = bench.window.findChild<CurveList *>();
        list->topLevelItem(1)->setCheckState(0, Qt::Unchecked);
        QVERIFY(!plot.isCurveShown(1));
        QVERIFY(cursor->trackerTextF({0, 19}).text().startsWith(QStringLiteral("Value 1  1\n")));
    }

    void speaksChinese()
    {
        QTranslator table;
        QVERIFY(speakChinese(table));
        Bench bench;
        bench.send("1,20\r\nrubbish\r\n");
        QTRY_COMPARE(bench.trouble(), QStringLiteral("拒收的记录：1 条不是数字"));
        QStringList texts{bench.window.windowTitle(), bench.seconds()->suffix()};
        for (const auto *label : bench.window.findChildren<QLabel *>())
            texts += label->text();
        for (const auto *action : bench.window.findChildren<QAction *>())
            texts += action->text();
        texts.removeAll({});
        for (const QString &text : qAsConst(texts))
            QVERIFY2(!text.contains(QRegularExpression(QStringLiteral("[a-z]{3}"))), qPrintable(text));
    }

    void runsAsAProgram_data()
    {
        QTest::addColumn<QString>("commandLine");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("line");
        QTest::newRow("help") << "--help" << 0 << "";
        QTest::newRow("language") << "--language fr" << 2 << "--language takes en or zh_cn.";
        QTest::newRow("unknown") << "--colour" << 2 << "Unknown option 'colour'. See --help.";
        QTest::newRow("port") << "--listen 70000" << 2
                              << "--listen takes a port from 0 to 65535, or address:port.";
        QTest::newRow("both") << "--listen 1 a.csv" << 2 << "either --listen or recordings, not both.";
        QTest::newRow("missing") << "/nowhere/a.csv" << 1 << "/nowhere/a.csv: No such file or directory.";
        QTest::newRow("unwritable") << "--picture /nowhere/a.svg %1" << 1
                                    << "/nowhere/a.svg cannot be written. Choose another folder.";
        QTest::newRow("png") << "--picture %1.png %1 %1" << 0 << "";
        QTest::newRow("svg") << "--picture %1.svg %1" << 0 << "";
    }
    void runsAsAProgram()
    {
        QFETCH(QString, commandLine);
        QFETCH(QString, line);
        const QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("a.csv")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("Index,Ch0\n1000,0,5\n2000,1,7\n");
        file.close();
        const QStringList arguments =
            commandLine.replace(QStringLiteral("%1"), file.fileName()).split(QLatin1Char(' '));
        auto *process = startPlot(this, arguments);
        QVERIFY(process->waitForFinished(kPatienceMs));
        QTEST(process->exitCode(), "code");
        const QString said = QString::fromUtf8(process->readAllStandardError());
        if (!line.isEmpty())
            QVERIFY2(said.endsWith(QStringLiteral("tactile-plot: ") + line + QLatin1Char('\n')),
                     qPrintable(said));
        if (arguments.size() > 1 && line.isEmpty()) {
            QFile picture(arguments.at(1));
            QVERIFY(picture.open(QIODevice::ReadOnly));
            QVERIFY(picture.read(5) ==
                    (picture.fileName().endsWith(QLatin1String("png")) ? "\x89PNG\r" : "<?xml"));
        }
    }

    void endsWhenAsked()
    {
        const QTemporaryDir folder;
        const QString picture = folder.filePath(QStringLiteral("a.png"));
        auto *process = startPlot(
            this, {QStringLiteral("--listen"), QStringLiteral("0"), QStringLiteral("--picture"), picture});
        QVERIFY(process->waitForReadyRead(kPatienceMs));
        const QByteArray line = process->readLine();
        const auto port = line.mid(line.lastIndexOf(' ') + 1).trimmed();
        auto *second = startPlot(this, {QStringLiteral("--listen"), QString::fromLatin1(port)});
        QVERIFY(second->waitForFinished(kPatienceMs));
        QCOMPARE(second->exitCode(), 1);
        QVERIFY(second->readAllStandardError().contains("Choose another with --listen."));
        ::kill(static_cast<pid_t>(process->processId()), SIGTERM);
        QVERIFY(process->waitForFinished(kPatienceMs));
        QCOMPARE(process->exitStatus(), QProcess::NormalExit);
        QCOMPARE(process->exitCode(), 0);
        QVERIFY(!QImage(picture).isNull());
    }
};

QTEST_MAIN(TestPlotWindow)
#include "tst_plot_window.moc"
