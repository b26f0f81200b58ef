// Waiting for a coroutine from plain code: runs a nested event loop until
// the task ends and returns its value or rethrows its exception.
//
// For the command line and tests only; the application never blocks its
// event loop like this. (QCoro's own waitFor never returns when the task
// throws, so it is not used.)
#pragma once

#include <QEventLoop>
#include <exception>
#include <optional>
#include <type_traits>

#include <qcoro/qcorotask.h>

namespace tavrelune {

template <typename T>
T waitForTask(QCoro::Task<T> task)
{
    QEventLoop loop;
    bool done = false;
    std::exception_ptr failure;
    using Stored = std::conditional_t<std::is_void_v<T>, bool, T>;
    std::optional<Stored> result;
    auto body = [&]() -> QCoro::Task<> {
        try {
            if constexpr (std::is_void_v<T>) {
                co_await task;
                result = true;
            } else {
                result = co_await task;
            }
        } catch (...) {
            failure = std::current_exception();
        }
        done = true;
        loop.quit();
    };
    auto waiter = body();
    if (!done)
        loop.exec();
    if (failure)
        std::rethrow_exception(failure);
    if constexpr (!std::is_void_v<T>)
        return std::move(*result);
}

}  // namespace tavrelune
