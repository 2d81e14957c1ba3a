// Without the CH341 library, and with a CH347 library that lacks an operation: no devices, one line each.

#include "link/providers/ch341dll.h"
#include "link/providers/ch347dll.h"
#include "tests/support/log_capture.h"

#include <QTest>

class tst_dll_missing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void libraryAbsent()
    {
        LogCapture log;
        QVERIFY(CH341GetDeviceName(0) == nullptr);
        QVERIFY(CH341OpenDevice(0) == reinterpret_cast<void *>(UINTPTR_MAX));
        CH341CloseDevice(0);
        uint8_t byte = 0;
        uint32_t length = 1;
        QCOMPARE(CH341ResetDevice(0) + CH341FlushBuffer(0) + CH341SetStream(0, 1), 0U);
        QCOMPARE(CH341SetDeviceNotify(0, nullptr, [](uint32_t) {}), 0U);
        QCOMPARE(CH341WriteData(0, &byte, &length), 0U);
        QCOMPARE(CH341WriteRead(0, 1, &byte, 1, 1, &length, &byte), 0U);
        QCOMPARE(CH341GetInput(0, &length) + CH341SetOutput(0, 3, 0, 0), 0U);
        QCOMPARE(log.lines(),
                 QStringList(QStringLiteral("CH341DLL is not installed, its bridges cannot be used")));
    }

    void symbolMissing()
    {
        LogCapture log;
        QVERIFY(CH347OpenDevice(0) == reinterpret_cast<void *>(UINTPTR_MAX));
        CH347DeviceInfo info = {};
        uint8_t byte = 0;
        QCOMPARE(CH347CloseDevice(0) + CH347GetDeviceInfor(0, &info), 0U);
        QCOMPARE(CH347SetDeviceNotify(0, nullptr, [](uint32_t) {}), 0U);
        QCOMPARE(CH347I2C_Set(0, 1) + CH347StreamI2C(0, 1, &byte, 1, &byte), 0U);
        QCOMPARE(CH347GPIO_Set(0, 1, 1, 1) + CH347GPIO_Get(0, &byte, &byte), 0U);
        QCOMPARE(log.lines(),
                 QStringList(QStringLiteral("CH347DLL has no CH347GPIO_Set, its bridges cannot be used")));
    }
};

QTEST_GUILESS_MAIN(tst_dll_missing)
#include "tst_dll_missing.moc"
