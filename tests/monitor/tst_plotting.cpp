// The way to a plotting tool: records, peers that refuse, vanish and stall, a reader in another language.

#include "tests/monitor/monitor_bench.h"

#include "app/class_settings.h"
#include "monitor/PlotOutput.h"
#include "monitor/class_tcp.h"
#include "monitor/tcp_record.h"
#include "recording/recording_folder.h"
#include "tests/support/log_capture.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>

namespace {

constexpr int kRecords = 40;

/// The values of every recorded sample, without time and sequence number, as a plotting tool shows them.
QStringList recordedValues()
{
    QStringList rows;
    const QDir folder(recordingFolder());
    for (const QString &name : folder.entryList({QStringLiteral("*.csv")}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        file.open(QIODevice::ReadOnly);
        const QList<QByteArray> lines = file.readAll().split('\n');
        for (const QByteArray &line : lines.mid(1, lines.size() - 2)) {
            QStringList values;
            for (const QByteArray &value : line.split(',').mid(2))
                values += QString::asprintf("%g", static_cast<double>(value.toFloat()));
            rows += values.join(QLatin1Char(','));
        }
    }
    return rows;
}

struct Peer
{
    Peer() { server.listen(QHostAddress::LocalHost); }
    bool connectTo(class_tcp &tcp)
    {
        tcp.connectToHost(QStringLiteral("127.0.0.1"), server.serverPort());
        if (!QTest::qWaitFor([&] { return server.hasPendingConnections(); }))
            return false;
        socket = server.nextPendingConnection();
        return true;
    }
    QTcpServer server;
    QTcpSocket *socket = nullptr;
};

} // namespace

class TestPlotting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QVERIFY(QDir(recordingFolder()).removeRecursively());
        recordingFolder();
    }

    void comparesWithTheRecording_data()
    {
        QTest::addColumn<uint8_t>("prg");
        QTest::newRow("FireWater") << uint8_t{2}; // without status
        QTest::newRow("JustFloat") << uint8_t{31};
    }
    void comparesWithTheRecording()
    {
        QVERIFY2(!QStandardPaths::findExecutable(QStringLiteral("python3")).isEmpty(), "install python3");
        QFETCH(uint8_t, prg);
        const QString format = QString::fromLatin1(QTest::currentDataTag());
        MonitorBench bench;
        const auto sensor = bench.plug(prg, 0x61);
        sensor->setMotion([](double seconds, const finger_info_ts &, SimValues &values) {
            values.channels.at(0) = static_cast<uint32_t>(seconds * 1000);
        });
        QVERIFY(bench.find({QStringLiteral("0/0x61")}));

        QProcess peer;
        peer.start(QStringLiteral("python3"), {QStringLiteral(PLOT_PEER), format, QString::number(kRecords)});
        QVERIFY(peer.waitForReadyRead(MonitorBench::kPatienceMs));
        bench.get<QComboBox>("cbbTcpDataFormat")->setCurrentText(format);
        // Every record of the plotting tool belongs to a sample after this one.
        bench.panel("0-0x61")->findChild<QCheckBox *>(QStringLiteral("chkbtnSave"))->setChecked(true);
        bench.connectPlotter(peer.readLine().trimmed().toInt());
        QCOMPARE(bench.get<QPushButton>("pbtnServiceConnect")->text(), QStringLiteral("断开"));
        QVERIFY(QTest::qWaitFor([&peer] { return peer.state() == QProcess::NotRunning; },
                                MonitorBench::kPatienceMs));
        bench.form.stop();

        const QByteArray complaint = peer.readAllStandardError();
        QVERIFY2(peer.exitCode() == 0, complaint.constData());
        const QStringList plotted =
            QString::fromLatin1(peer.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(plotted.size(), kRecords);
        const QStringList recorded = recordedValues();
        const int first = recorded.indexOf(plotted.first());
        QVERIFY2(first >= 0, qPrintable(plotted.first()));
        QCOMPARE(recorded.mid(first, kRecords), plotted);
    }

    void tellsHowItStands()
    {
        QVERIFY(QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).removeRecursively());
        MonitorBench bench;
        QCOMPARE(bench.get<QLineEdit>("leServiceAddr")->text(), QString());
        QCOMPARE(bench.get<QSpinBox>("spbServicePort")->value(), 0);

        Peer peer;
        bench.connectPlotter(peer.server.serverPort());
        const auto *plotter = bench.get<QPushButton>("pbtnServiceConnect");
        QCOMPARE(plotter->text(), QStringLiteral("断开"));
        QCOMPARE(class_settings::get(QStringLiteral("TCP/IP")), QStringLiteral("127.0.0.1"));
        QCOMPARE(class_settings::get(QStringLiteral("TCP/PORT")), QString::number(peer.server.serverPort()));
        QVERIFY(peer.server.waitForNewConnection(MonitorBench::kPatienceMs));
        peer.server.nextPendingConnection()->abort();
        QTRY_COMPARE(plotter->text(), QStringLiteral("连接"));

        bench.form.start();
        QVERIFY(bench.connectLine());
        QCOMPARE(bench.button()->text(), QStringLiteral("断开"));
        bench.button()->click();
        QTRY_COMPARE(bench.button()->text(), QStringLiteral("连接"));
    }

    void composes()
    {
        class_finger decoder(0xFF, nullptr);
        decoder.rawList = {QStringLiteral("101"), QStringLiteral("0"), QStringLiteral("-3")};
        decoder.yddsList = {{QStringLiteral("1.25"), QStringLiteral("0.50"), QStringLiteral("90")}};
        decoder.sProxList = {QStringLiteral("120")};
        decoder.mProxList = {QStringLiteral("16777217")};
        decoder.statusList = {QStringLiteral("3")};
        QCOMPARE(tcpRecord(TcpFormat::FireWater, decoder),
                 QByteArray("101,0,-3,1.25,0.50,90,120,16777217,3\r\n"));
        const QByteArray floats = "0000ca4200000000000040c00000a03f0000003f0000b4420000f0420000804b";
        QCOMPARE(tcpRecord(TcpFormat::JustFloat, decoder).toHex(), floats + "000040400000807f");
        QCOMPARE(tcpRecord(static_cast<TcpFormat>(-1), decoder), QByteArray());
        decoder.rawList = {QStringLiteral("x")};
        QCOMPARE(tcpRecord(TcpFormat::JustFloat, decoder).left(4), QByteArray(4, '\0'));
    }

    void composesWhatThePageShows()
    {
        QFile file(QStringLiteral(PROTOCOL_PAGE));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray page = file.readAll().simplified();
        class_finger decoder(0xFF, nullptr);
        decoder.rawList = {QStringLiteral("101"), QStringLiteral("1.25"), QStringLiteral("-2")};
        const auto shows = [&](const char *name, TcpFormat format) {
            return page.contains(name + tcpRecord(format, decoder).toHex(' ').toUpper());
        };
        QVERIFY(shows("firewater ", TcpFormat::FireWater));
        QVERIFY(shows("justfloat ", TcpFormat::JustFloat));
    }

    void sendsTheLastActiveViewAsLongAsItLives()
    {
        struct View : QWidget, class_finger
        {
            View()
                : class_finger(0xFF, nullptr)
            {}
        };
        PlotOutput output;
        Peer peer;
        output.connectOrDisconnect(QStringLiteral("127.0.0.1"), peer.server.serverPort());
        QVERIFY(peer.server.waitForNewConnection(MonitorBench::kPatienceMs));
        QTcpSocket *socket = peer.server.nextPendingConnection();
        auto view = std::make_unique<View>();
        view->rawList = {QStringLiteral("5")};
        output.send(TcpFormat::FireWater, nullptr);
        output.send(TcpFormat::FireWater, view.get());
        output.send(TcpFormat::FireWater, nullptr);
        view.reset();
        output.send(TcpFormat::FireWater, nullptr);
        output.connectOrDisconnect({}, 0);
        QTRY_COMPARE(socket->state(), QAbstractSocket::UnconnectedState);
        QCOMPARE(socket->readAll(), QByteArray("5\r\n5\r\n"));
    }

    void deliversAndHears()
    {
        class_tcp tcp;
        Peer peer;
        const LogCapture log;
        QSignalSpy received(&tcp, &class_tcp::si_receive);
        QVERIFY(peer.connectTo(tcp));
        QVERIFY(tcp.isConnected());
        tcp.send("one\r\n");
        tcp.send("two\r\n");
        QTRY_COMPARE(peer.socket->bytesAvailable(), 10);
        QCOMPARE(peer.socket->readAll(), QByteArray("one\r\ntwo\r\n"));
        peer.socket->write(QByteArray(100000, '\xFF'));
        QTRY_VERIFY(!received.isEmpty());
        QSignalSpy gone(&tcp, &class_tcp::si_disconnected);
        peer.socket->abort();
        QTRY_COMPARE(gone.size(), 1);
        QVERIFY(!tcp.isConnected());
        QVERIFY(peer.connectTo(tcp));
        tcp.disconnectFromHost();
        QVERIFY(!tcp.isConnected());
        QCOMPARE(log.count(QStringLiteral("tcp connected")), 2);
        QCOMPARE(log.count(QStringLiteral("tcp disconnected")), 2);
    }

    void staysQuietWhenRefused()
    {
        class_tcp tcp;
        QSignalSpy changed(&tcp, &class_tcp::si_connected);
        quint16 port = 0;
        {
            Peer peer;
            port = peer.server.serverPort();
        }
        tcp.connectToHost(QStringLiteral("127.0.0.1"), port);
        QVERIFY(!tcp.isConnected());
        QVERIFY(changed.isEmpty());
        Peer peer;
        // No name is looked up, which could take any time, and so nothing is even begun.
        const QSignalSpy begun(tcp.findChild<QTcpSocket *>(), &QTcpSocket::stateChanged);
        for (const char *name : {"", "10.0.0.", "localhost"})
            tcp.connectToHost(QLatin1String(name), peer.server.serverPort());
        QCOMPARE(begun.size(), 0);
        QVERIFY(peer.connectTo(tcp));
    }

    void leavesOutWhatNobodyReads()
    {
        class_tcp tcp;
        Peer peer;
        QVERIFY(peer.connectTo(tcp));
        peer.socket->setReadBufferSize(1);
        const LogCapture log;
        const QByteArray record = QByteArray(9998, 'r') + "\r\n";
        constexpr int records = 3000;
        for (int i = 0; i < records; ++i)
            tcp.send(record);
        QCOMPARE(log.count(QStringLiteral("tcp peer does not read, records are left out")), 1);
        peer.socket->setReadBufferSize(0);
        QByteArray arrived;
        const auto drained = [&] {
            arrived += peer.socket->readAll();
            tcp.send("last");
            return arrived.endsWith("last");
        };
        QVERIFY(QTest::qWaitFor(drained, 30000));
        const QByteArray body = arrived.left(arrived.indexOf("last"));
        QVERIFY2(body.size() >= 4 * 1024 * 1024 - record.size(), qPrintable(QString::number(body.size())));
        QVERIFY(body.size() < records * record.size());
        QCOMPARE(body.size() % record.size(), 0);
        QCOMPARE(body, record.repeated(body.size() / record.size()));
    }
};

QTEST_MAIN(TestPlotting)
#include "tst_plotting.moc"
