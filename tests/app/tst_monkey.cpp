#include "app/class_settings.h"
#include "app/qmain.h"
#include "monitor/tactViewForm.h"
#include "sim/SimBench.h"
#include "sim/moving_finger.h"

#include <QDesktopServices>
#include <QTemporaryDir>
#include <QtTest>
#include <QtWidgets>

#include <atomic>
#include <csignal>
#include <deque>
#include <mutex>
#include <random>
#include <thread>

// A monkey at the whole tool: it presses, types, turns the wheel, plugs and pulls, as fast as the window follows. What it
// does depends on the seed and on what the window shows. MONKEY_SEED repeats a run, MONKEY_SECONDS says how long it lasts,
// MONKEY_TRACE prints every step.

#ifdef __SANITIZE_ADDRESS__
extern "C" void __sanitizer_set_death_callback(void (*callback)());
#endif

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kStep{10};
constexpr int kDefaultSeconds = 60;
constexpr std::size_t kLinesKept = 150;
/// Far more than any form keeps its window waiting.
constexpr std::chrono::seconds kPatience{60};

std::mutex diaryMutex;
std::deque<QByteArray> diary;  ///< the last steps, and what was logged between them
std::atomic<Clock::rep> alive; ///< time of the last step

void note(const QByteArray &line)
{
    static const bool trace = qEnvironmentVariableIsSet("MONKEY_TRACE");
    if (trace)
        std::fprintf(stderr, "  %s\n", line.constData());
    const std::lock_guard lock(diaryMutex);
    diary.push_back(line);
    if (diary.size() > kLinesKept)
        diary.pop_front();
}

/// Also on the way to a crash, whose thread may hold the lock.
void printDiary()
{
    const std::unique_lock lock(diaryMutex, std::try_to_lock);
    for (const QByteArray &line : diary)
        std::fprintf(stderr, "  %s\n", line.constData());
}

