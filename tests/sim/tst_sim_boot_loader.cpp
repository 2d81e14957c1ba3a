#include "sim/SimI2cBus.h"
#include "tests/support/hex.h"

#include <QtTest>

#include <memory>

using namespace std::chrono_literals;

namespace {

uint16_t crc(const QByteArray &data)
{
    unsigned int sum = 0;
    for (const char byte : data) {
        sum ^= static_cast<unsigned int>(static_cast<uint8_t>(byte)) << 8;
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum & 0x8000U) != 0 ? (sum << 1) ^ 0x1021U : sum << 1;
    }
    return static_cast<uint16_t>(sum);
}

QByteArray frame(int sequence, QByteArray data, int size, char padding = 0x1A)
{
    data = data.leftJustified(size, padding);
    QByteArray bytes(1, size == 128 ? '\x01' : '\x02');
    bytes.append(static_cast<char>(sequence)).append(static_cast<char>(~sequence)).append(data);
    const uint16_t sum = crc(data);
    return bytes.append(static_cast<char>(sum >> 8)).append(static_cast<char>(sum)).append(3, '\0');
}

QByteArray header(const QByteArray &name, int size)
{
    return frame(0, name + '\0' + QByteArray::number(size), 128, '\0');
}

const QByteArray kEnd = hex("04000000");
const QByteArray kReset = hex("AA5500A10000000000A001");

QByteArray someImage(int size)
{
    QByteArray image;
    for (int i = 0; i < size; ++i)
        image.append(static_cast<char>(i * 7 + (i >> 8)));
    return image;
}

QList<QByteArray> blocksOf(const QByteArray &image)
{
    QList<QByteArray> blocks;
    for (int at = 0; at < image.size();) {
        const int size = image.size() - at > 128 ? 1024 : 128;
        blocks.append(frame(blocks.size() + 1, image.mid(at, size), size));
        at += size;
    }
    return blocks;
}

} // namespace

class tst_sim_boot_loader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Every test begins with the boot loader running.
    void init()
    {
        m_sensor = std::make_shared<SimSensor>(0x1F, 0x10);
        m_bus = std::make_unique<SimI2cBus>();
        m_bus->plug(m_sensor);
        QCOMPARE(read(), '\x55');
        QCOMPARE(exchange(kReset), '\x55'); // the answer to the reset
    }

    void checksFrames()
    {
        const QByteArray block = blocksOf(someImage(200)).first();
        QByteArray badCrc = block;
        badCrc[500] = static_cast<char>(badCrc.at(500) ^ 1);
        QByteArray badTail = block;
        badTail[1031] = 1;
        QCOMPARE(exchange(block), '\x15'); // no header yet
        QCOMPARE(exchange(header("a", 200)), '\x06');
        QCOMPARE(exchange(badCrc), '\x15');
        QCOMPARE(exchange(badTail), '\x15');
        QCOMPARE(exchange(frame(2, someImage(200), 1024)), '\x15');
        QCOMPARE(exchange(block), '\x06');
        QCOMPARE(exchange(block), '\x06'); // once more, as after a lost acknowledgement
        QCOMPARE(exchange(frame(2, someImage(128), 128)), '\x15'); // nothing is missing any more
        QCOMPARE(m_sensor->bootLoader().image(), someImage(200));
        QCOMPARE(exchange(kEnd), '\x06');
        QCOMPARE(exchange(header("a", -1)), '\x15');
        QCOMPARE(exchange(frame(0, QByteArray(128, 'a'), 128)), '\x15');
        QCOMPARE(exchange(header("a", 2000000)), '\x18');
    }

    void brokenUpdateWaitsForTheNext()
    {
        m_sensor->bootLoader().cutPowerAfter(136 + 500);
        write(header("a", 2048));
        write(blocksOf(someImage(2048)).first());
        m_sensor->powerCycle();
        QCOMPARE(read(), 'C'); // no program to start
        const QByteArray image = someImage(1100);
        QCOMPARE(exchange(header("app.bin", image.size())), '\x06');
        const QList<QByteArray> blocks = blocksOf(image); // one of 1024 bytes, one of 128
        for (const QByteArray &block : blocks)
            QCOMPARE(exchange(block), '\x06');
        QCOMPARE(exchange(kEnd), '\x06');
        QCOMPARE(read(), 'C');
        QCOMPARE(exchange(frame(0, {}, 128, '\0')), '\x06');
        QCOMPARE(m_sensor->bootLoader().image(), image);
        QCOMPARE(read(), '\x55'); // the new program runs

        // A host that gave up before it read the last answer can begin again with a reset.
        QCOMPARE(exchange(kReset), '\x55');
        write(header("empty", 0));
        QCOMPARE(exchange(kReset), '\x55');
        QCOMPARE(read(), 'C');
    }

private:
    void write(const QByteArray &bytes)
    {
        m_bus->start();
        m_bus->send(0x20);
        for (const char byte : bytes)
            m_bus->send(static_cast<uint8_t>(byte));
        m_bus->stop();
    }

    char read()
    {
        m_bus->start();
        m_bus->send(0x21);
        const uint8_t byte = m_bus->receive();
        m_bus->stop();
        return static_cast<char>(byte);
    }

    char exchange(const QByteArray &bytes)
    {
        write(bytes);
        return read();
    }

    std::shared_ptr<SimSensor> m_sensor;
    std::unique_ptr<SimI2cBus> m_bus;
};

QTEST_GUILESS_MAIN(tst_sim_boot_loader)
#include "tst_sim_boot_loader.moc"
