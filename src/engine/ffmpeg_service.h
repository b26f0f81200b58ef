// The one service that runs the external ffmpeg and ffprobe programs.
//
// Threading: main thread only. Operations are coroutines on the Qt event loop;
// child output and termination arrive as Qt signals on the same thread, so
// callbacks (`onStdout`, `onProgress`) run on the main thread too.
//
// Cancellation: every operation takes a std::stop_token. A stop request
// (made on the main thread) terminates that operation's child and the
// operation fails with FFmpegError::cancelled. `cancel()` stops only the
// tracked conversion child. A child that ignores SIGTERM is killed after a
// grace period; children run in their own process group (a terminal's Ctrl-C
// reaches only this application) and are terminated if this process dies.
//
// Ownership: the controller owns one instance for the application's life.
// Every argument of a coroutine is taken by value, because the caller's
// temporaries are gone by the time the coroutine resumes.
#pragma once

#include "engine/ffmpeg_error.h"
#include "engine/tool_locator.h"
#include "model/media_info.h"

#include <QPointer>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <stop_token>

#include <qcoro/qcorotask.h>

namespace tavrelune {

struct RunState;

class FFmpegService {
public:
    using LineCallback = std::function<void(const QString& line)>;

    explicit FFmpegService(ToolLocator locator = ToolLocator::fromEnvironment());
    ~FFmpegService();
    FFmpegService(const FFmpegService&) = delete;
    FFmpegService& operator=(const FFmpegService&) = delete;

    // Full path of "ffmpeg" or "ffprobe" by the locator's search order.
    QString binaryPath(const QString& toolName) const;

    // Runs one child to its end and returns its standard output as text.
    // Fails with FFmpegError (missing tool, non-zero exit, cancelled) or with
    // PlatformError when the child cannot be started.
    QCoro::Task<QString> run(QString executable, QStringList arguments, bool trackAsConversion,
                             LineCallback onStdout, std::stop_token stop);

    // Stops the tracked conversion child, if any; its run fails with cancelled.
    void cancel();

    // Duration, size, codec, frame rate and audio presence of a media file.
    QCoro::Task<MediaInfo> probe(QString path, std::stop_token stop = {});

    // How long a terminated child may take before it is killed.
    void setKillGracePeriod(int milliseconds) { killGraceMs_ = milliseconds; }

private:
    struct TrackedChild {
        QPointer<QProcess> process;
        std::shared_ptr<RunState> state;
    };

    void stopChild(QProcess* process, RunState& state);

    ToolLocator locator_;
    TrackedChild conversion_;
    int killGraceMs_ = 5000;
};

}  // namespace tavrelune
