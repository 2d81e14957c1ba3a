#pragma once

#include "plotting/recording_file.h"
#include "plotting/window/CurvePlot.h"

#include <QElapsedTimer>
#include <QMainWindow>
#include <QTimer>

#include <memory>
#include <optional>

class CurveList;
class CursorReader;
class PlotNavigator;
class PlotServer;
class QAction;
class QLabel;
class QSpinBox;

/// A recording with the name that its file goes by.
struct NamedRecording
{
    QString name;
    Recording recording;
};

/// Curves with what is around them: live from a server, or out of recordings.
class PlotWindow : public QMainWindow
{
    Q_OBJECT

public:
    static constexpr int kShortestSeconds = 1;
    static constexpr int kLongestSeconds = 60;

    explicit PlotWindow(QWidget *parent = nullptr);
    ~PlotWindow() override;

    /// Draws what the server hears from now on. The server must outlive the window.
    void follow(PlotServer &server);
    /// Draws recordings on one scale of time that begins with the first of them.
    void open(std::vector<NamedRecording> recordings);

    CurvePlot &plot() { return *m_plot; }
    /// Asks for the name of a picture and saves it.
    void askAndSavePicture();

private:
    void setupActions();
    void setupStatusBar();
    void setupNavigation();
    void append(const QVector<double> &values);
    void breakCurves();
    void showNewWidth();
    void setPaused(bool paused);
    void zoomTimes(AxisRange times);
    void moveTimes(AxisRange times);
    void showAll();
    void refresh();
    void refreshStatus();
    double now() const;

    CurvePlot *m_plot;
    CurveList *m_list;
    CursorReader *m_cursor;
    QAction *m_pause = nullptr;
    QSpinBox *m_seconds = nullptr;
    QLabel *m_source = nullptr;
    QLabel *m_rate = nullptr;
    QLabel *m_trouble = nullptr;

    PlotServer *m_server = nullptr;
    QString m_peer; ///< empty: nobody is connected
    std::unique_ptr<SampleStore> m_live;
    std::unique_ptr<SampleStore> m_arriving; ///< what goes on while the picture stands still
    std::vector<NamedRecording> m_recordings;
    QElapsedTimer m_clock;
    QTimer m_refreshTimer;
    QTimer m_statusTimer;
    double m_stillSince = 0; ///< when the last connection ended
    quint64 m_records = 0;
    quint64 m_recordsTold = 0;
};
