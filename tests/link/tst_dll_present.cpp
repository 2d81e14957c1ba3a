// The operations on vendor libraries that are there: every argument arrives, every result comes back.

#include "link/providers/ch341dll.h"
#include "link/providers/ch347dll.h"
#include "tests/support/log_capture.h"

#include <QTest>

namespace {

int notices = 0;
uint32_t lastStatus = 0;

void notice(uint32_t status)
{
    ++notices;
    lastStatus = status;
}

} // namespace

class tst_dll_present : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ch341()
    {
        LogCapture log;
        QVERIFY(CH341OpenDevice(1) != reinterpret_cast<void *>(UINTPTR_MAX));
        QCOMPARE(CH341GetDeviceName(1), "path");
        CH341CloseDevice(1);
        QVERIFY(CH341OpenDevice(2) == reinterpret_cast<void *>(UINTPTR_MAX));
        QCOMPARE(CH341ResetDevice(1), 101U);
        QCOMPARE(CH341FlushBuffer(1), 201U);
        QCOMPARE(CH341SetStream(1, 2), 301U);
        uint8_t buffer[4] = {5, 6, 7, 8};
        uint32_t length = 4;
        QCOMPARE(CH341WriteData(1, buffer, &length), 401U);
        QCOMPARE(length, 9U);
        uint8_t answer[4] = {};
        QCOMPARE(CH341WriteRead(1, 4, buffer, 63, 2, &length, answer), 501U);
        QCOMPARE(length, 126U);
        QCOMPARE(answer[3], uint8_t{8});
        uint32_t pins = 0;
        QCOMPARE(CH341GetInput(1, &pins), 601U);
        QCOMPARE(pins, 0x12345678U);
        QCOMPARE(CH341SetOutput(1, 2, 3, 4), 432701U);
        QVERIFY(log.lines().isEmpty());
    }

    void ch341Notices()
    {
        QCOMPARE(CH341SetDeviceNotify(0, nullptr, &notice), 1U);
        CH341SetStream(0, 3);
        QCOMPARE(notices, 1);
        QCOMPARE(lastStatus, 3U);
        // The library calls once more while the routine is taken away, and after that; neither call arrives.
        QCOMPARE(CH341SetDeviceNotify(0, nullptr, nullptr), 1U);
        CH341SetStream(0, 3);
        QCOMPARE(notices, 1);
    }

    void ch347()
    {
        QVERIFY(CH347OpenDevice(1) != reinterpret_cast<void *>(UINTPTR_MAX));
        QVERIFY(CH347OpenDevice(2) == reinterpret_cast<void *>(UINTPTR_MAX));
        QCOMPARE(CH347CloseDevice(1), 101U);
        CH347DeviceInfo info = {};
        QCOMPARE(CH347GetDeviceInfor(1, &info), 201U);
        QCOMPARE(info.bytes + 41, "usb#6&1A2B&0");
        notices = 0;
        QCOMPARE(CH347SetDeviceNotify(0, nullptr, &notice), 1U);
        QCOMPARE(lastStatus, 7U);
        QCOMPARE(CH347I2C_Set(1, 2), 2301U);
        QCOMPARE(CH347I2C_SetStretch(1, 1), 1401U);
        QCOMPARE(CH347I2C_SetDriverMode(1, 1), 1501U);
        QCOMPARE(CH347I2C_SetDelaymS(1, 12), 12601U);
        uint8_t request[2] = {8, 9};
        uint8_t answer[2] = {};
        QCOMPARE(CH347StreamI2C(1, 2, request, 3, answer), 3701U);
        QCOMPARE(answer[1], uint8_t{9});
        QCOMPARE(CH347GPIO_Set(1, 2, 3, 4), 432801U);
        // The library writes words, of which no more than a byte each arrives.
        uint8_t pins[] = {1, 2, 3, 4, 5, 6, 7, 8};
        QCOMPARE(CH347GPIO_Get(1, &pins[0], &pins[4]), 901U);
        QCOMPARE(QByteArray(reinterpret_cast<const char *>(pins), sizeof pins).toHex(),
                 QByteArray("1202030434060708"));
    }
};

QTEST_GUILESS_MAIN(tst_dll_present)
#include "tst_dll_present.moc"
