#pragma once

#include "engine/SensorBus.h"
#include "engine/info_ts.h"
#include "link/SensorLink.h"
#include "sim/SimCh347.h"
#include "sim/SimPty.h"
#include "sim/SimRequestParser.h"
#include "sim/SimUsb.h"
#include "tests/support/log_capture.h"
#include "tests/support/test_bytes.h"

#include <QSerialPort>
#include <QtTest>

#include <poll.h>

#include <chrono>
#include <functional>
#include <memory>

Q_DECLARE_METATYPE(SensorLink::Kind)

/// What the steps of the worker stand on, without a thread: a link to one simulated sensor, and waits that
/// take no time. On the serial line the sensor hears and answers while the host sleeps.
class StepRig
{
public:
    explicit StepRig(SensorLink::Kind kind, uint8_t prg = 0x1F, uint8_t address = 0x61, int channel = 5)
        : sensor(std::make_shared<SimSensor>(prg, address))
        , link(kind)
    {
        sensor->setSampleRateHz(0);
        i2c->plug(sensor, channel);
        usb.plug(bridge);
        constexpr uint8_t masks[] = {0x10, 0x20, 0x40, 0x08, 0x04, 0x01};
        for (int i = 0; i < entries.size(); ++i)
            entries[i].pca = masks[i];
        link.scan();
        [[maybe_unused]] const bool isOpen =
            link.open(link.isBridge() ? QStringLiteral("5003") : pty.portName());
        Q_ASSERT(isOpen);
    }

    /// What the host has sent, as hex, in order: polls and requests, or what was written to sensors'
    /// addresses.
    QStringList sent() const
    {
        QStringList all = m_sent;
        for (const SimRecord &record : i2c->journal().records(SimRecord::Kind::Write)) {
            if (record.address != 0x70)
                all += QString::fromLatin1(record.bytes.toHex());
        }
        return all;
    }

    static void addKinds()
    {
        QTest::addColumn<SensorLink::Kind>("kind");
        QTest::newRow("serial") << SensorLink::Kind::Serial;
        QTest::newRow("bridge") << SensorLink::Kind::Ch347;
    }

    LogCapture log;
    std::shared_ptr<SimSensor> sensor;
    std::shared_ptr<SimI2cBus> i2c = std::make_shared<SimI2cBus>();
    std::shared_ptr<SimCh347> bridge = std::make_shared<SimCh347>(i2c, 5003);
    SimUsb usb;
    SimPty pty;
    QVector<info_ts> entries{6};
    SensorLink link;
    std::chrono::milliseconds now{0};
    std::function<void()> onEvents = [] {};
    SensorBus bus{link,
                  {[this](std::chrono::milliseconds time) { sleep(time); },
                   [this] {
                       QCoreApplication::processEvents();
                       onEvents();
                   }}};

private:
    void sleep(std::chrono::milliseconds time)
    {
        now += time;
        if (link.isBridge())
            return;
        pollfd host{pty.descriptor(), POLLIN, 0};
        ::poll(&host, 1, 1);
        for (const SimRequestParser::Item &item : m_parser.feed(pty.readAll(), SimTime(now))) {
            m_sent += QString::fromLatin1(item.bytes.toHex());
            const auto target = static_cast<uint8_t>(item.bytes.at(0));
            const QByteArray answer = item.kind == SimRecord::Kind::Poll
                                          ? sensor->answerPoll(target).bytes
                                          : sensor->answerRequest(item.bytes).bytes;
            pty.write(answer);
            while (!answer.isEmpty() && link.port()->bytesAvailable() < answer.size() &&
                   link.port()->waitForReadyRead(1000)) {
            }
        }
    }

    SimRequestParser m_parser;
    QStringList m_sent;
};
