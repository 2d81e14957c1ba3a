// Frames in, calls and lists out; what a frame says is the protocol's to test.

#include "tests/support/box_answer.h"
#include "tests/support/log_capture.h"
#include "tests/support/test_bytes.h"
#include "views/class_finger.h"

#include <QWidget>
#include <QtTest>

#include <array>

namespace {

/// Writes down what the decoder hands over.
class Recorder : public class_finger
{
public:
    using class_finger::class_finger;

    void setData(unsigned char i, unsigned int v) override { note("data", i, v); }
    void setTouchState(unsigned char i, bool on) override { note("touch", i, on); }
    void setPress(unsigned char i, float f, float range) override { note("press", i, f, range); }
    void setPressNList(QVector<float> list, float range) override { note("list", list.size(), range); }
    void setYdds(unsigned char i, float n, float t, unsigned short d) override { note("ydds", i, n, t, d); }
    void setSProx(unsigned char i, unsigned int v) override { note("sprox", i, v); }
    void setMProx(unsigned char i, unsigned int v) override { note("mprox", i, v); }
    void setErrCode(unsigned char v) override { note("status", v); }

    QStringList calls;

private:
    template<typename... Numbers>
    void note(const char *name, Numbers... values)
    {
        QString line = QLatin1String(name);
        QTextStream stream(&line, QIODevice::Append);
        ((stream << ' ' << +values), ...);
        calls.append(line);
    }
};

QString joined(const QVector<QString> &texts)
{
    return QStringList(texts.toList()).join(QLatin1Char(' '));
}

} // namespace

class TestClassFinger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void handsOverEveryQuantityInFrameOrder()
    {
        Recorder finger(0x11, nullptr);
        // 16 channels of three bytes, two blocks of three words, three proximity values, a status byte.
        const QByteArray frame = hex("55aa0785 2a 99"
                                     "000000 010000 020000 030000 a18601 000000 000000 000000"
                                     "000000 000000 000000 000000 000000 080000 090000 ffffff"
                                     "d204 3702 5900  ffff 0100 6701"
                                     "e09304 ffffff 050000 c8 9a0f");
        const QSignalSpy updates(&finger.signals, &class_fingerSignals::si_dataUpdate);
        QCOMPARE(finger.parseData(frame), uint8_t(0));
        // Channels 0 to 12 carry force, every channel its touch flag.
        QCOMPARE(
            finger.calls.mid(0, 15).join(QLatin1String(", ")),
            QStringLiteral("data 0 0, touch 0 0, press 0 0 50, data 1 1, touch 1 1, press 1 0 50, "
                           "data 2 2, touch 2 0, press 2 0.002 50, data 3 3, touch 3 1, press 3 0.003 50, "
                           "data 4 100001, touch 4 1, press 4 100.001 50"));
        QCOMPARE(finger.calls.mid(36).join(QLatin1String(", ")),
                 QStringLiteral(
                     "data 12 0, touch 12 0, press 12 0 50, data 13 8, touch 13 0, data 14 9, "
                     "touch 14 1, data 15 16777215, touch 15 1, list 13 50, ydds 0 12.34 5.67 89, "
                     "ydds 1 655.35 0.01 359, sprox 0 300000, sprox 1 16777215, mprox 0 5, status 200"));

        QCOMPARE(updates.count(), 1);
        QCOMPARE(finger.seq, uint8_t(0x2A));
        QCOMPARE(joined(finger.rawList), QStringLiteral("0 1 2 3 100001 0 0 0 0 0 0 0 0 8 9 16777215"));
        QCOMPARE(finger.yddsList.constLast().direction, QStringLiteral("359"));
        QCOMPARE(QPoint(finger.sProxList.size(), finger.mProxList.size()), QPoint(2, 1));
        QCOMPARE(joined(finger.proxList), QStringLiteral("300000 16777215 5"));
        QCOMPARE(joined(finger.statusList), QStringLiteral("200"));
        QCOMPARE(joined(finger.dataList.mid(14)),
                 QStringLiteral("9 16777215 12.34 5.67 89 655.35 0.01 359 300000 16777215 5 200"));
        finger.parseData(frame);
        QCOMPARE(finger.dataList.size(), 16 + 2 * 3 + 3 + 1); // the lists begin anew
    }

    void refuses()
    {
        Recorder finger(0x1F, nullptr);
        const QByteArray good = hex("55aa0085 01 00 e80300 000000 000000 000000 0000 0000 0000 00 7002");
        QCOMPARE(finger.parseData(good), uint8_t(0));
        const QVector<QString> before = finger.dataList;
        finger.calls.clear();
        const LogCapture log;
        QCOMPARE(finger.parseData(good.left(26)), uint8_t(1));
        QCOMPARE(finger.parseData(good.left(25) + hex("7102")), uint8_t(2));
        QCOMPARE(log.lines(), (QStringList{QStringLiteral("len err:26,27"), QStringLiteral("chk err")}));
        // The last sample outlives a refused one.
        QVERIFY(finger.calls.isEmpty());
        QCOMPARE(finger.dataList, before);
    }

    void auditTellsEachBrokenRule()
    {
        const std::array<finger_info_ts, 4> rows{{
            {1, 27, 5, 4, 1, 0, 0, 3, 4, 1, 0, 50, "甲", ""}, // channels 5, not 4; so the length is 30
            {2, 62, 8, 7, 1, 1, 0, 4, 2, 0, 0, 20, "乙", ""}, // sound, block length 22
            {3, 37, 4, 4, 1, 0, 0, 3, 7, 1, 0, 50, "丙",
             ""}, // unknown format, counted with the 22 before: 43
            {4, 27, 4, 4, 1, 0, 0, 3, 4, 1, 0, 50, "丁", ""}, // sound
        }};
        BoxAnswer answer;
        answer.expect(QStringLiteral("传感器通道数量错误"), QStringLiteral("通道数:5.4,0,0"));
        answer.expect(QStringLiteral("传感器数据长度错误"), QStringLiteral("数据长度不匹配:甲,长度:27 / 30"));
        answer.expect(QStringLiteral("错误"), QStringLiteral("三维力数据格式错误"));
        answer.expect(QStringLiteral("传感器数据长度错误"), QStringLiteral("数据长度不匹配:丙,长度:37 / 43"));
        QCOMPARE(int(class_finger::auditRows({rows.data(), rows.size()})), 6);
        QVERIFY2(answer.satisfied(), qPrintable(answer.report()));
    }

    void bearsAnUnknownModel()
    {
        BoxAnswer answer;
        answer.expect(QStringLiteral("传感器类型错误"), QStringLiteral("未识别传感器类型102"));
        const LogCapture log;
        QWidget view;
        class_finger finger(102, &view);
        QVERIFY2(answer.satisfied(), qPrintable(answer.report()));
        QCOMPARE(int(finger.parseData({})), 3);
        QVERIFY(finger.widget == nullptr);
        QCOMPARE(log.count(QStringLiteral("not found finger prg")), 1);
    }
};

QTEST_MAIN(TestClassFinger)
#include "tst_class_finger.moc"