void printAndDie(int signal)
{
    printDiary();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void handleMessage(QtMsgType type, const QMessageLogContext & /*context*/, const QString &message)
{
    note("    " + message.toUtf8());
    // What the offscreen platform cannot do, and what a chosen firmware file may deserve.
    static const QRegularExpression harmless(
        QStringLiteral("^This plugin does not support |^Checksum error |^Unsupported record "));
    if (type != QtDebugMsg && type != QtInfoMsg && !harmless.match(message).hasMatch())
        std::abort();
}

/// What outlives the window: chance, the machine and what hangs on it.
struct World
{
    /// 0 to limit - 1.
    int draw(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }
    template<typename List>
    auto &oneOf(List &list)
    {
        return *std::next(std::begin(list), draw(static_cast<int>(std::size(list))));
    }

    void plugOrPull()
    {
        const std::array<std::shared_ptr<SimUsbDevice>, 3> devices{bench.ch341(), bench.ch347(), stranger};
        const auto what = static_cast<std::size_t>(draw(20));
        if (what < devices.size()) {
            const auto &device = devices.at(what);
            const bool pull = device->isPlugged();
            note((pull ? "pull " : "plug ") + device->path());
            pull ? bench.usb().unplug(device) : bench.usb().plug(device, draw(2) - 1);
        } else if (what == devices.size()) {
            const bool away = bench.serialBus().portName().isEmpty();
            note(away ? "restore the port" : "remove the port");
            away ? bench.serialBus().restorePort() : bench.serialBus().removePort();
        } else if (guests.empty() || (guests.size() < 6 && draw(2) == 0)) {
            plugSensor();
        } else {
            note("pull a sensor");
            std::swap(oneOf(guests), guests.back());
            guests.back().pull();
            guests.pop_back();
        }
    }
    void plugSensor()
    {
        // Half of them are of models that nobody knows.
        const int model = draw(2) == 0 ? 0x80 + draw(0x80) : oneOf(finger_infos).prg;
        const int line = draw(3);
        note(QStringLiteral("plug model %1 into line %2").arg(model).arg(line).toUtf8());
        const auto sensor =
            std::make_shared<SimSensor>(static_cast<uint8_t>(model), static_cast<uint8_t>(0x60 + draw(0x10)));
        sensor->setMotion(movingFinger(draw(10)));
        if (line == 0) {
            bench.serialBus().plug(sensor);
            guests.push_back({sensor, [this, sensor] { bench.serialBus().unplug(sensor); }});
        } else {
            SimI2cBus &bus = line == 1 ? bench.ch341()->bus() : bench.ch347()->bus();
            bus.plug(sensor, draw(8));
            guests.push_back({sensor, [&bus, sensor] { bus.unplug(sensor); }});
        }
    }
    void disturb()
    {
        const int times = draw(30);
        SimBridge &bridge = draw(2) == 0 ? static_cast<SimBridge &>(*bench.ch341()) : *bench.ch347();
        const auto sensor = guests.empty() ? std::make_shared<SimSensor>(1, 1) : oneOf(guests).sensor;
        const auto fault = static_cast<SimFault>(draw(kSimFaultCount));
        const std::array<std::function<void()>, 7> ways{
            [&] { bridge.failTransfers(times, draw(50)); },
            [&] { bridge.shortenReads(times); },
            [&] { bridge.pullOutAfter(1 + times * 10); },
            [&] { bridge.bus().setMultiplexerDead(times < 3); },
            [&] { sensor->powerCycle(); },
            [&] { sensor->faults().schedule(fault, SimTarget::answers(), times); },
            [&] { sensor->faults().schedule(fault, SimTarget::samples(), times); },
        };
        const int way = draw(static_cast<int>(ways.size()));
        note(QStringLiteral("disturb in way %1, %2 times").arg(way).arg(times).toUtf8());
        ways.at(static_cast<std::size_t>(way))();
    }

    struct Guest
    {
        std::shared_ptr<SimSensor> sensor;
        std::function<void()> pull;
    };

    std::mt19937 random;
    Clock::time_point end;
    QString image; ///< a firmware file
    SimBench bench;
    std::shared_ptr<SimUsbDevice> stranger = bench.usb().plugStranger(9, 9);
    std::vector<Guest> guests;
};

World *world = nullptr;

/// Acts on one window, through the queue of the window system, so that boxes and lists that are open have their say.
class Monkey : public QObject
{
public:
    explicit Monkey(QWidget *window)
        : QObject(window)
        , m_window(window)
    {
        child<tactViewForm>("wgTactView")->setProcessStarter([](const QString & /*program*/) {
            note("start again");
            return true;
        });
        // Whatever was typed, the samples do not leave this machine.
        auto *address = child<QLineEdit>("leServiceAddr");
        connect(child<QAbstractButton>("pbtnServiceConnect"), &QAbstractButton::pressed, address, [address] {
            if (!address->text().startsWith(QLatin1String("127.")))
                address->setText(QStringLiteral("127.0.0.1"));
        });
        connect(&m_timer, &QTimer::timeout, this, &Monkey::step);
        m_timer.start(kStep);
    }

private:
    template<typename Child>
    Child *child(const char *name) const
    {
        return m_window->findChild<Child *>(QLatin1String(name));
    }

    void step()
    {
        alive = Clock::now().time_since_epoch().count();
        if (Clock::now() > world->end)
            return QCoreApplication::exit();
        m_rest = std::max(0, m_rest - 1);
        QWidget *top = QApplication::activePopupWidget();
        if (top == nullptr)
            top = QApplication::activeModalWidget();
        if (auto *dialog = qobject_cast<QFileDialog *>(top))
            return answer(dialog);
        if (m_rest == 0)
            act(top == nullptr ? m_window : top);
    }
    void act(QWidget *top)
    {
        const int what = world->draw(200);
        if (what < 100)
            press(top);
        else if (what < 130)
            wheel(top);
        else if (what < 155)
            type(top);
        else if (what < 180)
            key(top);
        else if (what < 186)
            world->plugOrPull();
        else if (what < 188)
            world->disturb();
        else if (what < 189)
            m_window->resize(world->draw(1600), world->draw(1000));
        else
            seekSensors();
    }

    /// A file dialog can delete files, so it gets an answer and nothing else.
    void answer(QFileDialog *dialog)
    {
        const bool accept = world->draw(2) == 0;
        note(accept ? "choose a file" : "choose no file");
        dialog->selectFile(world->image);
        QMetaObject::invokeMethod(dialog, accept ? "accept" : "reject", Qt::QueuedConnection);
    }
    /// What changes everything is left alone most of the time, or nothing would ever last.
    bool isUpheaval(const QWidget *widget) const
    {
        static const QStringList names{QStringLiteral("cbbSensorInf"), QStringLiteral("cbbLanguage"),
                                       QStringLiteral("pbtnCh341Connect")};
        return names.contains(widget->objectName()) ||
               (qobject_cast<const QTabBar *>(widget) && widget->parentWidget()->parentWidget() == m_window);
    }
    QWidget *target(QWidget *top)
    {
        QWidgetList targets;
        const bool idle = world->draw(5) == 0;
        for (QWidget *widget : top->findChildren<QWidget *>()) {
            if (widget->window() == top && (idle || widget->focusPolicy() != Qt::NoFocus) &&
                !widget->visibleRegion().isEmpty() && (!isUpheaval(widget) || world->draw(30) == 0))
                targets.append(widget);
        }
        QWidget *widget = targets.isEmpty() ? top : world->oneOf(targets);
        m_spot = widget->mapTo(top, QPoint(world->draw(widget->width()), world->draw(widget->height())));
        note(m_verb + ' ' + widget->metaObject()->className() + ' ' + widget->objectName().toUtf8());
        return widget;
    }
    /// Not at once: what opens a box comes back only when the box is gone.
    template<typename Action>
    void queue(QWidget *top, Action action)
    {
        QWindow *window = top->windowHandle();
        QMetaObject::invokeMethod(
            window, [=] { action(window); }, Qt::QueuedConnection);
    }
    void mouse(QWidget *top, QEvent::Type type, Qt::MouseButton button)
    {
        const Qt::MouseButtons held = type == QEvent::MouseButtonPress ? button : Qt::NoButton;
        queue(top, [=, spot = m_spot, global = top->mapToGlobal(m_spot)](QWindow *window) {
            const auto now = static_cast<int>(QDateTime::currentMSecsSinceEpoch() & INT_MAX);
            qt_handleMouseEvent(window, spot, global, held, button, type, Qt::NoModifier, now);
        });
    }
    void press(QWidget *top)
    {
        const Qt::MouseButton button = world->draw(20) == 0 ? Qt::RightButton : Qt::LeftButton;
        m_verb = "press";
        target(top);
        mouse(top, QEvent::MouseButtonPress, button);
        if (world->draw(20) == 0) {
            m_verb = "drop on";
            target(top);
        }
        mouse(top, QEvent::MouseButtonRelease, button);
    }
    void wheel(QWidget *top)
    {
        m_verb = "wheel";
        QWidget *widget = target(top);
        const QPoint turn(0, world->draw(2) == 0 ? 120 : -120);
        QCoreApplication::postEvent(
            widget, new QWheelEvent(widget->mapFrom(top, m_spot), top->mapToGlobal(m_spot), QPoint(), turn,
                                    Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false));
    }
    void send(QWidget *top, int code, Qt::KeyboardModifiers modifiers, const QString &text)
    {
        queue(top, [=](QWindow *window) {
            qt_handleKeyEvent(window, QEvent::KeyPress, code, modifiers, text);
            qt_handleKeyEvent(window, QEvent::KeyRelease, code, modifiers, text);
        });
    }
    void type(QWidget *top)
    {
        const QStringList texts{QStringLiteral("127.0.0.1"), QStringLiteral("0"),     QStringLiteral("-7"),
                                QStringLiteral("99999999"),  QStringLiteral("0x61"),  QStringLiteral("1e-9"),
                                QStringLiteral("AA 55 60"),  QStringLiteral("触觉,"), world->image};
        const QString &text = world->oneOf(texts);
        note("type " + text.toUtf8());
        for (const QChar letter : text)
            send(top, letter.toUpper().unicode(), Qt::NoModifier, letter);
    }
    void key(QWidget *top)
    {
        static const std::vector<int> keys{Qt::Key_Tab,    Qt::Key_Backtab, Qt::Key_Space, Qt::Key_Return,
                                           Qt::Key_Escape, Qt::Key_Up,      Qt::Key_Down,  Qt::Key_Left,
                                           Qt::Key_Right,  Qt::Key_PageUp,  Qt::Key_Home,  Qt::Key_Backspace,
                                           Qt::Key_Delete, Qt::Key_F4,      Qt::Key_A,     Qt::Key_PageDown,
                                           Qt::Key_V,      Qt::Key_Menu};
        const int code = world->oneOf(keys);
        const auto modifiers =
            std::array{Qt::NoModifier, Qt::NoModifier, Qt::ControlModifier, Qt::ShiftModifier}.at(
                static_cast<std::size_t>(world->draw(4)));
        note("key " + QByteArray::number(code, 16) + " with " + QByteArray::number(modifiers, 16));
        send(top, code, modifiers, code == Qt::Key_Space ? QStringLiteral(" ") : QString());
    }
    /// Most of what can go wrong needs panels.
    void seekSensors()
    {
        auto *tabs = child<QTabWidget>("tabWidget");
        auto *button = child<QAbstractButton>("pbtnCh341Connect");
        if (tabs->currentIndex() != 0 && world->draw(10) == 0) {
            note("back to the first tab");
            tabs->setCurrentIndex(0);
        } else if (button->isVisible() && button->text() == QObject::tr("连接") &&
                   child<QComboBox>("cbbCh341List")->count() > 0) {
            note("connect");
            button->click();
            m_rest = 100 + world->draw(200);
        }
    }

    QWidget *m_window;
    QTimer m_timer;
    QPoint m_spot;
    QByteArray m_verb;
    int m_rest = 0; ///< steps
};

void letMonkeyIn()
{
    QTimer::singleShot(0, qApp, [] {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->inherits("Widget"))
                new Monkey(widget);
        }
    });
}

