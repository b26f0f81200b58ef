#include "cli/interrupt_watcher.h"

#include <csignal>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace tavrelune::cli {

namespace {
// A signal handler can reach only static storage; it writes one byte that the
// event loop picks up.
volatile sig_atomic_t signalWriteFd = -1;

const int watchedSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

void onSignal(int signalNumber)
{
    const char byte = static_cast<char>(signalNumber);
    if (signalWriteFd >= 0)
        [[maybe_unused]] auto written = ::write(signalWriteFd, &byte, 1);
}

void installHandler(int signalNumber, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(signalNumber, &action, nullptr);
}
}  // namespace

InterruptWatcher::InterruptWatcher()
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds_) != 0)
        throw std::runtime_error("cannot create the signal socket pair");
    signalWriteFd = fds_[0];
    notifier_ = std::make_unique<QSocketNotifier>(fds_[1], QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, [this] {
        char buffer[16];
        const auto count = ::read(fds_[1], buffer, sizeof buffer);
        for (ssize_t i = 0; i < count; ++i)
            receive(buffer[i]);
    });
    for (const int signalNumber : watchedSignals)
        installHandler(signalNumber, onSignal);
}

void InterruptWatcher::receive(int signalNumber)
{
    const bool first = signalNumber_ == 0;
    if (first)
        signalNumber_ = signalNumber;
    stopSource_.request_stop();
    if (first)
        Q_EMIT interruptReceived();
}

void InterruptWatcher::noteBrokenPipe()
{
    receive(SIGPIPE);
}

int InterruptWatcher::exitStatus() const
{
    switch (signalNumber_) {
    case 0:
        return 0;
    case SIGINT:
    case SIGTERM:
        return 130;
    default:
        return 128 + signalNumber_;
    }
}

InterruptWatcher::~InterruptWatcher()
{
    for (const int signalNumber : watchedSignals)
        installHandler(signalNumber, SIG_DFL);
    signalWriteFd = -1;
    notifier_.reset();
    ::close(fds_[0]);
    ::close(fds_[1]);
}

}  // namespace tavrelune::cli
