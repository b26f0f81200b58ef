// Running engine coroutines to completion from a test.
#pragma once

#include <QTimer>
#include <exception>
#include <functional>
#include <stop_token>

#include "async/blocking_wait.h"

namespace tavrelune::test {

// Awaits the task on a nested event loop; returns the exception it ended
// with, or null when it succeeded.
template <typename T>
std::exception_ptr failureOf(QCoro::Task<T> task)
{
    try {
        waitForTask(std::move(task));
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

// Requests a stop after `milliseconds` of event-loop time.
inline void stopLater(std::stop_source& source, int milliseconds)
{
    QTimer::singleShot(milliseconds, [&source] { source.request_stop(); });
}

// Processes events for the given time (lets queued work run).
void spinEventLoop(int milliseconds);

// Whether a process with this id still exists (zombies count as existing).
bool processExists(qint64 pid);

// Children of this test process that are still alive (or unreaped).
QList<qint64> livingChildren();

}  // namespace tavrelune::test
