#pragma once

#include <QStringList>

#include <deque>
#include <mutex>

/// Collects what is logged in category "default" while it lives, from any thread, and hands it on to the
/// handler that was there before. Only one may live at a time.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QStringList lines() const;
    bool contains(const QString &line) const;
    int count(const QString &line) const;
    void clear();

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &message);

    // Neither a lock nor a list of Qt: the thread sanitizer sees through the standard ones only.
    mutable std::mutex m_mutex; // guards m_lines
    std::deque<QString> m_lines;
    QtMessageHandler m_previous;
};
