// The bytes and numbers that the page for integrators prints are those of the code.

#include "protocol/class_sensorCmd.h"
#include "protocol/sample.h"

#include <QFile>
#include <QRegularExpression>
#include <QtTest>

class tst_protocol_page : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QFile page(QStringLiteral(PROTOCOL_PAGE));
        QVERIFY(page.open(QIODevice::ReadOnly));
        m_page = QString::fromUtf8(page.readAll());
    }

    void framesAreWhole()
    {
        const QStringList names{QStringLiteral("version of 0x61"),
                                QStringLiteral("program id"),
                                QStringLiteral("send type 4"),
                                QStringLiteral("new address 0x62"),
                                QStringLiteral("program id 0x1C in byte 7"),
                                QStringLiteral("send type, status 0 in byte 7")};
        for (const QString &name : names)
            QVERIFY2(frameSumFits(bytesOf(name)), qPrintable(name));
        using C = class_sensorCmd;
        QCOMPARE(bytesOf(names.at(0)), built([](uint8_t *to) { C::SC_GetVersion(0x61, to); }));
        QCOMPARE(bytesOf(names.at(1)), requestFrame(0x61, 0xA6));
        QCOMPARE(bytesOf(names.at(2)), built([](uint8_t *to) { C::SC_SetSendType(0x61, 4, to); }));
        QCOMPARE(bytesOf(names.at(3)), built([](uint8_t *to) { C::SC_SetAddr(0x61, 0x62, to); }));
        QCOMPARE(bytesOf(names.at(4)).at(7), '\x1C');
    }

    void sampleSaysItsValues()
    {
        const finger_info_ts *row = findFingerInfoByPrg(0x1C);
        QVERIFY(row != nullptr);
        Sample sample;
        QCOMPARE(decodeSample(bytesOf(QStringLiteral("0x1C")), *row, sampleBlockLength(row->yddsFmt), sample),
                 SampleRefusal::None);
        QStringList values{QString::number(sample.counter)};
        const auto add = [&values](const QVector<SampleNumber> &numbers) {
            for (const SampleNumber &number : numbers)
                values += number.text;
        };
        add(sample.channels);
        for (const SampleBlock &block : qAsConst(sample.blocks))
            values << block.normalText << block.tangentialText << block.directionText;
        add(sample.selfProximity);
        add(sample.mutualProximity);
        add(sample.status);
        QVERIFY2(m_page.contains(QStringLiteral("\nvalues   ") + values.join(QLatin1Char(',')) +
                                 QLatin1Char('\n')),
                 qPrintable(values.join(QLatin1Char(','))));
    }

    void modelsAreThoseOfTheCatalogue()
    {
        QString table;
        for (const finger_info_ts &row : finger_infos) {
            table += QString::asprintf("| `0x%02X` |", row.prg);
            for (const int number :
                 {int(row.packLen), int(row.chNum), int(row.forceChNum), int(row.chBytes), int(row.yddsNum),
                  int(row.yddsFmt), int(row.sProxNum), int(row.mProxNum), int(row.hasStatus)})
                table += QString::asprintf(" %d |", number);
            table += QLatin1Char('\n');
        }
        QVERIFY2(m_page.contains(table), qPrintable(table));
    }

private:
    /// The bytes behind a name, with the line that goes on.
    QByteArray bytesOf(const QString &name) const
    {
        const QRegularExpression line(QStringLiteral("^(?:request|response|sample) +") +
                                          QRegularExpression::escape(name) +
                                          QStringLiteral(" {2,}((?:[0-9A-F]{2}\\s+)+)"),
                                      QRegularExpression::MultilineOption);
        return QByteArray::fromHex(line.match(m_page).captured(1).toLatin1());
    }
    template<typename Builder>
    static QByteArray built(Builder build)
    {
        QByteArray frame(11, '\0');
        build(reinterpret_cast<uint8_t *>(frame.data()));
        return frame;
    }

    QString m_page;
};

QTEST_APPLESS_MAIN(tst_protocol_page)
#include "tst_protocol_page.moc"
