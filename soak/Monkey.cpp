#include "soak/Monkey.h"

#include "monitor/tactViewForm.h"
#include "panel/fingerForm.h"

#include <QtTest>
#include <QtWidgets>

namespace {

constexpr int kStepsOfPlay = 300; // on average
constexpr int kStepsOfRest = 800;
constexpr int kStepsOfHabit = 20; ///< while it rests
constexpr int kPatience = 5;

} // namespace

template<typename Child>
Child *Monkey::child(const char *name) const
{
    return m_window->findChild<Child *>(QString::fromLatin1(name));
}

Monkey::Monkey(QWidget *window, Chance &chance, const MonkeyHabits &habits)
    : QObject(window)
    , m_window(window)
    , m_size(window->size())
    , m_chance(chance)
    , m_habits(habits)
{
    child<tactViewForm>()->setProcessStarter([](const QString & /*program*/) { return true; });
    // The samples do not leave this machine, and no other program is started.
    child<QLineEdit>("leServiceAddr")->setText(QStringLiteral("127.0.0.1"));
    child<QLineEdit>("leServiceAddr")->setReadOnly(true);
    child<QSpinBox>("spbServicePort")->setValue(habits.plotPort);
    child<QWidget>("spbServicePort")->setEnabled(false);
    child<QWidget>("cbbTcpDataFormat")->setEnabled(false);
    child<QWidget>("pbtnOpenSaveDir")->setEnabled(false);
    // The list of a box and its picture stay once it has been open.
    const auto boxes = window->findChildren<QComboBox *>();
    for (QComboBox *box : boxes) {
        box->showPopup();
        box->hidePopup();
    }
    connect(&m_timer, &QTimer::timeout, this, &Monkey::step);
    setRestless(true);
    m_timer.start(kStep);
}

void Monkey::step()
{
    m_rest = std::max(0, m_rest - 1);
    QWidget *top = QApplication::activePopupWidget();
    if (top == nullptr)
        top = QApplication::activeModalWidget();
    if (!m_restless) {
        if (top != nullptr)
            top->close();
    } else if (auto *dialog = qobject_cast<QFileDialog *>(top)) {
        answer(dialog);
    } else if (m_rest == 0) {
        play(top == nullptr ? m_window : top);
    } else if (top == nullptr && m_rest % kStepsOfHabit == 0) {
        queue(m_window, [this](QWindow *) { followHabits(); });
    }
}

// A file dialog can delete files, so it gets an answer and nothing else.
void Monkey::answer(QFileDialog *dialog)
{
    const bool accept = m_chance.oneIn(2);
    note(accept ? "choose a file" : "choose no file");
    dialog->selectFile(m_habits.image);
    QMetaObject::invokeMethod(dialog, accept ? "accept" : "reject", Qt::QueuedConnection);
}

void Monkey::play(QWidget *top)
{
    // It plays for some seconds and then looks on: samples need the bus, too.
    if (top == m_window && m_chance.oneIn(kStepsOfPlay))
        m_rest = m_chance.draw(2 * kStepsOfRest);
    const int what = m_chance.draw(100);
    if (what < 50)
        press(top);
    else if (what < 60)
        wheel(top);
    else if (what < 82)
        type(top);
    else if (what < 83)
        m_window->resize(m_chance.draw(1600), m_chance.draw(1000));
    else if (top == m_window)
        queue(m_window, [this](QWindow *) { followHabits(); });
}

// Nothing would last if these were pressed as often as the rest.
bool Monkey::isSpared(const QWidget *widget) const
{
    static const QStringList names =
        QStringLiteral("cbbSensorInf,cbbLanguage,pbtnCh341Connect,pbtnServiceConnect,chkbtnSave")
            .split(QLatin1Char(','));
    const bool isMainTabs =
        qobject_cast<const QTabBar *>(widget) && widget->parentWidget()->parentWidget() == m_window;
    return (isMainTabs || names.contains(widget->objectName())) && !m_chance.oneIn(30);
}

// A widget of the window; sets a spot on it.
QWidget *Monkey::aim(const char *verb, QWidget *top)
{
    QWidgetList targets;
    const bool idle = m_chance.oneIn(5);
    const auto widgets = top->findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        if (widget->window() == top && (idle || widget->focusPolicy() != Qt::NoFocus) &&
            !widget->visibleRegion().isEmpty() && !isSpared(widget))
            targets.append(widget);
    }
    QWidget *widget = targets.isEmpty() ? top : m_chance.oneOf(targets);
    m_spot = widget->mapTo(top, QPoint(m_chance.draw(widget->width()), m_chance.draw(widget->height())));
    note(QByteArray(verb) + ' ' + widget->metaObject()->className() + ' ' + widget->objectName().toUtf8());
    return widget;
}

