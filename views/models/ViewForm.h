#pragma once

#include <QByteArray>
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

/// The widgets of a view, made from its layout row under the names by which they are found: label_1 and on, lbPress_1
/// and on, pbSProx_1 and on, pbMProx_1 and on, wgSensor, tabWidget, lbPCB, sawgDataList, lyDataList. All belong to the
/// view.
class ViewForm
{
public:
    /// Fills `view`. Texts are asked in the context `viewClass`; the counts are those of the proximity bars.
    void setupUi(QWidget *view, const QByteArray &viewClass, const ViewLayout &layout, int sProxNum,
                 int mProxNum);

    QTabWidget *tabWidget = nullptr;
    QLabel *lbPCB = nullptr;
    sensorForm *wgSensor = nullptr;
    QScrollArea *sawgDataList = nullptr;
    QVBoxLayout *lyDataList = nullptr;
    QVector<ydds *> gauges;
    QVector<ydds *> discs;
    QVector<QProgressBar *> sProxBars;
    QVector<QProgressBar *> mProxBars;

private:
    void addPages(const QByteArray &viewClass, const ViewLayout &layout, QWidget *bars);
    QWidget *makeGaugePicture(const ViewLayout &layout, bool withForces);
    QWidget *makeForcePicture(const ViewLayout &layout);
    QWidget *makeBars(int maximum, int sProxNum, int mProxNum);
    QWidget *makeDataPage();
    QWidget *makeBoardPage();
    void addGauges(SensorPicture *picture, const ViewLayout &layout);
    void addForces(SensorPicture *picture, const ViewLayout &layout);
};
