#include "monitor/PanelArea.h"

#include "panel/fingerForm.h"

#include <QDebug>
#include <QHeaderView>
#include <QHelpEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <QTreeWidget>

#include <algorithm>
#include <utility>

namespace {

constexpr int kBusCount = 6;
constexpr int kTreeIndentation = 14;
constexpr int kTreeWidth = 100;
constexpr int kAreaWidth = 400;
/// The tree takes an eighth of the width by itself at most.
constexpr int kTreeShare = 8;

/// What a sensor's item in the tree stands for.
enum ItemData { InfIdx = Qt::UserRole, Address };

/// Says in a tool tip what the tree is too narrow to show.
class TreeItemDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override
    {
        const QRect place = view->visualRect(index);
        const int end = place.left() + sizeHint(option, index).width();
        const bool fits = place.left() >= 0 && end <= view->viewport()->width();
        QToolTip::showText(event->globalPos(), fits ? QString() : index.data().toString(), view->viewport(),
                           place);
        return true;
    }
};

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

PanelArea::PanelArea(PanelMaker makePanel, QWidget *parent)
    : QSplitter(Qt::Horizontal, parent)
    , m_makePanel(std::move(makePanel))
    , tree(new QTreeWidget(this))
    , mdi(new QMdiArea(this))
{
    buildTree();
    mdi->setViewMode(QMdiArea::TabbedView);
    mdi->setTabsClosable(false);
    mdi->setDocumentMode(true);
    setSizes({kTreeWidth, kAreaWidth});
    setStretchFactor(1, 1);
    setChildrenCollapsible(false);
    connect(this, &QSplitter::splitterMoved, this, [this] { m_treeIsMoved = true; });
}

void PanelArea::resizeEvent(QResizeEvent *event)
{
    QSplitter::resizeEvent(event);
    widenTree();
}

// Names of sensors are longer than the tree is at first. In a large window there is room for them, as long
// as the user has not said otherwise.
void PanelArea::widenTree()
{
    const int frame = tree->width() - tree->viewport()->width();
    const int wanted = std::min(tree->columnWidth(0) + frame, width() / kTreeShare);
    const QList<int> before = sizes();
    const int more = wanted - before.first();
    if (!m_treeIsMoved && more > 0)
        setSizes({wanted, before.last() - more});
}

void PanelArea::buildTree()
{
    tree->setHeaderHidden(true);
    tree->setIndentation(kTreeIndentation);
    tree->setItemDelegate(new TreeItemDelegate(tree));
    tree->header()->setStretchLastSection(false);
    connect(tree, &QTreeWidget::itemClicked, this, &PanelArea::showSensorOf);
    const auto fitTree = [this] { tree->resizeColumnToContents(0); };
    connect(tree, &QTreeWidget::expanded, this, fitTree);
    connect(tree, &QTreeWidget::collapsed, this, fitTree);
    for (int i = 1; i <= kBusCount; ++i)
        tree->addTopLevelItem(new QTreeWidgetItem({QObject::tr("接口") + QString::number(i)}));
}

void PanelArea::addSensor(const sensor_ts &sensor)
{
    qDebug("add tree");
    addTreeItem(sensor);

    fingerForm *panel = m_makePanel(sensor.infIdx, sensor.addr);
    panel->setObjectName(panelName(sensor.infIdx, sensor.addr));
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

void PanelArea::addTreeItem(const sensor_ts &sensor)
{
    QTreeWidgetItem *bus = tree->topLevelItem(sensor.infIdx);
    if (!bus)
        return;
    auto *item = new QTreeWidgetItem(bus, {treeText(sensor)});
    item->setData(0, InfIdx, sensor.infIdx);
    item->setData(0, Address, sensor.addr);
    // Later ones leave a bus that the user has closed as it is.
    if (bus->childCount() == 1)
        bus->setExpanded(true);
    qDebug("col num:%d", tree->columnCount());
    tree->resizeColumnToContents(0);
    widenTree();
}

void PanelArea::removeSensor(const sensor_ts &sensor)
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

void PanelArea::removeTreeItem(const sensor_ts &sensor)
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

void PanelArea::removeSubWindow(QMdiSubWindow *window)
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

void PanelArea::showSensorOf(const QTreeWidgetItem *item)
{
    const bool isBus = !item->parent();
    if (isBus)
        return;
    const auto infIdx = static_cast<uint8_t>(item->data(0, InfIdx).toUInt());
    const auto addr = static_cast<uint8_t>(item->data(0, Address).toUInt());
    qDebug("inf:%d", infIdx + 1);
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
void PanelArea::refillSubWindow(QMdiSubWindow *window, uint8_t infIdx, uint8_t addr)
{
    const auto sensor = std::find_if(sensorList.cbegin(), sensorList.cend(), [=](const sensor_ts &candidate) {
        return candidate.infIdx == infIdx && candidate.addr == addr;
    });
    fingerForm *panel = sensor == sensorList.cend() ? nullptr : m_makePanel(infIdx, addr);
    if (!panel)
        return;
    panel->setObjectName(panelName(infIdx, addr));
    window->setWidget(panel);
    window->showNormal();
    panel->sl_connectedFinger(infIdx, addr, *sensor);
}

QMdiSubWindow *PanelArea::findSubWindow(const QString &name) const
{
    const QList<QMdiSubWindow *> windows = mdi->subWindowList();
    const auto found = std::find_if(windows.cbegin(), windows.cend(), [&name](const QMdiSubWindow *window) {
        return window->objectName() == name;
    });
    return found == windows.cend() ? nullptr : *found;
}

void PanelArea::setMultiWindow(bool multiWindow)
{
    mdi->setViewMode(multiWindow ? QMdiArea::SubWindowView : QMdiArea::TabbedView);
    if (!multiWindow)
        return;
    mdi->tileSubWindows();
    const QList<QMdiSubWindow *> windows = mdi->subWindowList();
    for (QMdiSubWindow *window : windows)
        window->setGeometry(window->x(), window->y(), window->width(), mdi->height());
}

class_finger *PanelArea::activeDecoder() const
{
    const QMdiSubWindow *window = mdi->activeSubWindow();
    const auto *panel = window ? qobject_cast<fingerForm *>(window->widget()) : nullptr;
    return panel ? panel->view() : nullptr;
}
