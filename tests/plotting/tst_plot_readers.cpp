// What comes to the plotter: streams in pieces of any size, files of either kind, what is kept and drawn.

#include "plotting/SampleStore.h"
#include "plotting/StreamReader.h"
#include "plotting/curve_points.h"
#include "plotting/recording_file.h"

#include <QtTest>

#include <cmath>

namespace {

QString text(const QVector<double> &values)
{
    QStringList texts;
    for (const double value : values)
        texts += QString::number(value, 'g', 10);
    return texts.join(QLatin1Char(' '));
}

/// Records with a bar between them, then what was refused and the gaps.
QString outcome(StreamFormat format, const QByteArray &bytes, int piece)
{
    QStringList records;
    StreamReader reader(format, [&records](const QVector<double> &values) { records += text(values); });
    for (int at = 0; at < bytes.size(); at += piece)
        reader.feed(bytes.mid(at, piece));
    reader.finish();
    const StreamFaults faults = reader.faults();
    return records.join(QLatin1Char('|')) + QStringLiteral(" number %1 long %2 width %3 cut %4 gap %5")
                                                .arg(faults.notNumbers)
                                                .arg(faults.tooLong)
                                                .arg(faults.otherWidth)
                                                .arg(faults.cut)
                                                .arg(faults.gaps);
}

} // namespace

