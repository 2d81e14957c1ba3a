#pragma once

#include <QByteArray>
#include <QPointer>
#include <QString>
#include <QVector>

class QLabel;
class QProgressBar;
class QScrollArea;
class QTabWidget;
class QVBoxLayout;
class QWidget;
class SensorPicture;
class sensorForm;
class ydds;
struct ViewLayout;
struct finger_info_ts;

/// The widgets of a view, made from its layout row under the names by which they are found: label_1 and on,
/// lbPress_1 and on, pbSProx_1 and on, pbMProx_1 and on, wgSensor, tabWidget, lbPCB, sawgDataList,
/// lyDataList. All belong to the view; what the view writes to at a sample is guarded.
class ViewForm
{
public:
    /// Fills `view`. Texts are asked in the context `viewClass`; `row` tells how many bars there are and how
    /// wide the numbers get.
    void setupUi(QWidget *view, const QByteArray &viewClass, const ViewLayout &layout,
                 const finger_info_ts &row);

    QTabWidget *tabWidget = nullptr;
    QLabel *lbPCB = nullptr;
    sensorForm *wgSensor = nullptr;
    QScrollArea *sawgDataList = nullptr;
    QVBoxLayout *lyDataList = nullptr;
    QVector<QPointer<ydds>> gauges;
    QVector<QPointer<ydds>> discs;
    QVector<QPointer<QProgressBar>> sProxBars;
    QVector<QPointer<QProgressBar>> mProxBars;

private:
    void addPages(const QByteArray &viewClass, const ViewLayout &layout, QWidget *bars);
    QWidget *makeGaugePicture(const ViewLayout &layout, bool withForces);
    QWidget *makeForcePicture(const ViewLayout &layout);
    QWidget *makeBars(int maximum, const finger_info_ts &row);
    QWidget *makeDataPage();
    QWidget *makeBoardPage();
    void addGauges(SensorPicture *picture, const ViewLayout &layout);
    void addForces(SensorPicture *picture, const ViewLayout &layout);

    QString m_widestForce;
    QString m_widestBlock;
};
