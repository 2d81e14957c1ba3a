#include "app/class_settings.h"
#include "app/qmain.h"
#include "monitor/tactViewForm.h"
#include "recording/recording_folder.h"
#include "sim/SimBench.h"
#include "sim/moving_finger.h"

#include <QTemporaryDir>
#include <QtTest>
#include <QtWidgets>

#include <atomic>
#include <random>
#include <thread>

// A monkey at the whole tool: it presses, types, turns the wheel, plugs and pulls, as fast as the window
// follows. What it does depends on MONKEY_SEED, which repeats a run, and on what the window shows.
// MONKEY_SECONDS says how long it lasts.

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kStep{10};
constexpr int kDefaultSeconds = 60;
/// Far more than any form keeps its window waiting.
constexpr std::chrono::seconds kPatience{60};

std::atomic<Clock::rep> alive; ///< time of the last step

void note(const QByteArray &line)
{
    std::fprintf(stderr, "%s\n", line.constData());
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
        const int what = draw(20);
        note("plug or pull " + QByteArray::number(what));
        SimSerialBus &line = bench.serialBus();
        if (what < 2) {
            const auto device = what == 0 ? std::shared_ptr<SimUsbDevice>(bench.ch341()) : bench.ch347();
            device->isPlugged() ? bench.usb().unplug(device) : bench.usb().plug(device);
        } else if (what == 2) {
            line.portName().isEmpty() ? line.restorePort() : line.removePort();
        } else if (guests.size() < 3 || (guests.size() < 6 && draw(2) == 0)) {
            // Half of them are of models that nobody knows.
            const int model = draw(2) == 0 ? 0x80 + draw(0x80) : oneOf(finger_infos).prg;
            const int address = 0x60 + draw(0x10);
            guests.push_back(
                std::make_shared<SimSensor>(static_cast<uint8_t>(model), static_cast<uint8_t>(address)));
            guests.back()->setMotion(movingFinger(draw(10)));
            draw(3) == 0 ? line.plug(guests.back()) : anyBridge().bus().plug(guests.back(), draw(8));
        } else {
            std::swap(oneOf(guests), guests.back());
            line.unplug(guests.back());
            bench.ch341()->bus().unplug(guests.back());
            bench.ch347()->bus().unplug(guests.back());
            guests.pop_back();
        }
    }
    void disturb()
    {
        const int way = draw(6);
        note("disturb in way " + QByteArray::number(way));
        if (way == 0)
            anyBridge().failTransfers(draw(30), draw(50));
        else if (way == 1)
            anyBridge().pullOutAfter(1 + draw(300));
        else if (way == 2)
            anyBridge().bus().setMultiplexerDead(draw(10) == 0);
        else if (!guests.empty())
            oneOf(guests)->faults().schedule(static_cast<SimFault>(draw(kSimFaultCount)),
                                             way == 3 ? SimTarget::samples() : SimTarget::answers(),
                                             draw(30));
    }
    SimBridge &anyBridge()
    {
        return draw(2) == 0 ? static_cast<SimBridge &>(*bench.ch341()) : *bench.ch347();
    }

    std::mt19937 random;
    Clock::time_point end;
    QString image; ///< a firmware file
    SimBench bench;
    std::vector<std::shared_ptr<SimSensor>> guests; ///< sensors besides those of the bench
};

World *world = nullptr;

