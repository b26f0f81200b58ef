// FFmpegService::run and cancel: the only place that starts child processes.
#include "engine/ffmpeg_service.h"

#include "engine/output_text.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTimer>
#include <coroutine>
#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace tavrelune {

// Shared by the waiting coroutine and the process's signal handlers.
struct RunState {
    QString out;
    QString err;
    bool cancelFlag = false;
    bool ended = false;
    bool startFailed = false;
    QString startError;
    int exitCode = 0;
    QProcess::ExitStatus exitStatus = QProcess::NormalExit;
    std::coroutine_handle<> waiter;
};

namespace {

// Completes the waiter exactly once. The resume is queued so that the
// coroutine, which owns the QProcess, never destroys it inside one of the
// process's own signal emissions.
void complete(const std::shared_ptr<RunState>& state)
{
    if (state->ended)
        return;
    state->ended = true;
    if (auto waiter = std::exchange(state->waiter, {}))
        QMetaObject::invokeMethod(QCoreApplication::instance(), [waiter] { waiter.resume(); },
                                  Qt::QueuedConnection);
}

class ProcessEnd {
public:
    explicit ProcessEnd(std::shared_ptr<RunState> state) : state_(std::move(state)) {}
    bool await_ready() const noexcept { return state_->ended; }
    void await_suspend(std::coroutine_handle<> waiter) noexcept { state_->waiter = waiter; }
    void await_resume() const noexcept {}

private:
    std::shared_ptr<RunState> state_;
};

void appendDecoded(QString& box, const QByteArray& bytes)
{
    if (const auto text = decodeUtf8Chunk(bytes))
        box += *text;
}

}  // namespace

FFmpegService::FFmpegService(ToolLocator locator) : locator_(std::move(locator)) {}

FFmpegService::~FFmpegService()
{
    cancel();
}

QString FFmpegService::binaryPath(const QString& toolName) const
{
    return locator_.locate(toolName);
}

void FFmpegService::stopChild(QProcess* process, RunState& state)
{
    // A child that has already ended finished on its own: a stop that comes
    // before its run resumes must not turn that result into a cancellation.
    if (state.ended)
        return;
    state.cancelFlag = true;
    if (!process || process->state() == QProcess::NotRunning)
        return;
    // The child leads its own process group, so the signal also reaches
    // anything it started (a wrapper script's tools, for example).
    const auto signalGroup = [](QProcess* child, int signalNumber) {
        const qint64 pid = child->processId();
        if (pid <= 0 || ::kill(static_cast<pid_t>(-pid), signalNumber) != 0)
            signalNumber == SIGKILL ? child->kill() : child->terminate();
    };
    signalGroup(process, SIGTERM);
    QPointer<QProcess> guarded(process);
    QTimer::singleShot(killGraceMs_, process, [guarded, signalGroup] {
        if (guarded && guarded->state() != QProcess::NotRunning)
            signalGroup(guarded.data(), SIGKILL);
    });
}

void FFmpegService::cancel()
{
    // The flag is marked as well as the signal sent: ffmpeg answers SIGTERM
    // by finishing up and exiting with status 255, which alone would look
    // like a failure.
    if (conversion_.state && !conversion_.state->ended)
        stopChild(conversion_.process.data(), *conversion_.state);
    conversion_ = {};
}

QCoro::Task<QString> FFmpegService::run(QString executable, QStringList arguments,
                                        bool trackAsConversion, LineCallback onStdout,
                                        std::stop_token stop)
{
    const QFileInfo info(executable);
    if (!info.isFile() || !info.isExecutable())
        throw FFmpegError::missingBinary(info.fileName());
    if (stop.stop_requested())
        throw FFmpegError::cancelled();

    auto process = std::make_unique<QProcess>();
    auto state = std::make_shared<RunState>();
    QProcess* child = process.get();
    child->setProgram(executable);
    child->setArguments(arguments);
    child->setStandardInputFile(QProcess::nullDevice());
    child->setProcessChannelMode(QProcess::SeparateChannels);
    const pid_t parent = getpid();
    child->setChildProcessModifier([parent] {
        // Own process group: a terminal's Ctrl-C goes to the application
        // only, which stops its children its own way.
        setpgid(0, 0);
        // Ask the kernel to end the child if the application dies.
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != parent)
            _exit(127);
    });

    QObject::connect(child, &QProcess::readyReadStandardOutput, child, [child, state, onStdout] {
        const auto text = decodeUtf8Chunk(child->readAllStandardOutput());
        if (!text || text->isEmpty())
            return;
        state->out += *text;
        if (onStdout) {
            for (const QString& line : splitOutputLines(*text))
                onStdout(line);
        }
    });
    QObject::connect(child, &QProcess::readyReadStandardError, child, [child, state] {
        appendDecoded(state->err, child->readAllStandardError());
    });
    QObject::connect(child, &QProcess::finished, child,
                     [child, state](int exitCode, QProcess::ExitStatus exitStatus) {
                         QObject::disconnect(child, &QProcess::readyReadStandardOutput, nullptr, nullptr);
                         QObject::disconnect(child, &QProcess::readyReadStandardError, nullptr, nullptr);
                         appendDecoded(state->out, child->readAllStandardOutput());
                         appendDecoded(state->err, child->readAllStandardError());
                         state->exitCode = exitCode;
                         state->exitStatus = exitStatus;
                         complete(state);
                     });
    QObject::connect(child, &QProcess::errorOccurred, child, [child, state](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        state->startFailed = true;
        state->startError = child->errorString();
        complete(state);
    });

    if (trackAsConversion)
        conversion_ = {child, state};
    std::stop_callback onStop(stop, [this, child, state] { stopChild(child, *state); });

    child->start();
    co_await ProcessEnd(state);

    if (conversion_.process == child)
        conversion_ = {};
    if (state->startFailed)
        throw PlatformError(state->startError);
    if (state->cancelFlag)
        throw FFmpegError::cancelled();
    // Only a stop asked for here is a cancellation; a child killed by anyone
    // else, or crashing, failed. (Qt reports the signal number as the code.)
    if (state->exitStatus == QProcess::CrashExit)
        throw FFmpegError::conversionFailed(QStringLiteral("%1 ended unexpectedly (signal %2).")
                                                .arg(info.fileName())
                                                .arg(state->exitCode));
    if (state->exitCode == 0)
        co_return state->out;
    const QString message = state->err.trimmed();
    if (message.isEmpty())
        throw FFmpegError::conversionFailed(
            QStringLiteral("FFmpeg stopped with code %1.").arg(state->exitCode));
    throw FFmpegError::conversionFailed(message);
}

}  // namespace tavrelune
