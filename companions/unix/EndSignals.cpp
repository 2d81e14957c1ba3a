#include "companions/EndSignals.h"

#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace {

// A signal may come in the middle of anything; all that is allowed there is to write to a pipe.
std::array<int, 2> ends{-1, -1};
QSocketNotifier *notifier = nullptr;

constexpr std::array<int, 2> kSignals{SIGINT, SIGTERM};

void onSignal(int)
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(ends[1], &byte, 1);
}

} // namespace

EndSignals::EndSignals(std::function<void()> whenAsked)
{
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    notifier = new QSocketNotifier(ends[0], QSocketNotifier::Read);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [whenAsked] {
        notifier->setEnabled(false);
        whenAsked();
    });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    // A second signal ends the program at once, should the first not do.
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    for (const int signal : kSignals)
        ::sigaction(signal, &action, nullptr);
}

EndSignals::~EndSignals()
{
    for (const int signal : kSignals)
        std::signal(signal, SIG_DFL);
    delete std::exchange(notifier, nullptr);
    for (int &end : ends) {
        ::close(end);
        end = -1;
    }
}
