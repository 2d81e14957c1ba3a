#include "demo/Tour.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPixmap>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QTreeWidget>

#include <cstdio>

namespace {

constexpr int listTimeoutMs = 5000;
constexpr int connectTimeoutMs = 5000;
constexpr int discoveryTimeoutMs = 60000;
constexpr int discoveryAttempts = 3;
constexpr int ratesTimeoutMs = 10000;
constexpr int settlingMs = 4000;

void print(const QString &line)
{
    std::printf("%s\n", qUtf8Printable(line));
    std::fflush(stdout);
}

QString fileName(QString text)
{
    for (QChar &c : text) {
        if (!c.isLetterOrNumber() && c != QLatin1Char('-'))
            c = QLatin1Char('_');
    }
    return text;
}

} // namespace

Tour::Tour(const QString &folder, const QVector<TourStop> &stops, QObject *parent)
    : QObject(parent)
    , m_folder(folder)
    , m_stops(stops)
{}

void Tour::run()
{
    QDir().mkpath(m_folder);
    if (findWindow()) {
        for (const TourStop &stop : qAsConst(m_stops))
            visit(stop);
        visitServiceTabs();
    }
    for (const QString &failure : qAsConst(m_failures))
        print(QStringLiteral("FAILED: ") + failure);
    print(QStringLiteral("%1 pictures in %2").arg(m_pictureCount).arg(m_folder));
    QCoreApplication::exit(m_failures.isEmpty() ? 0 : 1);
}

bool Tour::findWindow()
{
    const QWidgetList topLevel = QApplication::topLevelWidgets();
    for (QWidget *widget : topLevel) {
        if (widget->inherits("Widget"))
            m_window = widget;
    }
    if (m_window == nullptr)
        m_failures.append(QStringLiteral("the main window did not open"));
    return m_window != nullptr;
}

void Tour::visit(const TourStop &stop)
{
    print(QStringLiteral("%1:").arg(stop.interfaceName));
    if (!findSensors(stop))
        return;
    printSensors(stop);
    walkPanels(stop);
    disconnectLink();
}

// A sensor that answers too late on a busy machine comes up again only after a whole sweep, which takes
// minutes on a serial line. A new worker begins its sweep afresh.
bool Tour::findSensors(const TourStop &stop)
{
    const auto allFound = [this, &stop] { return sensorsInTree() >= stop.sensorCount; };
    for (int attempt = 1; attempt < discoveryAttempts; ++attempt) {
        if (!connectLink(stop))
            return false;
        if (holdsWithin(discoveryTimeoutMs, allFound))
            return true;
        print(QStringLiteral("  %1 of %2 sensors, once more").arg(sensorsInTree()).arg(stop.sensorCount));
        disconnectLink();
        // The list of the worker that goes must not be taken for that of the next one.
        m_window->findChild<QComboBox *>(QStringLiteral("cbbCh341List"))->clear();
        showTab(m_window->findChild<QWidget *>(QStringLiteral("wgDebug")));
        showTab(m_window->findChild<QWidget *>(QStringLiteral("wgTactView")));
    }
    return connectLink(stop) &&
           waitUntil(QStringLiteral("%1 sensors on %2").arg(stop.sensorCount).arg(stop.interfaceName),
                     discoveryTimeoutMs, allFound);
}

bool Tour::connectLink(const TourStop &stop)
{
    auto *interfaces = m_window->findChild<QComboBox *>(QStringLiteral("cbbSensorInf"));
    auto *devices = m_window->findChild<QComboBox *>(QStringLiteral("cbbCh341List"));
    auto *button = m_window->findChild<QPushButton *>(QStringLiteral("pbtnCh341Connect"));
    interfaces->setCurrentText(stop.interfaceName);
    if (!waitUntil(QStringLiteral("device %1 in the list").arg(stop.device), listTimeoutMs,
                   [&] { return devices->findText(stop.device) >= 0; }))
        return false;
    devices->setCurrentText(stop.device);
    button->click();
    return waitUntil(QStringLiteral("%1 connected").arg(stop.interfaceName), connectTimeoutMs,
                     [&] { return button->text() == QObject::tr("断开"); });
}

void Tour::disconnectLink()
{
    m_window->findChild<QPushButton *>(QStringLiteral("pbtnCh341Connect"))->click();
    waitUntil(QStringLiteral("tree empty after disconnecting"), connectTimeoutMs,
              [this] { return sensorsInTree() == 0; });
}