// Not at once: what opens a box comes back only when the box is gone.
template<typename Action>
void Monkey::queue(QWidget *top, Action action)
{
    QWindow *window = top->windowHandle();
    QMetaObject::invokeMethod(
        window, [=] { action(window); }, Qt::QueuedConnection);
}

void Monkey::press(QWidget *top)
{
    aim("press", top);
    const Qt::MouseButton button = m_chance.oneIn(20) ? Qt::RightButton : Qt::LeftButton;
    queue(top, [=, spot = m_spot, global = top->mapToGlobal(m_spot)](QWindow *window) {
        const auto now = static_cast<int>(QDateTime::currentMSecsSinceEpoch() & INT_MAX);
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            const Qt::MouseButtons held = type == QEvent::MouseButtonPress ? button : Qt::NoButton;
            qt_handleMouseEvent(window, spot, global, held, button, type, Qt::NoModifier, now);
        }
    });
}

void Monkey::wheel(QWidget *top)
{
    QWidget *widget = aim("wheel", top);
    const QPoint turn(0, m_chance.oneIn(2) ? 120 : -120);
    QCoreApplication::postEvent(
        widget, new QWheelEvent(widget->mapFrom(top, m_spot), top->mapToGlobal(m_spot), QPoint(), turn,
                                Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false));
}

void Monkey::type(QWidget *top)
{
    static const std::array keys{Qt::Key_Tab,       Qt::Key_Backtab, Qt::Key_Return, Qt::Key_Escape,
                                 Qt::Key_Up,        Qt::Key_Down,    Qt::Key_Right,  Qt::Key_F4,
                                 Qt::Key_Backspace, Qt::Key_Home,    Qt::Key_Delete, Qt::Key_PageUp};
    static const std::array texts{" ", "0", "-7", "99999999", "0x61", "1e-9", "AA 55 60", "触觉,"};
    const int key = m_chance.oneOf(keys);
    const auto modifiers = m_chance.oneIn(4) ? Qt::ControlModifier : Qt::NoModifier;
    const QString text = m_chance.oneIn(3) ? QString::fromUtf8(m_chance.oneOf(texts)) : QString();
    note("type " + text.toUtf8() + ' ' + QByteArray::number(key, 16) + (modifiers != 0 ? " with Ctrl" : ""));
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

void Monkey::followHabits()
{
    auto *tabs = child<QTabWidget>("tabWidget");
    auto *link = child<QAbstractButton>("pbtnCh341Connect");
    auto *plot = child<QAbstractButton>("pbtnServiceConnect");
    auto *interfaces = child<QComboBox>("cbbSensorInf");
    if (tabs->currentIndex() != 0) {
        if (m_chance.oneIn(10))
            tabs->setCurrentIndex(0);
    } else if (interfaces->currentIndex() != m_habits.interface) {
        interfaces->setCurrentIndex(m_habits.interface);
    } else if (link->text() == QObject::tr("连接") && child<QComboBox>("cbbCh341List")->count() > 0) {
        m_rest = std::max(m_rest, 100 + m_chance.draw(200));
        if (++m_connects % kPatience == 0) {
            // A CH347 that was away when the tab was entered is listed when it is entered again.
            tabs->setCurrentIndex(1);
            return;
        }
        note("connect");
        link->click();
    } else if (plot->text() == QObject::tr("连接") && m_chance.oneIn(20)) {
        plot->click();
    } else {
        openPanel();
    }
}

void Monkey::openPanel()
{
    auto *tree = child<QTreeWidget>();
    const auto sensors = tree->findItems(QStringLiteral("/0x"), Qt::MatchContains | Qt::MatchRecursive);
    if (sensors.isEmpty())
        return;
    note("open a panel");
    Q_EMIT tree->itemClicked(m_chance.oneOf(sensors), 0);
    const QMdiSubWindow *active = child<QMdiArea>()->activeSubWindow();
    const auto *panel = active != nullptr ? active->findChild<fingerForm *>() : nullptr;
    if (panel == nullptr)
        return;
    panel->findChild<QCheckBox *>(QStringLiteral("chkbtnSave"))->setChecked(true);
    auto *pages = panel->findChild<QTabWidget *>();
    pages->setCurrentIndex(m_chance.draw(pages->count()));
}

void Monkey::tidyUp()
{
    // The picture of a larger window is larger.
    m_window->resize(m_size);
    child<QTabWidget>("tabWidget")->setCurrentIndex(0);
    child<QAbstractButton>("pbtnDebugLogClear")->click();
    for (const char *name : {"pbtnCh341Connect", "pbtnServiceConnect"}) {
        auto *button = child<QAbstractButton>(name);
        if (button->text() == QObject::tr("断开"))
            button->click();
    }
}

void Monkey::setRestless(bool restless)
{
    m_restless = restless;
    m_rest = kStepsOfRest; // samples first
}

void Monkey::note(const QByteArray &line) const
{
    qInfo("%s", line.constData());
}
