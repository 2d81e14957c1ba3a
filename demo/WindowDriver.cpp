#include "demo/WindowDriver.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPixmap>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QTreeWidget>

#include <cstdio>

using namespace std::chrono_literals;

namespace {

constexpr auto kListTimeout = 5s;
constexpr auto kConnectTimeout = 5s;

QString fileName(QString text)
{
    for (QChar &c : text) {
        if (!c.isLetterOrNumber() && c != QLatin1Char('-'))
            c = QLatin1Char('_');
    }
    return text;
}

} // namespace

void print(const QString &line)
{
    std::printf("%s\n", qUtf8Printable(line));
    std::fflush(stdout);
}

WindowDriver::WindowDriver(const QString &pictureFolder)
    : m_folder(pictureFolder)
{}

bool WindowDriver::findWindow()
{
    const QWidgetList topLevel = QApplication::topLevelWidgets();
    for (QWidget *widget : topLevel) {
        if (widget->inherits("Widget"))
            m_window = widget;
    }
    if (m_window == nullptr)
        fail(QStringLiteral("the main window did not open"));
    return m_window != nullptr;
}

void WindowDriver::showTab(const QWidget *form)
{
    auto *tabs = m_window->findChild<QTabWidget *>(QStringLiteral("tabWidget"), Qt::FindDirectChildrenOnly);
    for (int tab = 0; tab < tabs->count(); ++tab) {
        if (tabs->widget(tab)->isAncestorOf(form))
            tabs->setCurrentIndex(tab);
    }
}

bool WindowDriver::connectLink(const TourStop &stop)
{
    auto *devices = child<QComboBox>("cbbCh341List");
    auto *button = child<QPushButton>("pbtnCh341Connect");
    child<QComboBox>("cbbSensorInf")->setCurrentText(stop.interfaceName);
    if (!waitUntil(QStringLiteral("device %1 in the list").arg(stop.device), kListTimeout,
                   [&] { return devices->findText(stop.device) >= 0; }))
        return false;
    devices->setCurrentText(stop.device);
    button->click();
    return waitUntil(QStringLiteral("%1 connected").arg(stop.interfaceName), kConnectTimeout,
                     [&] { return button->text() == QObject::tr("断开"); });
}

void WindowDriver::disconnectLink()
{
    child<QPushButton>("pbtnCh341Connect")->click();
    waitUntil(QStringLiteral("tree empty after disconnecting"), kConnectTimeout,
              [this] { return sensorsInTree() == 0; });
}

int WindowDriver::sensorsInTree() const
{
    const auto *tree = m_window->findChild<QTreeWidget *>();
    int count = 0;
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        count += tree->topLevelItem(i)->childCount();
    return count;
}

bool WindowDriver::treeShows(const QString &text) const
{
    const auto *tree = m_window->findChild<QTreeWidget *>();
    return !tree->findItems(text, Qt::MatchContains | Qt::MatchRecursive).isEmpty();
}

void WindowDriver::picture(const QString &name)
{
    const QString file = nextPicture(name);
    if (!m_window->grab().save(file))
        fail(QStringLiteral("picture %1 could not be written").arg(file));
}

QString WindowDriver::nextPicture(const QString &name)
{
    return QStringLiteral("%1/%2-%3.png")
        .arg(m_folder)
        .arg(m_pictureCount++, 2, 10, QLatin1Char('0'))
        .arg(fileName(name));
}

bool WindowDriver::waitUntil(const QString &what, std::chrono::milliseconds timeout,
                             const std::function<bool()> &condition)
{
    const bool held = holdsWithin(timeout, condition);
    if (!held)
        fail(QStringLiteral("%1: not within %2 ms").arg(what).arg(timeout.count()));
    return held;
}

bool WindowDriver::holdsWithin(std::chrono::milliseconds timeout, const std::function<bool()> &condition)
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (!condition()) {
        if (elapsed.hasExpired(timeout.count()))
            return false;
        letRun(20ms);
    }
    return true;
}

void WindowDriver::letRun(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}