/// Acts on one window, through the queue of the window system, so that boxes and lists that are open have
/// their say.
class Monkey : public QObject
{
public:
    explicit Monkey(QWidget *window)
        : QObject(window)
        , m_window(window)
    {
        child<tactViewForm>()->setProcessStarter([](const QString & /*program*/) { return true; });
        // The samples do not leave this machine, and no other program is started.
        child<QLineEdit>("leServiceAddr")->setText(QStringLiteral("127.0.0.1"));
        child<QLineEdit>("leServiceAddr")->setReadOnly(true);
        child<QWidget>("pbtnOpenSaveDir")->setEnabled(false);
        connect(&m_timer, &QTimer::timeout, this, &Monkey::step);
        m_timer.start(kStep);
    }
    ~Monkey() override { QDir(recordingFolder()).removeRecursively(); }

private:
    template<typename Child>
    Child *child(const char *name = nullptr) const
    {
        return m_window->findChild<Child *>(QString::fromLatin1(name));
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
            answer(dialog);
        else if (m_rest == 0)
            act(top == nullptr ? m_window : top);
    }
    /// A file dialog can delete files, so it gets an answer and nothing else.
    void answer(QFileDialog *dialog)
    {
        const bool accept = world->draw(2) == 0;
        note(accept ? "choose a file" : "choose no file");
        dialog->selectFile(world->image);
        QMetaObject::invokeMethod(dialog, accept ? "accept" : "reject", Qt::QueuedConnection);
    }
    void act(QWidget *top)
    {
        const int what = world->draw(100);
        if (what < 50)
            press(top);
        else if (what < 60)
            wheel(top);
        else if (what < 82)
            type(top);
        else if (what < 85)
            world->plugOrPull();
        else if (what < 86)
            world->disturb();
        else if (what < 87)
            m_window->resize(world->draw(1600), world->draw(1000));
        else if (top == m_window)
            queue(m_window, [this](QWindow *) { seekSensors(); });
    }

    /// Nothing would last if these were pressed as often as the rest; and the server is not what most can go
    /// wrong with.
    bool isSpared(const QWidget *widget) const
    {
        static const QStringList names =
            QStringLiteral("cbbSensorInf,cbbLanguage,pbtnCh341Connect,leServiceAddr,spbServicePort,"
                           "pbtnServiceConnect")
                .split(QLatin1Char(','));
        const bool isMainTabs =
            qobject_cast<const QTabBar *>(widget) && widget->parentWidget()->parentWidget() == m_window;
        return (isMainTabs || names.contains(widget->objectName())) && world->draw(30) != 0;
    }
    /// A widget of the window and a spot on it.
    QWidget *aim(const char *verb, QWidget *top)
    {
        QWidgetList targets;
        const bool idle = world->draw(5) == 0;
        for (QWidget *widget : top->findChildren<QWidget *>()) {
            if (widget->window() == top && (idle || widget->focusPolicy() != Qt::NoFocus) &&
                !widget->visibleRegion().isEmpty() && !isSpared(widget))
                targets.append(widget);
        }
        QWidget *widget = targets.isEmpty() ? top : world->oneOf(targets);
        m_spot = widget->mapTo(top, QPoint(world->draw(widget->width()), world->draw(widget->height())));
        note(QByteArray(verb) + ' ' + widget->metaObject()->className() + ' ' +
             widget->objectName().toUtf8());
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
    void press(QWidget *top)
    {
        aim("press", top);
        const Qt::MouseButton button = world->draw(20) == 0 ? Qt::RightButton : Qt::LeftButton;
        queue(top, [=, spot = m_spot, global = top->mapToGlobal(m_spot)](QWindow *window) {
            const auto now = static_cast<int>(QDateTime::currentMSecsSinceEpoch() & INT_MAX);
            for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
                const Qt::MouseButtons held = type == QEvent::MouseButtonPress ? button : Qt::NoButton;
                qt_handleMouseEvent(window, spot, global, held, button, type, Qt::NoModifier, now);
            }
        });
    }
    void wheel(QWidget *top)
    {
        QWidget *widget = aim("wheel", top);
        const QPoint turn(0, world->draw(2) == 0 ? 120 : -120);
        QCoreApplication::postEvent(
            widget, new QWheelEvent(widget->mapFrom(top, m_spot), top->mapToGlobal(m_spot), QPoint(), turn,
                                    Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false));
    }
    void type(QWidget *top)
    {
        static const std::array keys{Qt::Key_Tab,       Qt::Key_Backtab, Qt::Key_Return, Qt::Key_Escape,
                                     Qt::Key_Up,        Qt::Key_Down,    Qt::Key_Right,  Qt::Key_F4,
                                     Qt::Key_Backspace, Qt::Key_Home,    Qt::Key_Delete, Qt::Key_PageUp};
        static const std::array texts{" ", "0", "-7", "99999999", "0x61", "1e-9", "AA 55 60", "触觉,"};
        const int key = world->oneOf(keys);
        const auto modifiers = world->draw(4) == 0 ? Qt::ControlModifier : Qt::NoModifier;
        const QString text = world->draw(3) == 0 ? QString::fromUtf8(world->oneOf(texts)) : QString();
        note("type " + text.toUtf8() + ' ' + QByteArray::number(key, 16) +
             (modifiers != 0 ? " with Ctrl" : ""));
        queue(top, [=](QWindow *window) {
            const auto stroke = [window](int code, Qt::KeyboardModifiers held, const QString &letter = {}) {
                for (const auto event : {QEvent::KeyPress, QEvent::KeyRelease})
                    qt_handleKeyEvent(window, event, code, held, letter);
            };
            for (const QChar letter : text)
                stroke(letter.toUpper().unicode(), Qt::NoModifier, letter);
            stroke(key, modifiers);
        });
    }
    /// Most of what can go wrong needs panels.
    void seekSensors()
    {
        auto *tabs = child<QTabWidget>("tabWidget");
        auto *button = child<QAbstractButton>("pbtnCh341Connect");
        auto *tree = child<QTreeWidget>();
        const auto sensors = tree->findItems(QStringLiteral("/0x"), Qt::MatchContains | Qt::MatchRecursive);
        if (tabs->currentIndex() != 0) {
            if (world->draw(10) == 0)
                tabs->setCurrentIndex(0);
        } else if (button->text() == QObject::tr("连接") && child<QComboBox>("cbbCh341List")->count() > 0) {
            note("connect");
            m_rest = 100 + world->draw(200);
            button->click();
        } else if (!sensors.isEmpty()) {
            note("open a panel");
            Q_EMIT tree->itemClicked(world->oneOf(sensors), 0);
            if (const QMdiSubWindow *panel = child<QMdiArea>()->activeSubWindow()) {
                if (auto *pages = panel->findChild<QTabWidget *>())
                    pages->setCurrentIndex(world->draw(pages->count()));
            }
        }
    }

