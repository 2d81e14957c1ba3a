#pragma once

#include "sim/SimCh341.h"
#include "sim/SimCh347.h"
#include "sim/SimSerialBus.h"
#include "sim/SimUsb.h"

#include <QWidget>
#include <QtTest>

#include <optional>

/// The child of that object name; the test ends when there is none.
template<typename Child>
Child *child(const QWidget &form, const char *name)
{
    auto *found = form.findChild<Child *>(QString::fromLatin1(name));
    if (found == nullptr)
        qFatal("no %s of the expected kind", name);
    return found;
}

/// One serial line, or one bridge of either kind at the machine with a bus behind it.
struct LinkBench
{
    enum class Kind { Serial, Ch341, Ch347 };
    using Sensor = std::shared_ptr<SimSensor>;
    static constexpr uint8_t kFingertip = 28;
    /// Channels of the multiplexer that the first two boards are on.
    static constexpr int kBoard1 = 4;
    static constexpr int kBoard2 = 5;

    explicit LinkBench(Kind link, SimI2cBus::Multiplexer multiplexer = SimI2cBus::Multiplexer::Present)
        : kind(link)
        , bus(std::make_shared<SimI2cBus>(multiplexer))
    {
        if (kind == Kind::Serial)
            line.emplace();
        else if (kind == Kind::Ch341)
            bridge = std::make_shared<SimCh341>(bus, 5, 2);
        else
            bridge = std::make_shared<SimCh347>(bus, 7001);
        if (bridge)
            usb.plug(bridge);
    }

    QString id() const
    {
        if (line)
            return line->portName();
        return QLatin1String(kind == Kind::Ch341 ? "5002" : "7001");
    }
    /// As log lines have it.
    QString name() const { return QLatin1String(line ? "uart" : kind == Kind::Ch341 ? "ch341" : "ch347"); }

    Sensor plugSensor(uint8_t address, int channel = SimI2cBus::kTrunk, uint8_t prg = kFingertip)
    {
        auto sensor = std::make_shared<SimSensor>(prg, address);
        plug(sensor, channel);
        return sensor;
    }
    void plug(const Sensor &sensor, int channel) { line ? line->plug(sensor) : bus->plug(sensor, channel); }
    void unplug(const Sensor &sensor) { line ? line->unplug(sensor) : bus->unplug(sensor); }

    /// Pulls the cable, that of a bridge in the middle of a transfer.
    void pull() { line ? line->removePort() : bridge->pullOutAfter(7); }
    void restore() { line ? line->restorePort() : usb.plug(bridge); }

    /// Bytes in hex that were written to the address, one entry a transfer; a serial line knows address 0
    /// only.
    QStringList writesTo(uint8_t address)
    {
        QStringList writes;
        for (const SimRecord &record : journal().records()) {
            const bool isWrite =
                record.kind == SimRecord::Kind::Request || record.kind == SimRecord::Kind::Write;
            if (isWrite && record.address == address)
                writes << QString::fromLatin1(record.bytes.toHex());
        }
        return writes;
    }

    SimJournal &journal() { return line ? line->journal() : bus->journal(); }

    /// Rows "serial", "ch341" and "ch347", or the bridges only.
    static void addRows(bool bridgesOnly = false)
    {
        QTest::addColumn<Kind>("kind");
        if (!bridgesOnly)
            QTest::newRow("serial") << Kind::Serial;
        QTest::newRow("ch341") << Kind::Ch341;
        QTest::newRow("ch347") << Kind::Ch347;
    }

    const Kind kind;
    std::optional<SimSerialBus> line;
    const std::shared_ptr<SimI2cBus> bus;
    std::shared_ptr<SimBridge> bridge;
    SimUsb usb;
};

Q_DECLARE_METATYPE(LinkBench::Kind)
