// Turns SIGINT and SIGTERM into a stop request on the Qt event loop.
//
// Main thread only; one instance at a time (the process has one set of
// signal handlers). While it lives, Ctrl-C no longer kills the process: it
// requests a stop on `stopSource()`, so running children are ended cleanly.
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
    bool interrupted() const { return interrupted_; }

Q_SIGNALS:
    void interruptReceived();

private:
    int fds_[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> notifier_;
    std::stop_source stopSource_;
    bool interrupted_ = false;
};

}  // namespace tavrelune::cli
