#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVector>

#include <functional>

class QMdiSubWindow;
class QWidget;

/// What the tour expects behind one entry of the interface box.
struct TourStop
{
    QString interfaceName; ///< text of the entry
    QString device;        ///< text in the device box
    int sensorCount;       ///< sensors that must be found
};

/// Drives the main window as a user would, without a display: connects every interface, waits for its
/// sensors, walks over panels, pages and tabs, writes a picture of each and prints what was found. Lives in
/// the GUI thread and ends the application with status 0, or with 1 after saying what failed.
class Tour : public QObject
{
    Q_OBJECT

public:
    Tour(const QString &folder, const QVector<TourStop> &stops, QObject *parent = nullptr);

    /// Runs inside the event loop of the application.
    void run();

private:
    /// A sensor that drops out takes its panel with it.
    using Panels = QVector<QPointer<QMdiSubWindow>>;

    bool findWindow();
    void visit(const TourStop &stop);
    bool findSensors(const TourStop &stop);
    bool connectLink(const TourStop &stop);
    void disconnectLink();
    void printSensors(const TourStop &stop);
    void printRate(const QPointer<QMdiSubWindow> &panel);
    void walkPanels(const TourStop &stop);
    void walkPages(const QString &name, const QPointer<QMdiSubWindow> &panel);
    Panels openPanels() const;
    void visitServiceTabs();
    /// On the update tab: the firmware of a sensor behind that interface.
    void updateOver(const TourStop &stop);
    /// On the address tab, over the CH341.
    void moveSensor(const TourStop &stop, int fromAddress, int toAddress);
    void moveSensorAndBack(const TourStop &stop);
    /// On the debug tab, over the CH341: channel by channel, with a sum on every request and answer.
    void scanMultiplexer(const TourStop &stop);
    bool channelAnswers(const QWidget *tab, int channel);
    void showTab(const QWidget *form);
    bool treeShows(const QString &text) const;
    void picture(QWidget *widget, const QString &name);
    /// Keeps the event loop running until the condition holds. Notes a failure when it does not within the
    /// time.
    bool waitUntil(const QString &what, int timeoutMs, const std::function<bool()> &condition);
    /// The same, without noting anything.
    bool holdsWithin(int timeoutMs, const std::function<bool()> &condition);
    void letRun(int ms);
    int sensorsInTree() const;

    QString m_folder;
    QVector<TourStop> m_stops;
    QStringList m_failures;
    QWidget *m_window = nullptr;
    int m_pictureCount = 0;
};
