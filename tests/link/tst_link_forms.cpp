// What the forms do alike around links: boards of the multiplexer, boxes, hexadecimal texts.

#include "link/device_ids.h"
#include "link/forms/device_box.h"
#include "link/forms/hex_text.h"
#include "link/pca9548.h"

#include <QComboBox>
#include <QtTest>

class tst_link_forms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void boardBox()
    {
        const QByteArray masks = QByteArray::fromHex("FF1020400804010204081020 4080");
        QComboBox box;
        fillAdapterBoardBox(&box, "QObject");
        QCOMPARE(box.count(), masks.size());
        for (int i = 0; i < masks.size(); ++i)
            QCOMPARE(adapterBoardMask(i), static_cast<uint8_t>(masks[i]));
        QCOMPARE(adapterBoardMask(-1) + adapterBoardMask(14), 0);
        QCOMPARE(box.itemText(0), QStringLiteral("无PCA9548"));
        QCOMPARE(box.itemText(1), QStringLiteral("转接板-1(PCA9548-4)"));
        QCOMPARE(box.itemText(13), QStringLiteral("PCA9548-7"));
    }

    void deviceBox()
    {
        QComboBox box;
        const QStringList ids = deviceIdTexts({1002, 3, 65535});
        refillDeviceBox(&box, ids);
        QCOMPARE(box.itemText(2), QStringLiteral("65535"));
        box.setCurrentIndex(1);
        QSignalSpy changes(&box, qOverload<int>(&QComboBox::currentIndexChanged));
        refillDeviceBox(&box, ids);
        QCOMPARE(changes.size(), 0);
        refillDeviceBox(&box, {QStringLiteral("3"), QStringLiteral("1002")});
        QCOMPARE(box.currentText(), QStringLiteral("3"));
        QCOMPARE(box.count(), 2);
    }

    void hexText()
    {
        QCOMPARE(bytesFromHexText(QStringLiteral("AA5500a1fF")), QByteArray::fromHex("AA5500A1FF"));
        QCOMPARE(bytesFromHexText(QStringLiteral("12A")), QByteArray::fromHex("120A"));
        QCOMPARE(bytesFromHexText(QString()), QByteArray());
    }
};

QTEST_MAIN(tst_link_forms)
#include "tst_link_forms.moc"
