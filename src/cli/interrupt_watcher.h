// Turns SIGINT, SIGTERM, SIGHUP (the terminal closed) and SIGPIPE (the
// reader of standard output went away) into a stop request on the Qt event
// loop.
//
// Main thread only; one instance at a time (the process has one set of
// signal handlers). While it lives, none of these signals kills the
// process: each requests a stop on `stopSource()`, so running children are
// ended cleanly and unfinished files removed. A write to a closed pipe then
// fails with EPIPE instead of ending the process.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <memory>
#include <stop_token>

namespace tavrelune::cli {

class InterruptWatcher : public QObject {
    Q_OBJECT
public:
    InterruptWatcher();
    ~InterruptWatcher() override;

    std::stop_source& stopSource() { return stopSource_; }
    bool interrupted() const { return signalNumber_ != 0; }
    // The exit status for the first signal received: 129 after SIGHUP, 141
    // after SIGPIPE, 130 after SIGINT or SIGTERM; 0 when none came.
    int exitStatus() const;
    // Counts as a SIGPIPE (a failed write to a closed standard output).
    void noteBrokenPipe();

Q_SIGNALS:
    void interruptReceived();

private:
    int fds_[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> notifier_;
    std::stop_source stopSource_;
    int signalNumber_ = 0;

    void receive(int signalNumber);
};

}  // namespace tavrelune::cli
