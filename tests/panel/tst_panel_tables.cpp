// The tables of a panel, with all the columns that a user may be given.

#include "tests/panel/panel_bench.h"

#include "panel/force_threshold.h"
#include "tests/support/log_capture.h"

#include <QtTest>
#include <QtWidgets>

namespace {

const QString kState = QStringLiteral("aa55036f00000000007101/11");

/// Both tables at their full size: four channels, ten columns; four channels and a block, twelve points.
struct Bench : PanelBench
{
    Bench()
        : PanelBench(kSmall)
    {
        get<QTableWidget>("tbwThreshold")->setColumnCount(10);
        get<QTabWidget>("tabWidget")->addTab(get<QWidget>("tab_2"), QStringLiteral("标定"));
    }

    QLineEdit *channel(int row, int column) const { return cell("tbwThreshold", row, column); }
    QLineEdit *point(int row, int column) const { return cell("tbwCaliTable", row, column); }
    QString column(int index) const
    {
        QStringList texts;
        for (int row = 0; row < 4; ++row)
            texts += channel(row, index) ? channel(row, index)->text() : QStringLiteral("-");
        return texts.join(QLatin1Char(' '));
    }

    void fillColumns()
    {
        answer("68", "e80a0000000b00000040420f00ffffffff");
        answer("51", "d101020304");
        answer("53", "d305060708");
        answer("5a", "da01020304050607080000003f0000803fcdcccc3d00002041");
        answer("5e", "de01000000020000000300000080ee3600");
        answer("4a", "ca0102030405060708090a0b0c0d0e0f10");
    }
    void fillTables()
    {
        fillColumns();
        curve("00", "0a0000000b0000000c000000");
    }
    void show() const
    {
        panel->show();
        QVERIFY(QTest::qWaitForWindowActive(panel));
    }
    /// Turns to the page of a cell and types over its text.
    void type(QLineEdit *edit, const QString &text) const
    {
        auto *tabs = get<QTabWidget>("tabWidget");
        for (int page = 2; page < tabs->count() && !edit->isVisible(); ++page)
            tabs->setCurrentIndex(page);
        edit->setFocus();
        edit->selectAll();
        QTest::keyClicks(edit, text);
    }
    /// The first three points of a channel; the other nine are not set.
    void curve(const QByteArray &channel, const QByteArray &threePoints)
    {
        answer("66" + channel, "e6" + threePoints + QByteArray(72, '0'));
    }
};

} // namespace

