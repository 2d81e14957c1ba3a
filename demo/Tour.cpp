#include "demo/Tour.h"

#include "demo/visits.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTabWidget>

using namespace std::chrono_literals;

namespace {

constexpr auto kDiscoveryTimeout = 60s;
constexpr int kDiscoveryAttempts = 3;
constexpr auto kRatesTimeout = 10s;

} // namespace

Tour::Tour(const QString &folder, const QVector<TourStop> &stops, QObject *parent)
    : QObject(parent)
    , m_folder(folder)
    , m_stops(stops)
    , m_driver(folder)
{}

void Tour::run()
{
    QDir().mkpath(m_folder);
    if (m_driver.findWindow()) {
        for (const TourStop &stop : qAsConst(m_stops))
            visit(stop);
        visitServiceTabs();
    }
    for (const QString &failure : m_driver.failures())
        print(QStringLiteral("FAILED: ") + failure);
    print(QStringLiteral("%1 pictures in %2").arg(m_driver.pictureCount()).arg(m_folder));
    QCoreApplication::exit(m_driver.failures().isEmpty() ? 0 : 1);
}

void Tour::visit(const TourStop &stop)
{
    print(QStringLiteral("%1:").arg(stop.interfaceName));
    if (!findSensors(stop))
        return;
    printSensors(stop);
    walkPanels(stop);
    if (stop.interfaceName == QLatin1String("ch341"))
        plotLive(m_driver);
    m_driver.disconnectLink();
}

// A sensor that answers too late on a busy machine comes up again only after a whole sweep, which takes
// minutes on a serial line. A new worker begins its sweep afresh.
bool Tour::findSensors(const TourStop &stop)
{
    const auto allFound = [this, &stop] { return m_driver.sensorsInTree() >= stop.sensorCount; };
    for (int attempt = 1; attempt < kDiscoveryAttempts; ++attempt) {
        if (!m_driver.connectLink(stop))
            return false;
        if (WindowDriver::holdsWithin(kDiscoveryTimeout, allFound))
            return true;
        print(QStringLiteral("  %1 of %2 sensors, once more")
                  .arg(m_driver.sensorsInTree())
                  .arg(stop.sensorCount));
        m_driver.disconnectLink();
        // The list of the worker that goes must not be taken for that of the next one.
        m_driver.child<QComboBox>("cbbCh341List")->clear();
        m_driver.showTab(m_driver.child<QWidget>("wgDebug"));
        m_driver.showTab(m_driver.child<QWidget>("wgTactView"));
    }
    return m_driver.connectLink(stop) &&
           m_driver.waitUntil(
               QStringLiteral("%1 sensors on %2").arg(stop.sensorCount).arg(stop.interfaceName),
               kDiscoveryTimeout, allFound);
}

void Tour::printSensors(const TourStop &stop)
{
    // The first seconds go to what the panels ask their sensors.
    WindowDriver::letRun(4s);
    const Panels panels = openPanels();
    for (const QPointer<QMdiSubWindow> &panel : panels)
        printRate(panel);
    if (panels.size() != stop.sensorCount)
        m_driver.fail(QStringLiteral("%1 panels for %2 sensors").arg(panels.size()).arg(stop.sensorCount));
}

void Tour::printRate(const QPointer<QMdiSubWindow> &panel)
{
    const QString title = panel ? panel->windowTitle() : QStringLiteral("a sensor that has gone");
    const auto rate = [&panel] {
        const auto *label = panel ? panel->findChild<QLabel *>(QStringLiteral("lbHz")) : nullptr;
        return label ? label->text() : QString();
    };
    if (m_driver.waitUntil(QStringLiteral("rates of %1").arg(title), kRatesTimeout,
                           [&rate] { return !rate().isEmpty() && !rate().startsWith(QLatin1String("0/")); }))
        print(QStringLiteral("  %1  %2 Hz").arg(title, -24).arg(rate()));
}

void Tour::walkPanels(const TourStop &stop)
{
    const Panels panels = openPanels();
    for (const QPointer<QMdiSubWindow> &panel : panels) {
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
        WindowDriver::letRun(400ms);
        m_driver.picture(name + QLatin1Char('-') + QString::number(page));
    }
    if (pages)
        pages->setCurrentIndex(0);
    else
        m_driver.fail(QStringLiteral("%1 is gone").arg(name));
}

Tour::Panels Tour::openPanels() const
{
    Panels panels;
    const auto windows = m_driver.window()->findChild<QMdiArea *>()->subWindowList();
    for (QMdiSubWindow *panel : windows)
        panels.append(panel);
    return panels;
}

void Tour::visitServiceTabs()
{
    auto *tabs =
        m_driver.window()->findChild<QTabWidget *>(QStringLiteral("tabWidget"), Qt::FindDirectChildrenOnly);
    for (int tab = 1; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        WindowDriver::letRun(700ms);
        m_driver.picture(QStringLiteral("tab-%1").arg(tab));
    }
    tabs->setCurrentIndex(1);
    for (const TourStop &stop : qAsConst(m_stops))
        updateOver(m_driver, stop);
    for (const TourStop &stop : qAsConst(m_stops)) {
        if (stop.interfaceName != QLatin1String("ch341"))
            continue;
        moveSensorAndBack(m_driver, stop);
        scanMultiplexer(m_driver, stop);
    }
    tabs->setCurrentIndex(0);
}
