#pragma once

#include "demo/WindowDriver.h"

#include <QObject>
#include <QPointer>
#include <QVector>

class QMdiSubWindow;

/// Drives the main window as a user would, without a display: connects every interface, waits for its
/// sensors, walks over panels, pages and tabs, writes a picture of each and prints what was found. Lives in
/// the GUI thread and ends the application with status 0, or with 1 after saying what failed.
class Tour : public QObject
{
    Q_OBJECT

public:
    /// The folder is made when it is missing.
    Tour(const QString &folder, const QVector<TourStop> &stops, QObject *parent = nullptr);

    /// Runs inside the event loop of the application.
    void run();

private:
    /// A sensor that drops out takes its panel with it.
    using Panels = QVector<QPointer<QMdiSubWindow>>;

    void visit(const TourStop &stop);
    bool findSensors(const TourStop &stop);
    void printSensors(const TourStop &stop);
    void printRate(const QPointer<QMdiSubWindow> &panel);
    void walkPanels(const TourStop &stop);
    void walkPages(const QString &name, const QPointer<QMdiSubWindow> &panel);
    Panels openPanels() const;
    void visitServiceTabs();

    QString m_folder;
    QVector<TourStop> m_stops;
    WindowDriver m_driver;
};
