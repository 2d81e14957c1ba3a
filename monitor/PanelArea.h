#pragma once

#include "engine/sensor_ts.h"

#include <QList>
#include <QSplitter>
#include <QString>

#include <cstdint>
#include <functional>

class QMdiArea;
class QMdiSubWindow;
class QTreeWidget;
class QTreeWidgetItem;
class class_finger;
class fingerForm;

/// The tree of buses and sensors, and beside it a sub-window with a panel for each sensor.
class PanelArea : public QSplitter
{
    Q_OBJECT

public:
    /// Makes a panel that is wired to the worker; null when there is no worker.
    using PanelMaker = std::function<fingerForm *(uint8_t infIdx, uint8_t addr)>;

    explicit PanelArea(PanelMaker makePanel, QWidget *parent = nullptr);
    void addSensor(const sensor_ts &sensor);
    void removeSensor(const sensor_ts &sensor);
    /// Sub-windows side by side at full height instead of one behind the other.
    void setMultiWindow(bool multiWindow);
    /// Decoder of the panel in front; null without one.
    class_finger *activeDecoder() const;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void buildTree();
    void widenTree();
    void addTreeItem(const sensor_ts &sensor);
    void removeTreeItem(const sensor_ts &sensor);
    void removeSubWindow(QMdiSubWindow *window);
    void showSensorOf(const QTreeWidgetItem *item);
    void refillSubWindow(QMdiSubWindow *window, uint8_t infIdx, uint8_t addr);
    QMdiSubWindow *findSubWindow(const QString &name) const;

    PanelMaker m_makePanel;
    QTreeWidget *tree;
    QMdiArea *mdi;
    bool m_treeIsMoved = false;  ///< by the user
    QList<sensor_ts> sensorList; ///< same order as the sub-windows
};
