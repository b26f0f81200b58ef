// co_await nextSignal(object, &Class::signal): resumes after the object's
// next emission of that signal. co_await firstSignal(a, &A::signal, b,
// &B::signal): after whichever of the two comes first.
//
// The resumption is queued on the event loop, never made inside the
// emission, so the awaiting coroutine may freely destroy or change the
// sender. If the sender is destroyed first, the coroutine is never resumed:
// await only objects that outlive the wait. Main thread only.
#pragma once

#include <QCoreApplication>
#include <QObject>
#include <coroutine>
#include <memory>

namespace tavrelune {

template <typename Sender, typename Signal>
class NextSignal {
public:
    NextSignal(Sender* sender, Signal signal) : sender_(sender), signal_(signal) {}

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> waiter)
    {
        auto connection = std::make_shared<QMetaObject::Connection>();
        *connection = QObject::connect(sender_, signal_, sender_, [waiter, connection] {
            QObject::disconnect(*connection);
            QMetaObject::invokeMethod(QCoreApplication::instance(), [waiter] { waiter.resume(); },
                                      Qt::QueuedConnection);
        });
    }
    void await_resume() const noexcept {}

private:
    Sender* sender_;
    Signal signal_;
};

template <typename Sender, typename Signal>
NextSignal<Sender, Signal> nextSignal(Sender* sender, Signal signal)
{
    return {sender, signal};
}

template <typename SenderA, typename SignalA, typename SenderB, typename SignalB>
class FirstSignal {
public:
    FirstSignal(SenderA* a, SignalA signalA, SenderB* b, SignalB signalB)
        : a_(a), signalA_(signalA), b_(b), signalB_(signalB)
    {
    }

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> waiter)
    {
        struct Connections {
            QMetaObject::Connection a;
            QMetaObject::Connection b;
        };
        auto connections = std::make_shared<Connections>();
        const auto resume = [waiter, connections] {
            QObject::disconnect(connections->a);
            QObject::disconnect(connections->b);
            QMetaObject::invokeMethod(QCoreApplication::instance(), [waiter] { waiter.resume(); },
                                      Qt::QueuedConnection);
        };
        connections->a = QObject::connect(a_, signalA_, a_, resume);
        connections->b = QObject::connect(b_, signalB_, b_, resume);
    }
    void await_resume() const noexcept {}

private:
    SenderA* a_;
    SignalA signalA_;
    SenderB* b_;
    SignalB signalB_;
};

template <typename SenderA, typename SignalA, typename SenderB, typename SignalB>
FirstSignal<SenderA, SignalA, SenderB, SignalB> firstSignal(SenderA* a, SignalA signalA, SenderB* b,
                                                            SignalB signalB)
{
    return {a, signalA, b, signalB};
}

}  // namespace tavrelune
