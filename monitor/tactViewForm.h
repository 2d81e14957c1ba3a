#pragma once

#include <QThread>
#include <QTimer>
#include <QVector>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <memory>

class PanelArea;
class PlotOutput;
class fingerForm;
class fingerThread;

namespace Ui {
class tactViewForm;
}

/// The first tab: the worker of the chosen interface, the tree of its buses and sensors, and a panel for each
/// sensor.
///
/// Running means that a worker exists and its thread runs. The panels of sensors that a stopping worker gives
/// up go when their signals are delivered, after stop() has returned. GUI thread only.
class tactViewForm : public QWidget
{
    Q_OBJECT

public:
    /// Starts a program without arguments, apart from this process. False when that failed.
    using ProcessStarter = std::function<bool(const QString &program)>;

    explicit tactViewForm(QWidget *parent = nullptr);
    /// Ends a worker that still runs.
    ~tactViewForm() override;

    /// Builds a worker for the chosen interface and starts it. Does nothing while one runs.
    void start();
    /// Ends the worker and waits for its thread. May be called when nothing runs.
    void stop();

    /// How a change of language starts this program again; QProcess::startDetached unless told otherwise.
    void setProcessStarter(ProcessStarter starter) { m_startProcess = std::move(starter); }

Q_SIGNALS:
    void si_workerThreadStop();
    void si_connectCh341(QString id);
    void si_disconnectCh341();
    void si_setReadIntTime(unsigned short ms);

private:
    void hideWhatIsNotOffered();
    void init();
    void wireControls();
    void tcpInit();
    void tcpSend();
    fingerForm *newPanel(uint8_t infIdx, uint8_t addr);

    void wireWorker();
    void wireThread();
    template<typename Signal, typename Handler>
    void onPresentWorker(Signal signal, Handler handler);
    void showConnected(bool connected);
    void showDevices(const QVector<QString> &names);
    void restoreLanguage();
    void changeLanguage(int index);
    void connectOrDisconnect();
    void changeInterface();

    std::unique_ptr<Ui::tactViewForm> ui;
    PlotOutput *m_plot = nullptr;
    QThread *thread = nullptr;
    fingerThread *worker = nullptr;
    PanelArea *m_area = nullptr;
    QTimer m_restart; ///< start after a change of interface
    /// Counts starts and stops. A queued signal of a worker that is gone may still arrive, and a new worker
    /// may have its address.
    unsigned int m_run = 0;
    ProcessStarter m_startProcess;
};
