#pragma once

#include "sim/SimBootLoader.h"
#include "tests/update/VirtualTime.h"
#include "update/class_ymodem.h"

#include <QSignalSpy>

#include <algorithm>
#include <climits>

/// A sender whose every signal is noted, on virtual time. The test plays the receiver, or the bench's boot
/// loader does.
class SenderBench
{
public:
    explicit SenderBench(const QByteArray &image, SimBootLoader *loader = nullptr,
                         const QString &name = QStringLiteral("a.bin"))
        : sender(name, image)
    {
        QObject::connect(&sender, &class_ymodem::si_write, &sender, [this, loader](const QByteArray &pack) {
            writes.append(pack);
            writesAtMs.append(VirtualTime::current().nowMs() - m_madeAtMs);
            if (loader != nullptr)
                deliver(pack.left(bytesUntilCut), *loader);
            bytesUntilCut = std::max(0, bytesUntilCut - pack.size());
            sender.sl_writeSuccess();
        });
        QObject::connect(&sender, &class_ymodem::si_read, &sender, [this, loader](uint16_t len) {
            readLengths.append(len);
            if (loader != nullptr)
                sender.sl_received1(bytesUntilCut == 0 ? silence
                                    : isSerial         ? loader->takeDue(now())
                                                       : QByteArray(1, loader->readByte(now())));
        });
        QObject::connect(&sender, &class_ymodem::si_setProgress, &sender,
                         [this](uint8_t percent) { progress.append(percent); });
        if (loader != nullptr)
            loader->enter(now());
    }

    /// Brings the sender, without waiting, to where it awaits the answer to its header.
    void sendHeader()
    {
        sender.update_start();
        receive({"C"});
    }

    void receive(const QList<QByteArray> &reads)
    {
        for (const QByteArray &bytes : reads)
            sender.sl_received1(bytes);
    }

    void miss(int times)
    {
        for (int i = 0; i < times; ++i)
            sender.sl_received1(QByteArray(1, '\0'));
        VirtualTime::current().advance(10);
    }

    /// Runs until the sender has ended in one of three ways; false when it never does.
    bool runToEnd()
    {
        sender.update_start();
        return VirtualTime::current().stepUntil(
            [this] { return successes.count() + timeouts.count() + cancels.count() > 0; });
    }

    class_ymodem sender;
    bool isSerial = false;       ///< a read takes all that is due instead of one byte
    int bytesUntilCut = INT_MAX; ///< that still reach the boot loader; nothing comes back then
    QByteArray silence;          ///< what is read from a cut link
    QSignalSpy successes{&sender, &class_ymodem::si_updateSuccess};
    QSignalSpy timeouts{&sender, &class_ymodem::si_updateTimeout};
    QSignalSpy cancels{&sender, &class_ymodem::si_updateCancel};
    QList<QByteArray> writes;
    QList<qint64> writesAtMs;
    QList<int> readLengths;
    QList<int> progress;

private:
    void deliver(const QByteArray &bytes, SimBootLoader &loader) const
    {
        if (isSerial)
            loader.receiveStream(bytes, now());
        else if (!bytes.isEmpty() && loader.isActive(now()))
            loader.receiveMessage(bytes, now());
    }
    static SimTime now() { return SimTime(std::chrono::milliseconds(VirtualTime::current().nowMs())); }

    const qint64 m_madeAtMs = VirtualTime::current().nowMs();
};
