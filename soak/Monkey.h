#pragma once

#include "soak/Chance.h"

#include <QObject>
#include <QPoint>
#include <QSize>
#include <QTimer>

#include <chrono>

class QFileDialog;
class QWidget;
class QWindow;

/// What a monkey wants while it plays.
struct MonkeyHabits
{
    int interface = 0;    ///< entry of the interface box that it comes back to
    quint16 plotPort = 0; ///< where the samples are sent to, on this machine
    QString image;        ///< a firmware file
};

/// Acts on one window as fast as it follows: presses, types, turns the wheel, through the queue of the window
/// system, so that boxes and lists that are open have their say. Now and then it does what keeps samples
/// running: connects, opens panels, records, sends. Lives and dies with the window.
class Monkey : public QObject
{
public:
    static constexpr std::chrono::milliseconds kStep{10};

    Monkey(QWidget *window, Chance &chance, const MonkeyHabits &habits);

    /// Lets go of everything: no link, no connection, no log, first tab.
    void tidyUp();
    /// A monkey that is not restless does nothing but close boxes.
    void setRestless(bool restless);

private:
    template<typename Child>
    Child *child(const char *name = nullptr) const;

    void step();
    void answer(QFileDialog *dialog);
    void play(QWidget *top);
    bool isSpared(const QWidget *widget) const;
    QWidget *aim(const char *verb, QWidget *top);
    template<typename Action>
    void queue(QWidget *top, Action action);
    void press(QWidget *top);
    void wheel(QWidget *top);
    void type(QWidget *top);
    void followHabits();
    void openPanel();
    void note(const QByteArray &line) const;

    QWidget *m_window;
    QSize m_size;       ///< of the window at first
    int m_connects = 0; ///< presses so far
    Chance &m_chance;
    MonkeyHabits m_habits;
    QTimer m_timer;
    QPoint m_spot;
    bool m_restless = true;
    int m_rest = 0; ///< steps
};
