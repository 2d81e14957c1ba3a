#include "tests/support/log_capture.h"

#include <algorithm>
#include <atomic>
#include <cstring>

namespace {
std::atomic<LogCapture *> activeCapture{nullptr};
}

LogCapture::LogCapture()
{
    activeCapture = this;
    m_previous = qInstallMessageHandler(handle);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
    activeCapture = nullptr;
    // A thread that has just ended may have written the last line.
    const std::lock_guard lock(m_mutex);
    m_lines.clear();
}

QStringList LogCapture::lines() const
{
    const std::lock_guard lock(m_mutex);
    QStringList all;
    for (const QString &line : m_lines)
        all.append(line);
    return all;
}

bool LogCapture::contains(const QString &line) const
{
    return lines().contains(line);
}

int LogCapture::count(const QString &line) const
{
    const QStringList all = lines();
    return static_cast<int>(std::count(all.cbegin(), all.cend(), line));
}

void LogCapture::clear()
{
    const std::lock_guard lock(m_mutex);
    m_lines.clear();
}

void LogCapture::handle(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    LogCapture *capture = activeCapture;
    if (capture == nullptr)
        return;
    if (context.category == nullptr || std::strcmp(context.category, "default") == 0) {
        const std::lock_guard lock(capture->m_mutex);
        capture->m_lines.push_back(message);
    }
    // Debug lines of the product are many; only what asks for attention goes on to the test's own output.
    if (type != QtDebugMsg && capture->m_previous != nullptr)
        capture->m_previous(type, context, message);
}