void Tour::printSensors(const TourStop &stop)
{
    // The first seconds go to what the panels ask their sensors.
    letRun(settlingMs);
    const Panels panels = openPanels();
    for (const QPointer<QMdiSubWindow> &panel : panels)
        printRate(panel);
    if (panels.size() != stop.sensorCount)
        m_failures.append(
            QStringLiteral("%1 panels for %2 sensors").arg(panels.size()).arg(stop.sensorCount));
}

void Tour::printRate(const QPointer<QMdiSubWindow> &panel)
{
    const QString title = panel ? panel->windowTitle() : QStringLiteral("a sensor that has gone");
    const auto rate = [&panel] {
        const auto *label = panel ? panel->findChild<QLabel *>(QStringLiteral("lbHz")) : nullptr;
        return label ? label->text() : QString();
    };
    if (waitUntil(QStringLiteral("rates of %1").arg(title), ratesTimeoutMs,
                  [&rate] { return !rate().isEmpty() && !rate().startsWith(QLatin1String("0/")); }))
        print(QStringLiteral("  %1  %2 Hz").arg(title, -24).arg(rate()));
}

void Tour::walkPanels(const TourStop &stop)
{
    for (const QPointer<QMdiSubWindow> &panel : openPanels()) {
        if (!panel)
            continue;
        panel->mdiArea()->setActiveSubWindow(panel);
        walkPages(stop.interfaceName + QLatin1Char('-') + panel->windowTitle(), panel);
    }
}

void Tour::walkPages(const QString &name, const QPointer<QMdiSubWindow> &panel)
{
    const QPointer<QTabWidget> pages(panel->findChild<QTabWidget *>(QStringLiteral("tabWidget")));
    for (int page = 0; pages && page < pages->count(); ++page) {
        pages->setCurrentIndex(page);
        letRun(400);
        picture(m_window, name + QLatin1Char('-') + QString::number(page));
    }
    if (pages)
        pages->setCurrentIndex(0);
    else
        m_failures.append(QStringLiteral("%1 is gone").arg(name));
}

Tour::Panels Tour::openPanels() const
{
    Panels panels;
    for (QMdiSubWindow *panel : m_window->findChild<QMdiArea *>()->subWindowList())
        panels.append(panel);
    return panels;
}

void Tour::visitServiceTabs()
{
    auto *tabs = m_window->findChild<QTabWidget *>(QStringLiteral("tabWidget"), Qt::FindDirectChildrenOnly);
    for (int tab = 1; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        letRun(700);
        picture(m_window, QStringLiteral("tab-%1").arg(tab));
    }
    tabs->setCurrentIndex(1);
    for (const TourStop &stop : qAsConst(m_stops))
        updateOver(stop);
    for (const TourStop &stop : qAsConst(m_stops)) {
        if (stop.interfaceName != QLatin1String("ch341"))
            continue;
        moveSensorAndBack(stop);
        scanMultiplexer(stop);
    }
    tabs->setCurrentIndex(0);
}

void Tour::picture(QWidget *widget, const QString &name)
{
    const QString file = QStringLiteral("%1/%2-%3.png")
                             .arg(m_folder)
                             .arg(m_pictureCount, 2, 10, QLatin1Char('0'))
                             .arg(fileName(name));
    if (widget->grab().save(file))
        ++m_pictureCount;
    else
        m_failures.append(QStringLiteral("picture %1 could not be written").arg(file));
}

bool Tour::waitUntil(const QString &what, int timeoutMs, const std::function<bool()> &condition)
{
    const bool held = holdsWithin(timeoutMs, condition);
    if (!held)
        m_failures.append(QStringLiteral("%1: not within %2 s").arg(what).arg(timeoutMs / 1000));
    return held;
}

bool Tour::holdsWithin(int timeoutMs, const std::function<bool()> &condition)
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (!condition()) {
        if (elapsed.hasExpired(timeoutMs))
            return false;
        letRun(20);
    }
    return true;
}

void Tour::letRun(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

int Tour::sensorsInTree() const
{
    const auto *tree = m_window->findChild<QTreeWidget *>();
    int count = 0;
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        count += tree->topLevelItem(i)->childCount();
    return count;
}

bool Tour::treeShows(const QString &text) const
{
    const auto *tree = m_window->findChild<QTreeWidget *>();
    return !tree->findItems(text, Qt::MatchContains | Qt::MatchRecursive).isEmpty();
}

void Tour::showTab(const QWidget *form)
{
    auto *tabs = m_window->findChild<QTabWidget *>(QStringLiteral("tabWidget"), Qt::FindDirectChildrenOnly);
    for (int tab = 0; tab < tabs->count(); ++tab) {
        if (tabs->widget(tab)->isAncestorOf(form))
            tabs->setCurrentIndex(tab);
    }
}
