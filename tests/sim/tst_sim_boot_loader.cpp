#include "sim/SimI2cBus.h"
#include "tests/support/test_bytes.h"
#include "update/ymodem_frames.h"

#include <QtTest>

#include <memory>

using namespace std::chrono_literals;

namespace {

using YmodemFrames::endOfFile;
using YmodemFrames::header;
using YmodemFrames::largeBlock;
using YmodemFrames::smallBlock;

const QByteArray kReset = hex("AA5500A10000000000A001");

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
        const QByteArray block = largeBlock(1, testBytes(200));
        QByteArray badCrc = block;
        badCrc[500] = static_cast<char>(badCrc.at(500) ^ 1);
        QByteArray badTail = block;
        badTail[1031] = 1;
        QCOMPARE(exchange(block), '\x15'); // no header yet
        QCOMPARE(exchange(header("a", 200)), '\x06');
        QCOMPARE(exchange(badCrc), '\x15');
        QCOMPARE(exchange(badTail), '\x15');
        QCOMPARE(exchange(largeBlock(2, testBytes(200))), '\x15');
        QCOMPARE(exchange(block), '\x06');
        QCOMPARE(exchange(block), '\x06'); // once more, as after a lost acknowledgement
        QCOMPARE(exchange(smallBlock(2, testBytes(128))), '\x15'); // nothing is missing any more
        QCOMPARE(m_sensor->bootLoader().image(), testBytes(200));
        QCOMPARE(exchange(endOfFile()), '\x06');
        QCOMPARE(exchange(header("a", 0xFFFFFFFF)), '\x15');
        QCOMPARE(exchange(smallBlock(0, QByteArray(128, 'a'))), '\x15');
        QCOMPARE(exchange(header("a", 2000000)), '\x18');
    }

    void brokenUpdateWaitsForTheNext()
    {
        m_sensor->bootLoader().cutPowerAfter(136 + 500);
        write(header("a", 2048));
        write(largeBlock(1, testBytes(1024)));
        m_sensor->powerCycle();
        QCOMPARE(read(), 'C'); // no program to start
        const QByteArray image = testBytes(1100);
        QCOMPARE(exchange(header("app.bin", 1100)), '\x06');
        QCOMPARE(exchange(largeBlock(1, image.left(1024))), '\x06');
        QCOMPARE(exchange(smallBlock(2, image.mid(1024))), '\x06');
        QCOMPARE(exchange(endOfFile()), '\x06');
        QCOMPARE(read(), 'C');
        QCOMPARE(exchange(header({}, 0)), '\x06');
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
