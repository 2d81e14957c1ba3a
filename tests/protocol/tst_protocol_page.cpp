// The frames and numbers that the page for integrators prints are those of the code.

#include "protocol/frames.h"
#include "protocol/sample.h"

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
        const QRegularExpression block(
            QStringLiteral("^((?:request|response|sample|poll) +\\S.*?) {2,}((?:[0-9A-F]{2}\\s+)+)"),
            QRegularExpression::MultilineOption);
        for (auto match = block.globalMatch(m_page); match.hasNext();) {
            const QRegularExpressionMatch one = match.next();
            m_blocks.insert(one.captured(1).simplified(), QByteArray::fromHex(one.captured(2).toLatin1()));
        }
        const QRegularExpression line(QStringLiteral("\n(?:request|response|sample|poll) "));
        QCOMPARE(m_blocks.size(), m_page.count(line));
    }

    void framesAreWhole()
    {
        for (auto block = m_blocks.cbegin(); block != m_blocks.cend(); ++block) {
            if (!block.key().startsWith(QLatin1String("poll")))
                QVERIFY2(frameSumFits(*block), qPrintable(block.key()));
        }
        QCOMPARE(bytes("request version of 0x61"), requestFrame(0x61, 0xA0));
        QCOMPARE(bytes("request program id"), requestFrame(0x61, 0xA6));
        QCOMPARE(bytes("request send type 4"), requestFrame(0x61, 0x7F, {0, 0, 0, 4}));
        QCOMPARE(bytes("request new address 0x62"), requestFrame(0x61, 0x70, {0, 0, 0, 0x62}));
        QCOMPARE(bytes("response program id 0x1C in byte 7").mid(2, 6), QByteArray("\x61\xA6\0\0\0\x1C", 6));
        QCOMPARE(bytes("response send type, status 0 in byte 7").mid(2, 6),
                 QByteArray("\x61\xFF\0\0\0\0", 6));
        QCOMPARE(bytes("poll address 0x61"), QByteArray("\x61\x9E"));
    }

    void sampleSaysItsValues()
    {
        const finger_info_ts *row = findFingerInfoByPrg(0x1C);
        QVERIFY(row != nullptr);
        Sample sample;
        QCOMPARE(decodeSample(bytes("sample 0x1C"), *row, sampleBlockLength(row->yddsFmt), sample),
                 SampleRefusal::None);
        QStringList values{QString::number(sample.counter)};
        for (const SampleNumber &number : qAsConst(sample.channels))
            values += number.text;
        for (const SampleBlock &block : qAsConst(sample.blocks))
            values << block.normalText << block.tangentialText << block.directionText;
        for (const SampleNumber &number : sample.selfProximity + sample.mutualProximity + sample.status)
            values += number.text;
        const QString line = QStringLiteral("\nvalues   %1\n").arg(values.join(QLatin1Char(',')));
        QVERIFY2(m_page.contains(line), qPrintable(line));
    }

    void modelsAreThoseOfTheCatalogue()
    {
        QString table = QStringLiteral("|---|---|---|---|---|---|---|---|---|---|\n");
        for (const auto &row : finger_infos)
            table += QString::asprintf("| `0x%02X` | %d | %d | %d | %d | %d | %d | %d | %d | %d |\n", row.prg,
                                       row.packLen, row.chNum, row.forceChNum, row.chBytes, row.yddsNum,
                                       row.yddsFmt, row.sProxNum, row.mProxNum, row.hasStatus);
        QVERIFY2(m_page.contains(table + QLatin1Char('\n')), qPrintable(table));
    }

private:
    QByteArray bytes(const char *name) const { return m_blocks.value(QLatin1String(name)); }
    QString m_page;
    QMap<QString, QByteArray> m_blocks;
};

QTEST_APPLESS_MAIN(tst_protocol_page)
#include "tst_protocol_page.moc"
