#include "link/providers/ch341dll.h"
#include "link/providers/invalid_handle.h"
#include "sim/SimCh341.h"
#include "sim/SimUsb.h"
#include "tests/support/test_bytes.h"

#include <QtTest>

#include <memory>

using namespace std::chrono_literals;

namespace {

bool write341(const QByteArray &packet)
{
    auto length = static_cast<uint32_t>(packet.size());
    return CH341WriteData(0, packet.constData(), &length) != 0;
}

QByteArray read341(const QByteArray &packet)
{
    QByteArray bytes(63, '\0');
    uint32_t length = 0;
    if (CH341WriteRead(0, static_cast<uint32_t>(packet.size()), packet.constData(), 63, 1, &length,
                       bytes.data()) == 0)
        return {};
    return bytes.left(static_cast<int>(length));
}

std::shared_ptr<SimSensor> quietSensor(uint8_t programId, uint8_t address)
{
    auto sensor = std::make_shared<SimSensor>(programId, address);
    sensor->setSampleRateHz(0);
    return sensor;
}

} // namespace

class tst_sim_bridges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_usb = std::make_unique<SimUsb>();
        m_bus = std::make_shared<SimI2cBus>();
        m_ch341 = std::make_shared<SimCh341>(m_bus, 5, 2);
        m_usb->plug(m_ch341);
        QVERIFY(!isInvalidHandle(CH341OpenDevice(0)));
    }

    void cleanup() { m_usb.reset(); }

    void multiplexerSelects()
    {
        const auto first = quietSensor(0x1F, 0x10);
        const auto second = quietSensor(0x02, 0x10);
        m_bus->plug(first, 4);
        m_bus->plug(second, 5);
        QCOMPARE(read341(hex("AA748121C07500")).toHex(), QByteArrayLiteral("ff"));
        QVERIFY(write341(hex("AA7481E04F4F81107500")));
        QCOMPARE(read341(hex("AA7481E1C07500")).toHex(), QByteArrayLiteral("10"));
        QCOMPARE(read341(hex("AA748121DAC07500")).toHex(), first->sampleFrame().toHex());
        QCOMPARE(m_bus->journal().records(SimRecord::Kind::Read).back().channels, uint8_t(0x10));
        QVERIFY(write341(hex("AA7481E081207500")));
        QCOMPARE(read341(hex("AA748121DAC07500")).toHex(), second->sampleFrame().left(27).toHex());
        QVERIFY(write341(hex("AA7481E081307500")));
        QCOMPARE(read341(hex("AA748121C5C07500")).toHex(),
                 QByteArrayLiteral("55aa10850000")); // both pull: 0C and 20
    }

    void malformedPackets()
    {
        for (const char *packet : {"7481E17500", "AA7481", "AA747576"})
            QVERIFY(write341(hex(packet)));
        QCOMPARE(m_ch341->malformedPackets(), 3);
        QVERIFY(read341(hex("AA7481E1C1E0C07500")).size() <= 33); // more than a segment may read
        QCOMPARE(m_ch341->malformedPackets(), 4);
    }

    void busTakesItsTime()
    {
        m_bus->plug(quietSensor(0x1F, 0x10));
        m_bus->setTimed(true);
        QVERIFY(CH341SetStream(0, 0) != 0);
        const auto before = m_bus->busTime();
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(read341(hex("AA748121DAC07500")).size(), 27);
        // 28 bytes of 9 bits, start and stop, at 20 kHz.
        QCOMPARE((m_bus->busTime() - before).count(), 254LL * 50000);
        QVERIFY(timer.nsecsElapsed() >= 254LL * 50000);
        QCOMPARE(CH341SetStream(0, 4), 0U);
    }

private:
    std::unique_ptr<SimUsb> m_usb;
    std::shared_ptr<SimI2cBus> m_bus;
    std::shared_ptr<SimCh341> m_ch341;
};

QTEST_GUILESS_MAIN(tst_sim_bridges)
#include "tst_sim_bridges.moc"
