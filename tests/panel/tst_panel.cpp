// A panel without a worker: attach and reset, the way of a sample to the screen, what cells and controls send beyond the
// plain commands, what every kind of answer does, and the page of calibration as it works when somebody puts it back.

#include "tests/panel/panel_bench.h"

#include "panel/force_threshold.h"
#include "tests/support/box_answer.h"
#include "tests/support/log_capture.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTableWidget>
#include <QtTest>

namespace {

const QString kState = QStringLiteral("aa55036f00000000007101/11");
const QString kReread = QStringLiteral("aa55036800000000006a01/22");

const QStringList kAttachOfFinger = {
    QStringLiteral("aa5503a00000000000a201/25"), QStringLiteral("aa5503a60000000000a801/11"),
    QStringLiteral("aa5503a40000000000a601/65535"), QStringLiteral("aa55036800000000006a01/38"),
    QStringLiteral("aa55037f00000004008501/11")};
const QString kForceType = QStringLiteral("aa55037f00000004008501/11");

QStringList captions(const PanelBench &bench, const char *label)
{
    QStringList texts;
    for (const QLabel *cell : bench.cells<QLabel>(label))
        texts += cell->text();
    return texts;
}

/// Attached to the model with four channels.
struct Bench : PanelBench
{
    explicit Bench(int columns = 1)
    {
        attach(31);
        get<QTableWidget>("tbwThreshold")->setColumnCount(columns);
        takeSent();
    }
};

void click(PanelBench &bench, const char *button)
{
    bench.get<QAbstractButton>(button)->click();
}

QLineEdit *cell(const PanelBench &bench, int row, int column)
{
    return qobject_cast<QLineEdit *>(bench.get<QTableWidget>("tbwThreshold")->cellWidget(row, column));
}

QString column(const PanelBench &bench, int index)
{
    QStringList texts;
    for (int row = 0; row < bench.get<QTableWidget>("tbwThreshold")->rowCount(); ++row)
        texts += cell(bench, row, index) ? cell(bench, row, index)->text() : QStringLiteral("-");
    return texts.join(QLatin1Char(' '));
}

/// A request of the panel without payload or sum: only its command is looked at.
QString request(const char *command)
{
    return QStringLiteral("aa5503") + QLatin1String(command) + QStringLiteral("00000000000000");
}

void fillAllColumns(PanelBench &bench)
{
    bench.answer(request("68"), QStringLiteral("55aa03e80a0000000b00000040420f00ffffffff"));
    bench.answer(request("51"), QStringLiteral("55aa03d101020304"));
    bench.answer(request("53"), QStringLiteral("55aa03d305060708"));
    bench.answer(request("5a"), QStringLiteral("55aa03da01020304050607080000003f0000803fcdcccc3d00002041"));
    bench.answer(request("5e"), QStringLiteral("55aa03de01000000020000000300000080ee3600"));
    bench.answer(request("4a"), QStringLiteral("55aa03ca0102030405060708090a0b0c0d0e0f10"));
}

/// With the page of calibration put back: four channels, one block and twelve points.
struct CalibrationBench : Bench
{
    CalibrationBench()
    {
        get<QTabWidget>("tabWidget")->addTab(get<QWidget>("tab_2"), QStringLiteral("标定"));
    }
    QLineEdit *point(int row, int column) const
    {
        return qobject_cast<QLineEdit *>(get<QTableWidget>("tbwCaliTable")->cellWidget(row, column));
    }
    /// The first three points of a channel; the other nine are not set.
    void curve(int channel, const QString &threePoints)
    {
        answer(QString::asprintf("aa550366%02x00000000", static_cast<unsigned int>(channel)),
               QStringLiteral("55aa03e6") + threePoints + QString(72, QLatin1Char('0')));
    }
};

} // namespace

class TestPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void asksInOrder()
    {
        PanelBench bench;
        bench.attach(2);
        QCOMPARE(bench.takeSent(), kAttachOfFinger);
        QCOMPARE(bench.get<QLabel>("lbAddr")->text(), QStringLiteral("0x61"));
        QCOMPARE(bench.get<QLabel>("lbType")->text(), QStringLiteral("3"));
        QCOMPARE(bench.get<QSpinBox>("spbIICAddr")->value(), 0x61);
        QCOMPARE(bench.get<QLabel>("lbIICAddr")->text(), QStringLiteral("97"));
        const auto *table = bench.get<QTableWidget>("tbwThreshold");
        QCOMPARE(table->rowCount(), 8);
        QCOMPARE(table->columnCount(), 1);
        QCOMPARE(table->verticalHeaderItem(7)->text(), QStringLiteral("通道7"));

        // From another page the change of page asks too; without an id the length tells the model.
        bench.get<QTabWidget>("tabWidget")->setCurrentIndex(2);
        bench.takeSent();
        bench.attach(0xFF, 62);
        QCOMPARE(bench.takeSent(), kAttachOfFinger + QStringList{kForceType});
        QCOMPARE(bench.get<QTabWidget>("tabWidget")->currentIndex(), 0);
    }

    void namesItsCells()
    {
        PanelBench bench;
        bench.attach(0x11);
        QCOMPARE(captions(bench, "lbIdx").mid(15).join(QLatin1Char(' ')),
                 QStringLiteral("通道15 法向力0 切向力0 方向0 法向力1 切向力1 方向1 "
                                "自电容接近0 自电容接近1 互电容接近0 状态"));
    }

    void showsASample()
    {
        PanelBench bench;
        bench.attach(2);
        QSignalSpy forwarded(bench.panel, SIGNAL(si_sendDataStrList(uint8_t, uint8_t, QVector<QString>)));
        bench.sample(PanelBench::fingerFrame(9, {3, 2, -3, 0, 1, 1000001, 6, 7}));
        const QStringList values =
            QStringLiteral("3 2 -3 0 1 1000001 6 7 1.25 0.50 90 7").split(QLatin1Char(' '));
        QCOMPARE(captions(bench, "lbData"), values);
        const QString red = QStringLiteral("color: rgb(255, 0, 0);");
        const QString black = QStringLiteral("color: rgb(0, 0, 0);");
        QStringList colours;
        for (const QLabel *label : bench.cells<QLabel>("lbData"))
            colours += label->styleSheet();
        QCOMPARE(colours, (QStringList{red, black, black, black, red, red, black, red, {}, {}, {}, {}}));
        QCOMPARE(forwarded.size(), 1);
        QCOMPARE(forwarded.at(0).at(2).value<QVector<QString>>().toList(), values);
    }

    void asksForTheTypeOfThePage()
    {
        PanelBench bench;
        bench.attach(2);
        bench.takeSent();
        auto *tabs = bench.get<QTabWidget>("tabWidget");
        auto *box = bench.get<QComboBox>("cbbSetSendType");
        const QString basicType = QStringLiteral("aa55037f00000002008301/11");
        tabs->setCurrentIndex(1);
        QCOMPARE(bench.takeSent(), QStringList{QStringLiteral("aa55037f00000000008101/11")});
        box->setCurrentIndex(2);
        QCOMPARE(bench.takeSent(), QStringList{basicType});
        box->setCurrentIndex(2);
        QCOMPARE(bench.takeSent(), QStringList());
        tabs->setCurrentIndex(0);
        QCOMPARE(bench.takeSent(), QStringList{kForceType});
        tabs->setCurrentIndex(2);
        QCOMPARE(bench.takeSent(), QStringList{basicType});
        for (const int ignored : {5, 6})
            Q_EMIT box->currentIndexChanged(ignored);
        QCOMPARE(bench.takeSent(), QStringList());
    }

    void resetsWithoutAWord()
    {
        PanelBench bench;
        bench.attach(2);
        bench.get<QComboBox>("cbbSetSendType")->setCurrentIndex(3);
        bench.get<QRadioButton>("rbtnModeHighBd")->setChecked(true);
        bench.takeSent();
        bench.panel->sl_reset(PanelBench::kInf, PanelBench::kAddr);
        QCOMPARE(bench.takeSent(), QStringList());
        QVERIFY(!bench.panel->view());
        QCOMPARE(captions(bench, "lbData"), QStringList());
        QVERIFY(bench.get<QRadioButton>("rbtnModeNor")->isChecked());
        QVERIFY(bench.get<QLabel>("lbAddr")->text().isEmpty());
        QCOMPARE(bench.get<QComboBox>("cbbSetSendType")->currentIndex(), 0);
        bench.attach(2);
        QCOMPARE(bench.takeSent(), kAttachOfFinger);
    }

    void sendsNothingToAnUnknownModel()
    {
        PanelBench bench;
        bench.attach(2);
        bench.get<QTabWidget>("tabWidget")->setCurrentIndex(2);
        const auto pages = [&bench] {
            QString enabled;
            for (const char *page : {"tab", "tab_4", "tab_3"})
                enabled += QString::number(bench.get<QWidget>(page)->isEnabled());
            return enabled;
        };
        // No view for the id; no model of that length.
        for (const auto &[prg, length] : {std::pair{0xEE, 0}, std::pair{0xFF, 9}}) {
            bench.takeSent();
            bench.attach(static_cast<uint8_t>(prg), length);
            for (QAbstractButton *button : bench.panel->findChildren<QAbstractButton *>())
                if (button->objectName() != QLatin1String("pbtnSetFactor"))
                    Q_EMIT button->clicked();
            bench.panel->getSN();
            bench.get<QTabWidget>("tabWidget")->setCurrentIndex(0);
            bench.get<QComboBox>("cbbSetSendType")->setCurrentIndex(prg == 0xFF ? 2 : 1);
            QCOMPARE(bench.takeSent(), QStringList());
            QCOMPARE(pages(), QStringLiteral("100"));
        }
        bench.attach(2);
        QCOMPARE(pages(), QStringLiteral("111"));
        QCOMPARE(bench.takeSent(), kAttachOfFinger);
    }

    void keepsWhatIsBeingTyped()
    {
        CalibrationBench bench;
        bench.get<QTableWidget>("tbwThreshold")->setColumnCount(10);
        bench.panel->show();
        QVERIFY(QTest::qWaitForWindowActive(bench.panel));
        const auto refresh = [&bench](int value) {
            fillAllColumns(bench);
            bench.curve(0, QString::asprintf("%02x000000%02x000000%02x000000", value, value + 1, value + 2));
        };
        refresh(10);
        for (const int column : {0, 1, 3, 5, -1}) {
            bench.get<QTabWidget>("tabWidget")->setCurrentIndex(column < 0 ? 3 : 2);
            QLineEdit *edit = column < 0 ? bench.point(1, 0) : cell(bench, 1, column);
            const QString before = edit->text();
            edit->setFocus();
            edit->selectAll();
            QTest::keyClick(edit, Qt::Key_1);
            QTest::keyClick(edit, Qt::Key_3);
            refresh(10);
            QCOMPARE(column < 0 ? bench.point(1, 0) : cell(bench, 1, column), edit);
            QCOMPARE(edit->text(), QStringLiteral("13"));
            QTest::keyClick(edit, Qt::Key_Return);
            refresh(10);
            QCOMPARE(edit->text(), before);
        }
        refresh(20);
        QCOMPARE(bench.point(0, 0)->text(), QStringLiteral("20"));
    }

    void dropsAHalfTypedCell()
    {
        for (const int page : {2, 3}) {
            CalibrationBench bench;
            bench.panel->show();
            QVERIFY(QTest::qWaitForWindowActive(bench.panel));
            auto *tabs = bench.get<QTabWidget>("tabWidget");
            const auto type = [&] {
                bench.answer(request("68"), QStringLiteral("55aa03e80a0000000b00000040420f00ffffffff"));
                bench.curve(0, QStringLiteral("64000000c80000002c010000"));
                tabs->setCurrentIndex(page);
                QLineEdit *edit = page == 2 ? cell(bench, 1, 0) : bench.point(1, 0);
                edit->setFocus();
                QTest::keyClick(edit, Qt::Key_1);
                bench.takeSent();
            };
            tabs->setCurrentIndex(page);
            bench.takeSent();
            bench.attach(31);
            const QStringList plain = bench.takeSent();
            type();
            bench.attach(31);
            QCOMPARE(bench.takeSent(), plain);
            type();
            delete std::exchange(bench.panel, nullptr);
            QCOMPARE(bench.takeSent(), QStringList());
        }
    }

    void setsTheAddress()
    {
        Bench bench;
        bench.get<QSpinBox>("spbIICAddr")->setValue(0x3F);
        click(bench, "pbtnSetIICAddr");
        QCOMPARE(bench.takeSent(), QStringList{QStringLiteral("aa5503700000003f00b101/11")});
    }

    void restoresTheFactoryOnlyWhenTold()
    {
        Bench bench;
        for (const auto button : {QMessageBox::No, QMessageBox::Reset}) {
            QCOMPARE(bench.takeSent(), QStringList());
            BoxAnswer boxes;
            boxes.expect(QStringLiteral("提示"), QStringLiteral("确认回复出厂设置？"), button);
            click(bench, "pbtnSetFactor");
            QVERIFY2(boxes.satisfied(), qPrintable(boxes.report()));
        }
        QCOMPARE(bench.takeSent(), QStringList{QStringLiteral("aa55037600000000007801/11")});
    }

    void fillsTheTable()
    {
        Bench bench(10);
        fillAllColumns(bench);
        QStringList columns;
        for (int i = 0; i < 10; ++i)
            columns += column(bench, i);
        QCOMPARE(columns.join(QLatin1Char(';')),
                 QStringLiteral("10 11 1000000 4294967295;1 2 3 4;5 6 7 8;1 2 3 4;5 6 7 8;0.5 1 0.1 10;"
                                "1 2 3 3600000;1 5 9 13;2 6 10 14;1027 2055 3083 4111"));
        QVERIFY(!cell(bench, 0, 7)->isEnabled());
        QCOMPARE(bench.takeSent(), QStringList());
    }

    void sendsEditedCells()
    {
        Bench bench(10);
        fillAllColumns(bench);
        const auto edit = [&bench](int column, const char *text) {
            cell(bench, 1, column)->setText(QLatin1String(text));
            Q_EMIT cell(bench, 1, column)->editingFinished();
            return bench.takeSent().join(QLatin1Char(' '));
        };
        QCOMPARE(edit(0, "x"), QStringLiteral("aa55036901000000006c01/11"));
        QCOMPARE(edit(0, ""), QString());
        QCOMPARE(edit(1, "300"), QStringLiteral("aa550350012c0000007f01/11"));
        QCOMPARE(edit(1, "1x"), QStringLiteral("aa55035001000000005301/11"));
        QCOMPARE(edit(3, "4"), QStringLiteral("aa5503590104060000803f2502/11"));
        cell(bench, 1, 3)->clear();
        cell(bench, 1, 4)->clear();
        QCOMPARE(edit(5, "2.5"), QStringLiteral("aa55035901000000002040bc01/11"));
        QCOMPARE(edit(5, ""), QString());
    }

    void dropsColumnsOfAnotherLength()
    {
        Bench bench(10);
        const LogCapture log;
        bench.panel->setThreshold({1, 2, 3});
        bench.panel->setExcF({1});
        bench.panel->setTimeout({});
        bench.panel->setFilter({1, 2, 3, 4}, {1, 2, 3, 4}, {1});
        bench.panel->setDac({1}, {1, 2}, {1, 2, 3});
        QCOMPARE(log.lines().join(QLatin1Char(';')),
                 QStringLiteral("setThreshold err:4,3;setExcf err:4,1;setRange err:4,0;"
                                "setRange err:4,4,4,1;setRange err:4,1,2,3"));
        QCOMPARE(column(bench, 6), QLatin1String("- - - -"));
    }

    void showsWhatWasRead()
    {
        Bench bench;
        const auto shown = [&bench](const char *command, const QByteArray &payload, const char *label) {
            bench.answer(request(command), QStringLiteral("55aa03") + QLatin1String(command) +
                                               QString::fromLatin1(payload.toHex()));
            return bench.get<QLabel>(label)->text();
        };
        QCOMPARE(shown("a0", "Nov 22 202620:28:58", "lbVersionDate"), QStringLiteral("Nov 22 2026"));
        QCOMPARE(bench.get<QLabel>("lbVersionTime")->text(), QStringLiteral("20:28:58"));
        QCOMPARE(shown("a6", QByteArray::fromHex("0103000200"), "lbVersion"), QStringLiteral("1.3.0"));
        QCOMPARE(shown("74", QByteArray::fromHex("e909000000"), "lbTemp"), QStringLiteral("25.37"));
        QCOMPARE(shown("a4", QByteArray("\6AB\0X12", 7), "lbSN"), QStringLiteral("AB"));
        QCOMPARE(shown("a4", '\xC8' + QByteArray(200, 'S'), "lbSN"), QString(50, QLatin1Char('S')));
    }

    void bearsShortAnswers()
    {
        Bench bench(10);
        const QByteArray shortest = QByteArray::fromHex("55aa03ff");
        for (const char *command : {"41", "44", "46", "4a", "51", "53", "5a", "5c", "5e", "62", "66", "68",
                                    "6d", "6f", "74", "a0", "a4", "a6", "aa"})
            bench.panel->sl_cmdRsp(0, 0x61, QByteArray::fromHex(request(command).toLatin1()), shortest);
        QCOMPARE(bench.get<QLabel>("lbVersion")->text(), QStringLiteral("0.0.0"));
        QCOMPARE(column(bench, 9), QLatin1String("0 0 0 0"));
    }

    void sortsAnswers()
    {
        Bench bench;
        const LogCapture log;
        const auto logged = [&](const char *command, const char *response) {
            bench.answer(request(command), QLatin1String(response));
            return log.lines().last();
        };
        QCOMPARE(logged("76", "55aa03f6"), QStringLiteral("恢复出厂设置:成功"));
        QCOMPARE(logged("a1", "55aa03a10000000500"), QStringLiteral("软件复位:成功"));
        QCOMPARE(logged("70", "55aa03f00000000000"), QStringLiteral("设置IIC地址:成功"));
        QCOMPARE(logged("49", "55aa03c9"), QStringLiteral("rsp cmd not found"));
        QCOMPARE(logged("60", "55aa0300"), QStringLiteral("不支持的命令:读取命令"));
        bench.panel->sl_cmdRsp(0, 0x61, QByteArray(3, 'x'), QByteArray(9, 'x'));
        QCOMPARE(log.lines().last(), QStringLiteral("cmd req len err"));
        BoxAnswer boxes;
        boxes.expect(QStringLiteral("命令错误"), QStringLiteral("设置IIC地址"));
        logged("70", "55aa03f00000006100");
        QVERIFY(log.contains(QStringLiteral("设置IIC地址:失败")));
        QVERIFY2(boxes.satisfied(), qPrintable(boxes.report()));
    }

    void mayDieInTheWarning()
    {
        Bench bench;
        BoxAnswer boxes;
        boxes.expect(QStringLiteral("命令错误"), QStringLiteral("设置量程:9"));
        boxes.whileOpen = [&bench] { delete std::exchange(bench.panel, nullptr); };
        bench.answer(QStringLiteral("aa5503520114000000"), QStringLiteral("55aa03d20000000900"));
        QVERIFY2(boxes.satisfied(), qPrintable(boxes.report()));
    }

    void countsDownAndRereads()
    {
        Bench bench;
        click(bench, "rbtnModeHighBd");
        bench.takeSent();
        click(bench, "rbtnModeNor");
        QCOMPARE(bench.takeSent(), QStringList{QStringLiteral("aa55035600000000005801/6")});
        const auto *label = bench.get<QLabel>("lbAutoThresholdTime");
        QTRY_COMPARE_WITH_TIMEOUT(label->text(), QStringLiteral("倒计时：1秒"), 20000);
        QTRY_COMPARE_WITH_TIMEOUT(label->text(), QStringLiteral("倒计时：0秒"), 20000);
        QCOMPARE(bench.takeSent(), QStringList{kReread});
    }

    void turnsForceIntoThreshold()
    {
        // Below the first point, on a point, between two, cut, before a fall, in it, last, beyond.
        QVector<unsigned int> thresholds;
        for (const float newtons : {0.25F, 1.0F, 1.5F, 1.003F, 2.0F, 3.0F, 8.0F, 99.0F})
            thresholds +=
                thresholdForForce({0.5F, 1.0F, 2.0F, 4.0F, 8.0F}, {100, 300, 600, 500, 900}, newtons);
        // On and beyond the last point with more values than points, with fewer, with none.
        for (const QVector<unsigned int> &values :
             {QVector<unsigned int>{100, 300, 600}, QVector<unsigned int>{100}, QVector<unsigned int>{}})
            thresholds += thresholdForForce({0.5F, 1.0F}, values, 1.0F);
        QCOMPARE(thresholds, (QVector<unsigned int>{50, 300, 450, 300, 600, 0, 900, 900, 600, 100, 0}));
    }

    void sendsNoForceWithoutCalibration()
    {
        Bench bench;
        click(bench, "pbtnSetPressThreshold");
        bench.answer(request("6d"), QStringLiteral("55aa03ed020000803f00000040"));
        bench.get<QComboBox>("cbbSetPressThresholdCh")->addItem(QStringLiteral("77"));
        click(bench, "pbtnSetPressThreshold");
        QCOMPARE(bench.takeSent(), QStringList());
    }

    void coloursWhatDoesNotRise()
    {
        CalibrationBench bench;
        const auto colours = [&bench](const char *points) {
            bench.curve(4, QLatin1String(points));
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
        CalibrationBench bench;
        bench.curve(0, QStringLiteral("000000006400000000000000"));
        const auto clear = [&bench](const char *version) {
            bench.answer(QStringLiteral("aa5503a600000000"),
                         QStringLiteral("55aa03a6") + QLatin1String(version));
            bench.get<QPushButton>("pbtnCaliClear")->click();
            return bench.takeSent();
        };
        const QString reread = QStringLiteral("aa55036600000000006801/54");
        const QStringList pointByPoint = {QStringLiteral("aa55036500010000006801/11"), reread, kState};
        QCOMPARE(clear("0102000000"), pointByPoint);
        const QString wholeChannel =
            QStringLiteral("aa55034200") + QString(96, QLatin1Char('0')) + QStringLiteral("4401/11");
        const QStringList sent = clear("0103000000");
        QCOMPARE(sent.size(), 11);
        QCOMPARE(sent.mid(0, 2), (QStringList{wholeChannel, reread}));
        QCOMPARE(sent.last(), kState);
    }

    void sortsTheVerdict()
    {
        CalibrationBench bench;
        const auto *label = bench.get<QLabel>("lbCaliTableState");
        const auto verdict = [&](const char *codes) {
            bench.panel->sl_cmdRsp(0, 0x61, QByteArray::fromHex("aa55036f"),
                                   QByteArray::fromHex(QByteArray("55aa03ef") + codes));
            return label->text();
        };
        QCOMPARE(verdict("0100000105"), QStringLiteral("未标定:0,3,    变化小:4,    "));
        QCOMPARE(verdict("0603090402"),
                 QStringLiteral("错误:4,    一致性差:3,    未知:2,    检查固件:1,    0.1N不存在:0,    "));
        QCOMPARE(label->styleSheet(), QStringLiteral("QLabel#lbCaliTableState{color:red}"));
        // A short answer counts as good.
        for (const char *codes : {"0000000000", ""})
            QCOMPARE(verdict(codes), QStringLiteral("标定参数正常"));
        QCOMPARE(label->styleSheet(), QStringLiteral("QLabel#lbCaliTableState{color:black}"));
    }

    void exports()
    {
        const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
        QVERIFY(QDir(folder).removeRecursively());
        CalibrationBench bench;
        const auto exported = [&] {
            bench.get<QPushButton>("pbtnCaliSave")->click();
            QFile file(folder + QStringLiteral("/caliTable.csv"));
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
        };
        bench.answer(QStringLiteral("aa55036d"), QStringLiteral("55aa03ed03cdcccc3d0000003f0000a041"));
        QCOMPARE(bench.get<QComboBox>("cbbCaliList")->itemText(2), QStringLiteral("20.0"));
        for (int channel = 0; channel < 4; ++channel)
            bench.curve(channel, QStringLiteral("64000000c80000002c010000"));
        QByteArray expected = "0.1,100,100,100,100,,\n0.5,200,200,200,200,,\n20.0,300,300,300,300,,\n";
        for (int row = 3; row < 12; ++row)
            expected += ",0,0,0,0,,\n";
        QCOMPARE(exported(), expected);
        QCOMPARE(exported(), expected);
        bench.panel->sl_reset(PanelBench::kInf, PanelBench::kAddr);
        QCOMPARE(exported(), QByteArray());
    }
};

QTEST_MAIN(TestPanel)
#include "tst_panel.moc"
