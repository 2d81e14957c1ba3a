// Sensors that come and go: their items in the tree, their panels, the way from one to the other.

#include "monitor/tactViewForm.h"

#include "ui_tactViewForm.h"

#include "engine/fingerThread.h"
#include "panel/fingerForm.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QTreeWidget>

#include <algorithm>

namespace {

/// Object name of a sensor's panel and of its sub-window.
QString panelName(uint8_t infIdx, uint8_t addr)
{
    return QString::asprintf("%d-0x%02X", infIdx, addr);
}

QString treeText(const sensor_ts &sensor)
{
    return QString::asprintf("%d/0x%02X/", sensor.infIdx, sensor.addr) + sensor.sn;
}

} // namespace

void tactViewForm::addSensor(const sensor_ts &sensor)
{
    qDebug("add tree");
    addTreeItem(sensor);

    fingerForm *panel = newPanel(sensor.infIdx, sensor.addr);
    auto *window = new QMdiSubWindow;
    window->setObjectName(panel->objectName());
    window->setWindowFlag(Qt::WindowCloseButtonHint, false);
    window->setWindowTitle(treeText(sensor));
    window->setWidget(panel);
    mdi->addSubWindow(window);
    window->show();
    // Before the attach, in which a box may come up: sensors come and go while it is open.
    sensorList.append(sensor);
    panel->sl_connectedFinger(sensor.infIdx, sensor.addr, sensor);
}

void tactViewForm::addTreeItem(const sensor_ts &sensor)
{
    QTreeWidgetItem *bus = tree->topLevelItem(sensor.infIdx);
    if (!bus)
        return;
    bus->addChild(new QTreeWidgetItem({treeText(sensor)}));
    // Later ones leave a bus that the user has closed as it is.
    if (bus->childCount() == 1)
        bus->setExpanded(true);
    qDebug("col num:%d", tree->columnCount());
    tree->resizeColumnToContents(0);
}

fingerForm *tactViewForm::newPanel(uint8_t infIdx, uint8_t addr)
{
    auto *panel = new fingerForm(infIdx, addr, this);
    panel->setObjectName(panelName(infIdx, addr));
    connect(panel, &fingerForm::si_cmdReq1, worker, &fingerThread::sl_cmdReq1);
    connect(panel, &fingerForm::si_sendDataStrList, this, &tactViewForm::tcpSend);
    connect(worker, &fingerThread::si_updateData1, panel, &fingerForm::sl_updateData);
    connect(worker, &fingerThread::si_setHz1, panel, &fingerForm::sl_setHz);
    connect(worker, &fingerThread::si_cmdRsp1, panel, &fingerForm::sl_cmdRsp);
    connect(worker, &fingerThread::si_cmdRspErr1, panel, &fingerForm::sl_cmdRspErr);
    return panel;
}

void tactViewForm::removeSensor(const sensor_ts &sensor)
{
    qDebug("del tree");
    removeTreeItem(sensor);
    const QString name = panelName(sensor.infIdx, sensor.addr);
    qDebug("%s", qUtf8Printable(name));
    QMdiSubWindow *window = findSubWindow(name);
    if (!window)
        return;
    const int index = mdi->subWindowList().indexOf(window);
    removeSubWindow(window);
    if (index < sensorList.size())
        sensorList.removeAt(index);
}

void tactViewForm::removeTreeItem(const sensor_ts &sensor)
{
    QTreeWidgetItem *bus = tree->topLevelItem(sensor.infIdx);
    const QString text = treeText(sensor);
    for (int i = 0; bus && i < bus->childCount(); ++i) {
        if (bus->child(i)->text(0) != text)
            continue;
        delete bus->takeChild(i);
        tree->resizeColumnToContents(0);
        return;
    }
}

void tactViewForm::removeSubWindow(QMdiSubWindow *window)
{
    if (auto *panel = window->findChild<fingerForm *>(window->objectName()))
        panel->deleteLater();
    QMdiSubWindow *before = mdi->activeSubWindow();
    mdi->setActiveSubWindow(window);
    // In a hidden area nothing becomes active, and the one that is would be closed instead.
    if (mdi->activeSubWindow() == window)
        mdi->closeActiveSubWindow();
    else
        window->close();
    mdi->removeSubWindow(window);
    window->deleteLater();
    if (before && before != window)
        mdi->setActiveSubWindow(before);
}

void tactViewForm::showSensorOf(QTreeWidgetItem *item)
{
    if (item->text(0).contains(QObject::tr("接口")))
        return;
    const int busNumber = tree->indexOfTopLevelItem(item->parent()) + 1;
    qDebug("inf:%d", busNumber);
    const auto infIdx = static_cast<uint8_t>(busNumber - 1);
    const QString address = item->text(0).split(QLatin1Char('/')).value(1).right(4);
    const auto addr = static_cast<uint8_t>(address.toUInt(nullptr, 16));
    qDebug("addr:%d", addr);
    QMdiSubWindow *window = findSubWindow(panelName(infIdx, addr));
    if (!window) {
        qDebug("creat");
        return;
    }
    qDebug("show:%d", mdi->subWindowList().indexOf(window));
    // The attach may bring up a box, and the sensor may go, its window with it, while that is open.
    const QPointer<QMdiSubWindow> shown(window);
    if (window->isHidden())
        refillSubWindow(window, infIdx, addr);
    if (shown)
        mdi->setActiveSubWindow(shown);
}

// A user can close a panel by the keyboard; its sub-window stays, empty and hidden.
void tactViewForm::refillSubWindow(QMdiSubWindow *window, uint8_t infIdx, uint8_t addr)
{
    const auto sensor = std::find_if(sensorList.cbegin(), sensorList.cend(), [=](const sensor_ts &candidate) {
        return candidate.infIdx == infIdx && candidate.addr == addr;
    });
    if (!worker || sensor == sensorList.cend())
        return;
    fingerForm *panel = newPanel(infIdx, addr);
    window->setWidget(panel);
    window->showNormal();
    panel->sl_connectedFinger(infIdx, addr, *sensor);
}

QMdiSubWindow *tactViewForm::findSubWindow(const QString &name) const
{
    const QList<QMdiSubWindow *> windows = mdi->subWindowList();
    const auto found = std::find_if(windows.cbegin(), windows.cend(), [&name](const QMdiSubWindow *window) {
        return window->objectName() == name;
    });
    return found == windows.cend() ? nullptr : *found;
}