class TestPanelTables : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void fillsTheColumnsThereAre()
    {
        Bench bench;
        const QString reads =
            QStringLiteral("aa55036800000000006a01/22 aa55035100000000005301/10 aa55035300000000005501/10 "
                           "aa55035a00000000005c01/30 aa55035e00000000006001/22 aa55034a00000000004c01/22");
        for (int columns = 0; columns < 8; ++columns) {
            bench.get<QTableWidget>("tbwThreshold")->setColumnCount(columns);
            QCOMPARE(bench.click("pbtnGetThreshold"),
                     reads.section(QLatin1Char(' '), 0, columns - 1).left(columns == 0 ? 0 : -1));
        }
        bench.get<QTableWidget>("tbwThreshold")->setColumnCount(10);
        bench.fillColumns();
        QStringList columns;
        QStringList limits;
        for (int i = 0; i < 10; ++i) {
            columns += bench.column(i);
            if (const auto *limit = qobject_cast<const QIntValidator *>(bench.channel(0, i)->validator()))
                limits += QStringLiteral("%1-%2").arg(limit->bottom()).arg(limit->top());
        }
        QCOMPARE(columns.join(QLatin1Char(';')),
                 QStringLiteral("10 11 1000000 4294967295;1 2 3 4;5 6 7 8;1 2 3 4;5 6 7 8;0.5 1 0.1 10;"
                                "1 2 3 3600000;1 5 9 13;2 6 10 14;1027 2055 3083 4111"));
        QCOMPARE(limits.join(QLatin1Char(' ')), QStringLiteral("0-2147483647 1-63 0-22 0-16 0-16 0-3600000"));
        QVERIFY(!bench.channel(0, 7)->isEnabled());
        QCOMPARE(bench.takeSent(), QString());
    }

    void sendsEditedCells()
    {
        struct Edit
        {
            int column;
            const char *text;
            const char *sent;
        };
        Bench bench;
        bench.fillColumns();
        // A byte takes the low one; what is no number counts as 0; an empty cell says nothing.
        for (const Edit &edit :
             {Edit{0, "x", "aa55036901000000006c01/11"}, Edit{0, "", ""},
              Edit{1, "300", "aa550350012c0000007f01/11"}, Edit{1, "1x", "aa55035001000000005301/11"},
              Edit{3, "4", "aa5503590104060000803f2502/11"}, Edit{3, "", "aa5503590100060000803f2102/11"},
              Edit{4, "", "aa5503590100000000803f1b02/11"}, Edit{5, "2.5", "aa55035901000000002040bc01/11"},
              Edit{5, "", ""}}) {
            bench.channel(1, edit.column)->setText(QLatin1String(edit.text));
            Q_EMIT bench.channel(1, edit.column)->editingFinished();
            QCOMPARE(bench.takeSent(), QLatin1String(edit.sent));
        }

        // The values of a filter that have no column of their own go out with the first.
        PanelBench narrow(PanelBench::kSmall);
        narrow.get<QTableWidget>("tbwThreshold")->setColumnCount(4);
        narrow.answer("5a", "da01020304050507080000003f0000803fcdcccc3d00002041");
        QLineEdit *first = narrow.cell("tbwThreshold", 1, 3);
        narrow.answer("5a", "da01020304050607080000003f0000803fcdcccc3d00002041");
        QCOMPARE(narrow.cell("tbwThreshold", 1, 3), first);
        first->setText(QStringLiteral("4"));
        Q_EMIT first->editingFinished();
        QCOMPARE(narrow.takeSent(), QStringLiteral("aa5503590104060000803f2502/11"));
    }

    void dropsColumnsOfAnotherLength()
    {
        Bench bench;
        const LogCapture log;
        bench.panel->setThreshold({1, 2, 3});
        bench.panel->setExcF({1});
        bench.panel->setTimeout({});
        bench.panel->setFilter({1, 2, 3, 4}, {1, 2, 3, 4}, {1});
        bench.panel->setDac({1}, {1, 2}, {1, 2, 3});
        bench.panel->setCaliCh(5, QVector<unsigned int>(12));
        bench.panel->setCaliCh(4, QVector<unsigned int>(11));
        QCOMPARE(log.lines().join(QLatin1Char(';')),
                 QStringLiteral("setThreshold err:4,3;setExcf err:4,1;setRange err:4,0;setRange err:4,4,4,1;"
                                "setRange err:4,1,2,3;setCaliCh err:5,12,12;setCaliCh err:4,11,12"));
        QCOMPARE(bench.column(6), QLatin1String("- - - -"));
    }

    void keepsWhatIsBeingTyped()
    {
        Bench bench;
        bench.show();
        bench.fillTables();
        for (const int column : {0, 1, 3, 5, -1}) {
            const auto current = [&] { return column < 0 ? bench.point(1, 0) : bench.channel(1, column); };
            QLineEdit *edit = current();
            const QString before = edit->text();
            bench.type(edit, QStringLiteral("13"));
            bench.fillTables();
            QCOMPARE(current(), edit);
            QCOMPARE(edit->text(), QStringLiteral("13"));
            QTest::keyClick(edit, Qt::Key_Return);
            bench.fillTables();
            QCOMPARE(edit->text(), before);
        }
        bench.curve("00", "140000001500000016000000");
        QCOMPARE(bench.point(0, 0)->text(), QStringLiteral("20"));
    }

    void dropsAHalfTypedCell()
    {
        for (const bool calibration : {false, true}) {
            Bench bench;
            bench.show();
            const auto type = [&] {
                bench.fillTables();
                bench.type(calibration ? bench.point(1, 0) : bench.channel(1, 0), QStringLiteral("1"));
                bench.takeSent();
            };
            type();
            bench.attach(PanelBench::kSmall);
            // From another page the change of page asks for the output too.
            QCOMPARE(bench.sent.size(), 6);
            type();
            delete bench.panel;
            QCOMPARE(bench.takeSent(), QString());
        }
    }

    void turnsForceIntoThreshold()
    {
        // Below the first point, on it, on another, between two, cut, before a fall, in it, behind it, last,
        // beyond.
        QVector<unsigned int> thresholds;
        for (const float newtons : {0.25F, 0.5F, 1.0F, 1.5F, 1.003F, 2.0F, 3.0F, 4.0F, 8.0F, 99.0F})
            thresholds +=
                thresholdForForce({0.5F, 1.0F, 2.0F, 4.0F, 8.0F}, {100, 300, 600, 500, 900}, newtons);
        // On the last point of more values than points, of fewer, of none.
        for (const QVector<unsigned int> &values :
             {QVector<unsigned int>{100, 300, 600}, QVector<unsigned int>{100}, QVector<unsigned int>{}})
            thresholds += thresholdForForce({0.5F, 1.0F}, values, 1.0F);
        QCOMPARE(thresholds,
                 (QVector<unsigned int>{50, 100, 300, 450, 300, 600, 0, 500, 900, 900, 600, 100, 0}));
    }

    void sendsTheForceOfACurve()
    {
        Bench bench;
        QCOMPARE(bench.click("pbtnSetPressThreshold"), QString());
        bench.answer("6d", "ed03cdcccc3d0000003f0000803f");
        bench.curve("01", "64000000c80000002c010000");
        auto *channels = bench.get<QComboBox>("cbbSetPressThresholdCh");
        channels->addItems({QStringLiteral("77"), QStringLiteral("1")});
        QCOMPARE(bench.click("pbtnSetPressThreshold"), QString());
        channels->setCurrentIndex(1);
        bench.get<QDoubleSpinBox>("dspbSetPressThresholdPress")->setValue(0.75);
        QCOMPARE(bench.click("pbtnSetPressThreshold"), QStringLiteral("aa55036901fa0000006602/11"));
    }

    void sendsALargePointInALongerFrame()
    {
        Bench bench;
        bench.curve("02", "64000000c80000002c010000");
        const QString reread = QStringLiteral(" aa55036602000000006a01/54 ") + kState;
        for (const auto &[text, frame] : {std::pair{"16777214", "aa5503650201feffff6604/11"},
                                          std::pair{"16777215", "aa5503650201ffffff006704/11"}}) {
            bench.point(1, 2)->setText(QLatin1String(text));
            Q_EMIT bench.point(1, 2)->editingFinished();
            QCOMPARE(bench.takeSent(), QLatin1String(frame) + reread);
        }
    }

    void coloursWhatDoesNotRise()
    {
        Bench bench;
        const auto colours = [&bench](const char *points) {
            bench.curve("04", points);
            QStringList names;
            for (int row = 0; row < 4; ++row)
                names += bench.point(row, 4)->styleSheet().section(QLatin1Char(' '), 1);
            return names.join(QString());
        };
        QCOMPARE(colours("000000000000000000000000"), QStringLiteral("yellow;yellow;yellow;yellow;"));
        QCOMPARE(colours("64000000c800000096000000"), QStringLiteral("white;red;red;yellow;"));
        QCOMPARE(colours("64000000c80000002c010000"), QStringLiteral("white;white;red;yellow;"));
        QCOMPARE(colours("64000000640000002c010000"), QStringLiteral("red;red;red;yellow;"));
    }

    void clearsByVersion()
    {
        Bench bench;
        const auto clear = [&bench] {
            bench.curve("00", "000000006400000000000000");
            return bench.click("pbtnCaliClear");
        };
        const QString reread = QStringLiteral(" aa55036600000000006801/54 ");
        const QString pointByPoint = QStringLiteral("aa55036500010000006801/11") + reread + kState;
        const QString wholeChannel =
            QStringLiteral("aa55034200") + QString(96, QLatin1Char('0')) + QStringLiteral("4401/11") + reread;
        QCOMPARE(clear(), pointByPoint);
        for (const auto &[version, inOneStep] :
             {std::pair{"0102", false}, {"0009", false}, {"0103", true}, {"0200", true}}) {
            bench.answer("a6", QByteArray("a6") + version + "000000");
            const QString sent = clear();
            QVERIFY2(inOneStep ? sent.startsWith(wholeChannel) : sent == pointByPoint, version);
            QCOMPARE(sent.count(QLatin1Char('/')), inOneStep ? 11 : 3);
        }
        // The next sensor has not told its version yet.
        bench.attach(PanelBench::kSmall);
        bench.takeSent();
        QCOMPARE(clear(), pointByPoint);
    }

    void sortsTheVerdict()
    {
        Bench bench;
        // A short answer counts as good.
        const std::pair<const char *, const char *> verdicts[] = {
            {"0100000105", "未标定:0,3,    变化小:4,    red"},
            {"0603090402", "错误:4,    一致性差:3,    未知:2,    检查固件:1,    0.1N不存在:0,    red"},
            {"0000000000", "标定参数正常black"},
            {"", "标定参数正常black"},
        };
        for (const auto &[codes, verdict] : verdicts) {
            bench.panel->sl_cmdRsp(0, 0x61, QByteArray::fromHex("aa55036f"),
                                   QByteArray::fromHex(QByteArray("55aa03ef") + codes));
            const QString colour = bench.get<QWidget>("lbCaliTableState")->styleSheet();
            QCOMPARE(bench.text("lbCaliTableState") + colour.section(QLatin1Char(':'), 1).chopped(1),
                     QString::fromUtf8(verdict));
        }
    }

    void exports()
    {
        const QDir folder(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
        QFile file(folder.filePath(QStringLiteral("caliTable.csv")));
        Bench bench;
        bench.answer("6d", "ed03cdcccc3d0000003f0000a041");
        QCOMPARE(bench.get<QComboBox>("cbbCaliList")->itemText(2), QStringLiteral("20.0"));
        for (const char *channel : {"00", "01", "02", "03"})
            bench.curve(channel, "64000000c80000002c010000");
        QByteArray expected = "0.1,100,100,100,100,,\n0.5,200,200,200,200,,\n20.0,300,300,300,300,,\n";
        for (int row = 3; row < 12; ++row)
            expected += ",0,0,0,0,,\n";
        for (const bool emptied : {false, false, true}) {
            if (emptied)
                bench.panel->sl_reset(0, 0x61);
            bench.click("pbtnCaliSave");
            QVERIFY(file.open(QIODevice::ReadOnly));
            QCOMPARE(file.readAll(), emptied ? QByteArray() : expected);
            file.close();
        }
    }
};

QTEST_MAIN(TestPanelTables)
#include "tst_panel_tables.moc"