class TestPlotReaders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void streams_data()
    {
        QTest::addColumn<int>("format"); // automatic, text, floats
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("expected");
        const auto floats = [](const char *hex) { return QByteArray::fromHex(hex); };
        const QByteArray one = floats("0000803f 0000807f");          // 1
        const QByteArray two = floats("0000803f 00000040 0000807f"); // 1 2
        QTest::newRow("text") << 0 << QByteArray("101,0,1.25,-3\r\n4294967295,1,2,3\n")
                              << "101 0 1.25 -3|4294967295 1 2 3 number 0 long 0 width 0 cut 0 gap 0";
        QTest::newRow("floats") << 0 << two + two << "1 2|1 2 number 0 long 0 width 0 cut 0 gap 0";
        QTest::newRow("no numbers") << 0 << QByteArray("hello\n1,2\n1,,2\n\n1,2x\n3,4\n")
                                    << "1 2|3 4 number 4 long 0 width 0 cut 0 gap 0";
        QTest::newRow("gaps") << 1 << QByteArray("nan,1\r\n2,-inf\r\n1e39,3\r\n")
                              << "nan 1|2 nan|nan 3 number 0 long 0 width 0 cut 0 gap 3";
        QTest::newRow("gap in floats") << 2 << floats("0000c07f 000080ff 0000803f 0000807f")
                                       << "nan nan 1 number 0 long 0 width 0 cut 0 gap 2";
        QTest::newRow("no end") << 0 << QByteArray(100000, '1') + "\n5\n6\n7"
                                << "5|6 number 0 long 1 width 0 cut 1 gap 0";
        QTest::newRow("no end in floats")
            << 2 << QByteArray(100001, '\1') + one + one << "1 number 0 long 1 width 0 cut 0 gap 0";
        QTest::newRow("too many") << 1 << QByteArray("1,").repeated(512) + "1\n" + QByteArray("1\n")
                                  << "1 number 0 long 1 width 0 cut 0 gap 0";
        QTest::newRow("half floats") << 2 << two + two.mid(1) + two + two + two.left(5)
                                     << "1 2|1 2 number 0 long 0 width 0 cut 2 gap 0";
        QTest::newRow("end mark across values")
            << 2 << floats("00000000 807f0000 0000807f").repeated(2)
            << "0 4.573838188e-41|0 4.573838188e-41 number 0 long 0 width 0 cut "
               "0 gap 0";
        QTest::newRow("nothing before the mark")
            << 2 << floats("0000807f") + one << "1 number 0 long 0 width 0 cut 1 gap 0";
        QTest::newRow("one of another width") << 1 << QByteArray("1,2\n1\n1\n3,4\n1\n1\n5,6\n")
                                              << "1 2|3 4|5 6 number 0 long 0 width 4 cut 0 gap 0";
        QTest::newRow("another sensor")
            << 1 << QByteArray("1,2\n1\n2\n3\n4\n") << "1 2|3|4 number 0 long 0 width 2 cut 0 gap 0";
    }
    void streams()
    {
        QFETCH(int, format);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, expected);
        for (const int piece : {bytes.size(), 1, 7})
            QCOMPARE(outcome(static_cast<StreamFormat>(format), bytes, piece), expected);
    }

    void recordings_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("names");
        QTest::addColumn<QString>("lastRow"); // with its time
        QTest::addColumn<int>("refused");
        QTest::addColumn<QString>("error");
        QTest::newRow("panel, English")
            << QByteArray(
                   "Index,Ch0,Ch1,0Normal Force,0Tangential Force,0Angle,Self Proximity0,Mutual Proximity0,"
                   "Status3\n1768382102123,17,2001,5,2.00,0.45,90,118,7,3\n1768382102133,18,1,2,3,4,5,6,8,"
                   "9\n")
            << "Ch0,Ch1,Normal Force 0,Tangential Force 0,Angle 0,Self Proximity0,Mutual Proximity0,Status"
            << "0.01 1 2 3 4 5 6 8 9" << 0 << "";
        QTest::newRow("panel, Chinese, from Windows")
            << QByteArray("??,??0,??1,???0_???,???0_???,???0_??,?????0,?????1,?????0,??3\r\n"
                          "1768382102123,17,1,2,3,4,5,6,7,8,9\r\n")
            << "Ch0,Ch1,Normal Force 0,Tangential Force 0,Angle 0,Self Proximity0,Self Proximity1,Mutual "
               "Proximity0,"
               "Status"
            << "0 1 2 3 4 5 6 7 8 9" << 0 << "";
        QTest::newRow("a heading for each column")
            << QByteArray(
                   "\xEF\xBB\xBFtime_ms,counter,ch0,normal_force_n_0,status\n1000,255,4,1.5,0\n3000,0,,x,1\n")
            << "ch0,normal_force_n_0,status"
            << "2 nan nan 1" << 0 << "";
        QTest::newRow("lines damaged, clock set back")
            << QByteArray("Index,Ch0\n1000,0,5\n1000,0\n2000,1,7\nx,2,9\n500,3,9\n700,4,8\n" +
                          QByteArray(200000, '1') + "\n900,5")
            << "Ch0"
            << "1.2 8" << 4 << "";
        QTest::newRow("empty") << QByteArray() << ""
                               << "" << 0 << "has no row of headings";
        QTest::newRow("no samples") << QByteArray("Index,Ch0\n") << ""
                                    << "" << 0 << "holds no samples";
        QTest::newRow("some other table") << QByteArray("a,b\n1,2\n") << ""
                                          << "" << 1 << "is not a recording of sensor samples";
    }
    void recordings()
    {
        QFETCH(QByteArray, file);
        QBuffer buffer(&file);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        const Recording recording = readRecording(buffer);
        QTEST(recording.columns.join(QLatin1Char(',')), "names");
        QTEST(recording.error, "error");
        QTEST(static_cast<int>(recording.refused), "refused");
        if (!recording.store)
            return;
        const int last = recording.store->size() - 1;
        QVector<double> row{recording.store->time(last)};
        for (int i = 0; i < recording.store->width(); ++i)
            row += recording.store->value(last, i);
        QTEST(text(row), "lastRow");
    }

    void keepsTheNewest()
    {
        SampleStore byAge(1, {2.0, 1000000});
        SampleStore byRoom(1, {1e9, 200});
        for (int i = 0; i < 5000; ++i) {
            byAge.append(i * 0.01, {static_cast<double>(i)});
            byRoom.append(i * 0.01, {static_cast<double>(i)});
        }
        QCOMPARE(byRoom.size(), 100);
        QCOMPARE(byRoom.value(0, 0), 4900.0);
        QCOMPARE(byRoom.value(99, 0), 4999.0);
        QVERIFY(byAge.size() == 201 || byAge.size() == 200);
        QCOMPARE(byAge.value(byAge.size() - 1, 0), 4999.0);
        QCOMPARE(byAge.firstRowFrom(49.5), byAge.size() - 50);
        QCOMPARE(byAge.firstRowFrom(60), byAge.size());
    }

    void losesNoPeak()
    {
        SampleStore store(1, {1e9, 1000000});
        for (int i = 0; i < 20000; ++i)
            store.append(i * 0.01, {i == 12345 ? 9.0 : i == 777 ? std::nan("") : i % 2 * 0.5});
        const CurvePoints curve = curvePoints(store, 0, 0, 200, 100, 0);
        QVERIFY2(curve.points.size() <= 204, qPrintable(QString::number(curve.points.size())));
        QVERIFY(curve.points.contains({123.45, 9.0}));
        QCOMPARE(curve.low, 0.0);
        QCOMPARE(curve.high, 9.0);
        // A few are drawn as they are, one more on either side, and a gap stays one.
        const CurvePoints few = curvePoints(store, 0, 1007.755, 1007.785, 100, 1000);
        QCOMPARE(few.points.size(), 5);
        QCOMPARE(few.points.at(0).x(), 1007.75);
        QVERIFY(std::isnan(few.points.at(2).y()));
    }
};

QTEST_APPLESS_MAIN(TestPlotReaders)
#include "tst_plot_readers.moc"
