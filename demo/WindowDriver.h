#pragma once

#include <QStringList>
#include <QWidget>

#include <chrono>
#include <functional>

/// What is expected behind one entry of the interface box.
struct TourStop
{
    QString interfaceName; ///< text of the entry
    QString device;        ///< text in the device box
    int sensorCount;       ///< sensors that must be found
};

/// Prints a line at once.
void print(const QString &line);

/// Hands, eyes and patience of a user without a display: works the main window by the names of its widgets,
/// waits for what it shows and keeps pictures of it. Lives in the GUI thread.
class WindowDriver
{
public:
    /// Pictures go into that folder, which exists.
    explicit WindowDriver(const QString &pictureFolder);

    /// Looks for the main window, which must be found before anything else here is used.
    bool findWindow();
    QWidget *window() const { return m_window; }
    template<typename Child>
    Child *child(const char *name) const
    {
        return m_window->findChild<Child *>(QString::fromLatin1(name));
    }

    /// Brings the tab with that form to the front.
    void showTab(const QWidget *form);
    /// False, with a failure noted, when the device is not listed or the link does not open.
    bool connectLink(const TourStop &stop);
    void disconnectLink();
    int sensorsInTree() const;
    bool treeShows(const QString &text) const;

    void picture(const QString &name);
    /// Path of the next picture, which now counts as taken.
    QString nextPicture(const QString &name);
    int pictureCount() const { return m_pictureCount; }

    /// Keeps the event loop running until the condition holds. Notes a failure when it does not within the
    /// time.
    bool waitUntil(const QString &what, std::chrono::milliseconds timeout,
                   const std::function<bool()> &condition);
    /// The same, without noting anything.
    static bool holdsWithin(std::chrono::milliseconds timeout, const std::function<bool()> &condition);
    static void letRun(std::chrono::milliseconds time);

    void fail(const QString &what) { m_failures.append(what); }
    const QStringList &failures() const { return m_failures; }

private:
    QString m_folder;
    QWidget *m_window = nullptr;
    QStringList m_failures;
    int m_pictureCount = 0;
};
