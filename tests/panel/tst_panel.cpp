// A panel without a worker: attach and reset, samples, answers, and what controls send.

#include "tests/panel/panel_bench.h"

#include "recording/recording_folder.h"
#include "tests/support/box_answer.h"
#include "tests/support/log_capture.h"

#include <QtTest>
#include <QtWidgets>

namespace {

const QString kAttach = QStringLiteral("aa5503a00000000000a201/25 aa5503a60000000000a801/11 "
                                       "aa5503a40000000000a601/65535 aa55036800000000006a01/38 "
                                       "aa55037f00000004008501/11");
const QString kForceType = QStringLiteral("aa55037f00000004008501/11");
const QString kBasicType = QStringLiteral("aa55037f00000002008301/11");

/// The texts of all labels of one name on the page of values, and their colours.
QString texts(const PanelBench &bench, const char *label, const char *property = "text")
{
    QStringList all;
    for (const QLabel *cell :
         bench.get<QWidget>("sawgDataList")->findChildren<QLabel *>(QLatin1String(label)))
        all += cell->property(property).toString();
    return all.join(QLatin1Char(' '));
}

QStringList recordings()
{
    return QDir(recordingFolder()).entryList({QStringLiteral("*.csv")}, QDir::Files);
}

} // namespace

class TestPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QVERIFY(QDir(recordingFolder()).removeRecursively());
        recordingFolder();
    }
    void cleanupTestCase() { QDir(recordingFolder()).removeRecursively(); }

    void asksInOrder()
    {
        PanelBench bench;
        bench.attach(2);
        QCOMPARE(bench.takeSent(), kAttach);
        QCOMPARE(bench.text("lbAddr") + bench.text("lbType") + bench.text("lbIICAddr"),
                 QStringLiteral("0x61397"));
        QCOMPARE(bench.get<QSpinBox>("spbIICAddr")->value(), 0x61);
        const auto *table = bench.get<QTableWidget>("tbwThreshold");
        QCOMPARE(table->rowCount(), 8);
        QCOMPARE(table->columnCount(), 1);
        QCOMPARE(table->verticalHeaderItem(7)->text(), QStringLiteral("通道7"));
        // From another page the change of page asks too; without an id the length tells the model.
        bench.get<QTabWidget>("tabWidget")->setCurrentIndex(2);
        bench.takeSent();
        bench.attach(0xFF, 62);
        QCOMPARE(bench.takeSent(), kAttach + QLatin1Char(' ') + kForceType);
        QCOMPARE(bench.get<QTabWidget>("tabWidget")->currentIndex(), 0);
    }

    void showsASample()
    {
        PanelBench bench(0x11);
        QVERIFY(texts(bench, "lbIdx")
                    .endsWith(QStringLiteral(
                        "通道15 法向力0 切向力0 方向0 法向力1 切向力1 方向1 自电容接近0 自电容接近1 "
                        "互电容接近0 状态")));
        bench.attach(2);
        const QSignalSpy forwarded(bench.panel, &fingerForm::si_sendDataStrList);
        bench.sample(9);
        const QString values = QStringLiteral("3 2 -3 0 1 1000001 6 7 1.25 0.50 90 7");
        QCOMPARE(texts(bench, "lbData"), values);
        const QString red = QStringLiteral("color: rgb(255, 0, 0);");
        const QString black = QStringLiteral("color: rgb(0, 0, 0);");
        QCOMPARE(texts(bench, "lbData", "styleSheet"),
                 (QStringList{red, black, black, black, red, red, black, red, {}, {}, {}, {}})
                     .join(QLatin1Char(' ')));
        QCOMPARE(forwarded.size(), 1);
        QCOMPARE(forwarded.at(0).at(2).value<QVector<QString>>().toList().join(QLatin1Char(' ')), values);
    }

    void asksForTheTypeOfThePage()
    {
        PanelBench bench;
        const auto turnTo = [&bench](int page) {
            bench.get<QTabWidget>("tabWidget")->setCurrentIndex(page);
            return bench.takeSent();
        };
        const auto choose = [&bench](int type) {
            bench.get<QComboBox>("cbbSetSendType")->setCurrentIndex(type);
            return bench.takeSent();
        };
        QCOMPARE(turnTo(1), QStringLiteral("aa55037f00000000008101/11"));
        QCOMPARE(choose(2), kBasicType);
        QCOMPARE(choose(2), QString());
        QCOMPARE(turnTo(0), kForceType);
        QCOMPARE(turnTo(2), kBasicType);
        for (const int ignored : {5, 6})
            Q_EMIT bench.get<QComboBox>("cbbSetSendType")->currentIndexChanged(ignored);
        QCOMPARE(bench.takeSent(), QString());
    }

    void resetsWithoutAWord()
    {
        PanelBench bench;
        bench.sample(1);
        bench.get<QComboBox>("cbbSetSendType")->setCurrentIndex(3);
        bench.get<QAbstractButton>("rbtnModeHighBd")->setChecked(true);
        for (const char *command : {"44", "46"})
            bench.answer(command, "c40500000009");
        bench.answer("a6", "a60103000200");
        bench.takeSent();
        bench.panel->sl_reset(0, 0x61);
        QCOMPARE(bench.takeSent() + texts(bench, "lbData") + bench.text("lbAddr") + bench.text("lbVersion"),
                 QString());
        QVERIFY(!bench.panel->view() && bench.get<QAbstractButton>("rbtnModeNor")->isChecked());
        QCOMPARE(bench.get<QComboBox>("cbbSetSendType")->currentIndex(), 0);
        for (const QString &spin : {QStringLiteral("Press"), QStringLiteral("Prox")}) {
            const QString name = QStringLiteral("spb%1ReleaseThreshold").arg(spin);
            QCOMPARE(bench.get<QSpinBox>(qPrintable(name))->value(), 0);
            QCOMPARE(bench.get<QSpinBox>(qPrintable(name + QStringLiteral("Scale")))->value(), 1);
        }
        bench.attach(2);
        QCOMPARE(bench.takeSent(), kAttach);
    }

    void sendsNothingToAnUnknownModel()
    {
        PanelBench bench;
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
            QCOMPARE(bench.takeSent(), QString());
            QCOMPARE(pages(), QStringLiteral("100"));
        }
        bench.attach(2);
        QCOMPARE(pages(), QStringLiteral("111"));
        QCOMPARE(bench.takeSent(), kAttach);
    }

    void restoresTheFactoryOnlyWhenTold()
    {
        PanelBench bench;
        for (const auto button : {QMessageBox::No, QMessageBox::Reset}) {
            QCOMPARE(bench.takeSent(), QString());
            BoxAnswer boxes;
            boxes.expect(QStringLiteral("提示"), QStringLiteral("确认回复出厂设置？"), button);
            bench.get<QAbstractButton>("pbtnSetFactor")->click();
            QVERIFY2(boxes.satisfied(), qPrintable(boxes.report()));
        }
        QCOMPARE(bench.takeSent(), QStringLiteral("aa55037600000000007801/11"));
    }

    void countsDownAndRereads()
    {
        PanelBench bench;
        QCOMPARE(bench.click("rbtnModeHighBd"), QStringLiteral("aa55035601000000005901/6"));
        QCOMPARE(bench.click("rbtnModeNor"), QStringLiteral("aa55035600000000005801/6"));
        for (const auto *left : {"倒计时：1秒", "倒计时：0秒"})
            QTRY_COMPARE_WITH_TIMEOUT(bench.text("lbAutoThresholdTime"), QString::fromUtf8(left), 20000);
        QCOMPARE(bench.takeSent(), QStringLiteral("aa55036800000000006a01/38"));
    }

    void showsWhatWasRead()
    {
        PanelBench bench;
        const auto shown = [&bench](const QByteArray &command, const QByteArray &payload, const char *label) {
            bench.answer(command, command + payload.toHex());
            return bench.text(label);
        };
        QCOMPARE(shown("a0", "Nov 22 202620:28:58", "lbVersionDate"), QStringLiteral("Nov 22 2026"));
        QCOMPARE(bench.text("lbVersionTime"), QStringLiteral("20:28:58"));
        QCOMPARE(shown("a6", QByteArray::fromHex("0103000200"), "lbVersion"), QStringLiteral("1.3.0"));
        QCOMPARE(shown("74", QByteArray::fromHex("e909000000"), "lbTemp"), QStringLiteral("25.37"));
        QCOMPARE(shown("a4", QByteArray("\6AB\0X12", 7), "lbSN"), QStringLiteral("AB"));
        QCOMPARE(shown("a4", '\xC8' + QByteArray(200, 'S'), "lbSN"), QString(50, QLatin1Char('S')));
        bench.answer("5c", "dc01e8030000");
        QCOMPARE(bench.get<QSpinBox>("spbProxClearTouchTimeout")->value(), 1000);
        // The shortest of answers reads as zeros.
        for (const char *command : {"41", "44", "46", "4a", "51", "53", "5a", "5c", "5e", "62", "66", "68",
                                    "6d", "6f", "74", "a0", "a4", "a6", "aa"})
            bench.panel->sl_cmdRsp(0, 0x61, QByteArray::fromHex(QByteArray("aa5503") + command),
                                   QByteArray::fromHex("55aa03ff"));
        QCOMPARE(bench.text("lbVersion") + bench.text("lbTemp") + bench.text("lbSN"),
                 QStringLiteral("0.0.00.00"));
    }

    void sortsAnswers()
    {
        PanelBench bench;
        const LogCapture log;
        const auto logged = [&](const char *command, const char *response) {
            bench.answer(command, response);
            return log.lines().last();
        };
        QCOMPARE(logged("76", "f6"), QStringLiteral("恢复出厂设置:成功"));
        QCOMPARE(logged("a1", "a10000000500"), QStringLiteral("软件复位:成功"));
        QCOMPARE(logged("7000000061", "f00000006100"), QStringLiteral("设置IIC地址:成功"));
        QCOMPARE(logged("49", "c9"), QStringLiteral("rsp cmd not found"));
        QCOMPARE(logged("60", "00"), QStringLiteral("不支持的命令:读取命令"));
        bench.panel->sl_cmdRsp(0, 0x61, QByteArray(3, 'x'), QByteArray(9, 'x'));
        QCOMPARE(log.lines().last(), QStringLiteral("cmd req len err"));
        BoxAnswer boxes;
        boxes.expect(QStringLiteral("命令错误"), QStringLiteral("设置IIC地址"));
        logged("70", "f00000006100");
        QVERIFY(log.contains(QStringLiteral("设置IIC地址:失败")));
        // The panel may die in the box of a refusal that makes it read again.
        boxes.expect(QStringLiteral("命令错误"), QStringLiteral("设置量程:9"));
        boxes.whileOpen = [&bench] { delete bench.panel; };
        logged("520114", "d20000000900");
        QVERIFY2(boxes.satisfied(), qPrintable(boxes.report()));
    }

    void recordsWhatIsForwarded()
    {
        PanelBench bench;
        auto *box = bench.get<QCheckBox>("chkbtnSave");
        const QSignalSpy forwarded(bench.panel, &fingerForm::si_sendDataStrList);
        const auto runsAfter = [&](Qt::CheckState state) {
            // Runs of one sensor are told apart by their millisecond.
            const qint64 begin = QDateTime::currentMSecsSinceEpoch();
            (void)QTest::qWaitFor([begin] { return QDateTime::currentMSecsSinceEpoch() > begin; });
            box->setCheckState(state);
            // A refused frame is recorded and sent on as what the last good one left.
            for (const int length : {62, 61})
                bench.sample(255, length);
            return recordings().size();
        };
        QCOMPARE(runsAfter(Qt::PartiallyChecked), 0);
        QCOMPARE(runsAfter(Qt::Checked), 1);
        QVERIFY(recordings().first().endsWith(QStringLiteral("__1__0x61.csv")));
        QFile file(recordingFolder() + QLatin1Char('/') + recordings().first());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll().count(",255,3,2,-3,0,1,1000001,6,7,1.25,0.50,90,7\n"), 2);
        QCOMPARE(runsAfter(Qt::Unchecked), 1);
        QCOMPARE(runsAfter(Qt::Checked), 2);
        bench.attach(2);
        QCOMPARE(runsAfter(Qt::Checked), 3);
        QCOMPARE(forwarded.size(), 10);

        const auto warning = [&] {
            bench.sample(1);
            return box->icon().isNull() ? box->toolTip() : QLatin1Char('!') + box->toolTip();
        };
        for (const bool folderComesBack : {true, false}) {
            QVERIFY(QDir(recordingFolder()).removeRecursively());
            QCOMPARE(warning(), QStringLiteral("!文件夹打开失败"));
            if (folderComesBack)
                recordingFolder();
            else
                box->click();
            QCOMPARE(warning(), QString());
        }
    }
};

QTEST_MAIN(TestPanel)
#include "tst_panel.moc"