    QWidget *m_window;
    QTimer m_timer;
    QPoint m_spot;
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

} // namespace

Q_COREAPP_STARTUP_FUNCTION(letMonkeyIn)

class tst_monkey : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theToolSurvives()
    {
        bool seeded = false;
        bool limited = false;
        const unsigned given = qEnvironmentVariable("MONKEY_SEED").toUInt(&seeded);
        const unsigned seed = seeded ? given : std::random_device()();
        const int seconds = qEnvironmentVariableIntValue("MONKEY_SECONDS", &limited);
        note("MONKEY_SEED=" + QByteArray::number(seed));

        const QTemporaryDir folder;
        for (const char *place : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
            qputenv(place, folder.path().toLocal8Bit());
        World machine;
        world = &machine;
        machine.random.seed(seed);
        machine.end = Clock::now() + std::chrono::seconds(limited ? seconds : kDefaultSeconds);
        machine.image = folder.filePath(QStringLiteral("image.bin"));
        QFile image(machine.image);
        QVERIFY(image.open(QIODevice::WriteOnly) && image.write(QByteArray(5000, '\x5A')) == 5000);
        image.close();
        class_settings::set(QStringLiteral("UPDATE/FILE_PATH"), machine.image);

        alive = Clock::now().time_since_epoch().count();
        std::thread([] {
            while (Clock::now().time_since_epoch() - Clock::duration(alive) < kPatience)
                std::this_thread::sleep_for(kStep);
            qCritical("the window does not answer");
        }).detach();
        const QtMessageHandler before = qInstallMessageHandler(handleMessage);
        while (Clock::now() < machine.end) {
            char name[] = "tst_monkey";
            char *arguments[] = {name, nullptr};
            qMain(1, arguments);
        }
        qInstallMessageHandler(before);
    }
};

int main(int argc, char **argv)
{
    // The test library would end a long run after five minutes; the thread above looks at the window instead.
    qputenv("QTEST_FUNCTION_TIMEOUT", QByteArray::number(std::numeric_limits<int>::max()));
    tst_monkey test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_monkey.moc"