void watch(const std::atomic<bool> &over)
{
    while (!over) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        if (Clock::now().time_since_epoch() - Clock::duration(alive) > kPatience)
            qCritical("the window does not answer");
    }
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(letMonkeyIn)

class tst_monkey : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void openFolder(const QUrl &folder) { note("open " + folder.toEncoded()); }

private Q_SLOTS:
    void theToolSurvives()
    {
        bool seeded = false;
        unsigned seed = qEnvironmentVariable("MONKEY_SEED").toUInt(&seeded);
        if (!seeded)
            seed = std::random_device()();
        bool limited = false;
        const int seconds = qEnvironmentVariableIntValue("MONKEY_SECONDS", &limited);
        std::fprintf(stderr, "MONKEY_SEED=%u\n", seed);

        const QTemporaryDir folder;
        for (const char *place : {"XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
            qputenv(place, folder.path().toLocal8Bit());
        QCoreApplication::setApplicationName(QStringLiteral("tst_monkey"));
        QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "openFolder");

        World machine;
        world = &machine;
        machine.random.seed(seed);
        machine.bench.usb().unplug(machine.stranger);
        machine.end = Clock::now() + std::chrono::seconds(limited ? seconds : kDefaultSeconds);
        machine.image = folder.filePath(QStringLiteral("image.bin"));
        QFile image(machine.image);
        QVERIFY(image.open(QIODevice::WriteOnly) && image.write(QByteArray(5000, '\x5A')) == 5000);
        image.close();
        class_settings::set(QStringLiteral("UPDATE/FILE_PATH"), machine.image);

        alive = Clock::now().time_since_epoch().count();
        std::atomic<bool> over{false};
        std::thread watchdog([&over] { watch(over); });
        const QtMessageHandler before = qInstallMessageHandler(handleMessage);
        while (Clock::now() < machine.end) {
            char name[] = "tst_monkey";
            char *arguments[] = {name, nullptr};
            qMain(1, arguments);
        }
        qInstallMessageHandler(before);
        over = true;
        watchdog.join();
    }
};

int main(int argc, char **argv)
{
    std::signal(SIGABRT, printAndDie);
#ifdef __SANITIZE_ADDRESS__
    __sanitizer_set_death_callback(printDiary);
#else
    std::signal(SIGSEGV, printAndDie);
#endif
    // The test library would end a long run after five minutes; the watchdog here looks at the window instead.
    qputenv("QTEST_FUNCTION_TIMEOUT", QByteArray::number(std::numeric_limits<int>::max()));
    tst_monkey test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_monkey.moc"
