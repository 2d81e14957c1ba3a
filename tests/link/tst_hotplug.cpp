// Bridges that come and go on a thread of the library, in the middle of transfers and of the links' own life.

#include "link/class_ch341.h"
#include "link/class_ch347.h"
#include "tests/link/fake_vendor.h"
#include "tests/support/log_capture.h"

#include <QtTest>

#include <atomic>
#include <thread>

namespace {

/// A thread that lets bridges come and go a few hundred times, as fast as a queue can follow.
class HotplugThread
{
public:
    explicit HotplugThread(void (*routine)(uint32_t) = [](uint32_t status) { vendor().notify(status); })
        : m_thread([this, routine] { run(routine); })
    {}

    ~HotplugThread() { m_thread.join(); }

    bool isDone() const { return m_done; }

private:
    void run(void (*routine)(uint32_t))
    {
        const std::vector<std::vector<int>> plugged = {{1002}, {1001, 1002}, {}};
        for (size_t round = 0; round < 600; ++round) {
            const std::vector<int> &ids = plugged[round % plugged.size()];
            vendor().setIds(ids);
            routine(ids.empty() ? 0 : 3);
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
        m_done = true;
    }

    std::atomic<bool> m_done{false};
    std::thread m_thread;
};

} // namespace

class tst_hotplug : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        qRegisterMetaType<QVector<uint16_t>>("QVector<uint16_t>");
        vendor().reset();
    }

    void workIsDoneOnOwnersThread()
    {
        vendor().setIds({1002});
        class_ch341 link;
        link.scan();
        QVERIFY(link.open(1002));
        QThread *emittedOn = nullptr;
        connect(
            &link, &class_ch341::si_updateList, &link, [&] { emittedOn = QThread::currentThread(); },
            Qt::DirectConnection);
        std::thread library([] {
            vendor().setIds({});
            vendor().notify(0);
            vendor().setIds({1002});
            vendor().notify(3);
        });
        library.join();
        // The routine has returned, and nothing has happened behind the owner's back.
        QVERIFY(emittedOn == nullptr);
        QVERIFY(link.isOpen());
        // That it is back by now does not bring the link to life.
        QTRY_VERIFY(!link.isOpen());
        QCOMPARE(emittedOn, QThread::currentThread());

        // An open one is not taken to an index that is another one's, or nobody's, by now.
        QVERIFY(link.open(1002));
        std::thread hurried([] {
            vendor().setIds({1001, 1002});
            vendor().notify(3);
            vendor().setIds({1002});
            vendor().notify(0);
        });
        hurried.join();
        vendor().takeCalls();
        QCoreApplication::processEvents();
        QCOMPARE(vendor().takeCalls(), QString());
        QVERIFY(link.isOpen());
    }

    void transfersMeetRemovals()
    {
        LogCapture log; // keeps thousands of lines out of the report
        class_ch341 link;
        QSignalSpy connected(&link, &class_ch341::si_connected);
        QSignalSpy disconnected(&link, &class_ch341::si_disconnected);
        const HotplugThread library;
        uint8_t frame[189];
        while (!library.isDone()) {
            if (!link.isOpen())
                link.open(1002);
            link.read(0x61, frame, sizeof frame);
            link.write(0x61, frame, 11);
            QCoreApplication::processEvents();
            QVERIFY(connected.size() - disconnected.size() == (link.isOpen() ? 1 : 0));
        }
        QVERIFY(!connected.isEmpty());

        vendor().setIds({1001, 1002});
        vendor().notify(3);
        QVERIFY(link.isOpen() || link.open(1002));
        vendor().takeCalls();
        QCOMPARE(link.read(0x61, frame, 1), uint16_t{1});
        QCOMPARE(vendor().takeCalls(), QLatin1String("read 1 63x1 AA7481C34F4FC07500"));
    }

    void instancesComeAndGo()
    {
        LogCapture log;
        const HotplugThread library;
        int lives = 0;
        while (!library.isDone()) {
            std::unique_ptr<QThread> owner(QThread::create([] {
                class_ch341 link;
                for (int i = 0; i < 5; ++i)
                    QCoreApplication::sendPostedEvents(&link);
            }));
            owner->start();
            QVERIFY(owner->wait(20000));
            ++lives;
        }
        QVERIFY(lives > 0);
    }

    void ch347Routine()
    {
        LogCapture log;
        class_ch347 link;
        QSignalSpy lists(&link, &class_ch347::si_updateList);
        const HotplugThread library(&class_ch347::CH347_NOTIFY_ROUTINE);
        QTRY_VERIFY(lists.size() >= 3);
    }
};

QTEST_GUILESS_MAIN(tst_hotplug)
#include "tst_hotplug.moc"
