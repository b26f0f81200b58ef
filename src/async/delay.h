// co_await delay(milliseconds): resumes after that much event-loop time.
//
// Main thread only. The resumption comes from a timer on the application
// object, so the awaiting coroutine must check afterwards that what it works
// on still exists. If the event loop never runs again, it is never resumed.
#pragma once

#include <QCoreApplication>
#include <QTimer>
#include <coroutine>

namespace tavrelune {

struct Delay {
    int milliseconds;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> waiter) const
    {
        QTimer::singleShot(milliseconds, QCoreApplication::instance(), [waiter] { waiter.resume(); });
    }
    void await_resume() const noexcept {}
};

inline Delay delay(int milliseconds)
{
    return {milliseconds};
}

}  // namespace tavrelune
