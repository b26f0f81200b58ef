// The runner against real child processes: small shell scripts give the exit
// codes, signals and output shapes that real tools won't produce on demand.
#include "engine/ffmpeg_service.h"
#include "support/media_fixtures.h"
#include "support/task_helpers.h"
#include "support/temp_folder.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace tavrelune;
using namespace tavrelune::test;

namespace {

class ProcessRunnerTest : public ::testing::Test {
protected:
    QString tool(const QString& body)
    {
        writeFakeTool(folder.path(), "tool", body);
        return folder.file("tool");
    }

    QString runToEnd(const QString& executable, FFmpegService::LineCallback onStdout = {},
                     std::stop_token stop = {})
    {
        return waitForTask(service.run(executable, {}, false, std::move(onStdout), stop));
    }

    static FFmpegError ffmpegErrorOf(std::exception_ptr failure)
    {
        try {
            std::rethrow_exception(failure);
        } catch (const FFmpegError& error) {
            return error;
        }
    }

    std::exception_ptr failureRunning(const QString& executable, std::stop_token stop = {},
                                      bool track = false)
    {
        return failureOf(service.run(executable, {}, track, {}, stop));
    }

    TempFolder folder;
    FFmpegService service{ToolLocator({})};
};

}  // namespace

TEST_F(ProcessRunnerTest, ExitStatusBecomesOutputOrError)
{
    struct Case {
        const char* script;
        std::optional<FFmpegError> expected;  // none: success
    };
    const Case cases[] = {
        {"echo out; exit 0", std::nullopt},
        {"exit 1", FFmpegError::conversionFailed("FFmpeg stopped with code 1.")},
        {"exit 255", FFmpegError::conversionFailed("FFmpeg stopped with code 255.")},
        {"printf '\\n  \\n  moov atom not found \\t\\n\\n' >&2; exit 1",
         FFmpegError::conversionFailed("moov atom not found")},
        {"echo 'first\nsecond' >&2; exit 3", FFmpegError::conversionFailed("first\nsecond")},
        // Nobody asked for these stops: they are failures, never "stopped".
        {"echo ignored; exit 15", FFmpegError::conversionFailed("FFmpeg stopped with code 15.")},
        {"kill -KILL $$", FFmpegError::conversionFailed("tool ended unexpectedly (signal 9).")},
        {"kill -SEGV $$", FFmpegError::conversionFailed("tool ended unexpectedly (signal 11).")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.script);
        const std::exception_ptr failure = failureRunning(tool(c.script));
        if (!c.expected) {
            EXPECT_FALSE(failure);
            continue;
        }
        ASSERT_TRUE(failure);
        EXPECT_EQ(ffmpegErrorOf(failure), *c.expected);
    }
}

TEST_F(ProcessRunnerTest, StandardOutputReachesTheCallbackLineByLineAndChunkByChunk)
{
    QStringList lines;
    const QString out = runToEnd(
        tool("printf 'one\\ntwo\\r\\nthree\\n'; sleep 0.3; printf 'par'; sleep 0.3; printf 'tial\\n'"),
        [&lines](const QString& line) { lines << line; });
    EXPECT_EQ(out, "one\ntwo\r\nthree\npartial\n");
    EXPECT_EQ(lines, (QStringList{"one", "two", "three", "par", "tial"}));
}

TEST_F(ProcessRunnerTest, InvalidUtf8ChunksAreDroppedWhole)
{
    const QString out = runToEnd(tool("printf 'bad \\377\\n'; sleep 0.3; printf 'caf\\303\\251\\n'"));
    EXPECT_EQ(out, QString::fromUtf8("café\n"));
}

TEST_F(ProcessRunnerTest, LargeOutputDoesNotBlockTheChild)
{
    // Far more than a pipe holds, on both streams at once.
    const QString out = runToEnd(
        tool("head -c 3000000 /dev/zero | tr '\\0' e >&2 & head -c 5000000 /dev/zero | tr '\\0' o; wait"));
    EXPECT_EQ(out.size(), 5000000);
}

TEST_F(ProcessRunnerTest, StandardInputIsTheNullDeviceAndChildrenHaveTheirOwnGroup)
{
    // `cat` would wait forever on an inherited terminal or pipe.
    const QString out = runToEnd(tool("cat; cut -d' ' -f5 /proc/$$/stat"));
    const qint64 childGroup = out.trimmed().toLongLong();
    EXPECT_GT(childGroup, 0);
    EXPECT_NE(childGroup, static_cast<qint64>(getpgrp()));
}

TEST_F(ProcessRunnerTest, MissingAndUnstartableTools)
{
    const auto missing = failureRunning(folder.file("ffprobe"));
    ASSERT_TRUE(missing);
    EXPECT_EQ(ffmpegErrorOf(missing), FFmpegError::missingBinary("ffprobe"));
    EXPECT_EQ(describe(missing),
              "ffprobe was not found. Install FFmpeg (for example the Debian package ffmpeg).");

    // Executable bits on something that is not a program: the platform's error.
    const QString garbage = folder.write("garbage", "\x7f" "ELF not really");
    QFile::setPermissions(garbage, QFile::ReadOwner | QFile::ExeOwner);
    const auto unstartable = failureRunning(garbage);
    ASSERT_TRUE(unstartable);
    EXPECT_FALSE(isCancellation(unstartable));
    try {
        std::rethrow_exception(unstartable);
    } catch (const PlatformError& error) {
        EXPECT_FALSE(error.description().isEmpty());
    } catch (...) {
        FAIL() << "expected the platform's start error";
    }
}

TEST_F(ProcessRunnerTest, StopBeforeStartRunsNothing)
{
    std::stop_source source;
    source.request_stop();
    const auto failure = failureRunning(tool("touch '" + folder.file("ran") + "'"), source.get_token());
    EXPECT_TRUE(isCancellation(failure));
    EXPECT_FALSE(QFile::exists(folder.file("ran")));
}

TEST_F(ProcessRunnerTest, StopWhileRunningEndsTheChildEvenIfItExitsCleanly)
{
    // Like ffmpeg: SIGTERM makes it finish up and exit with a plain status.
    const QString script = tool("echo $$ > '" + folder.file("pid") + "'; trap 'exit 0' TERM; "
                                "while true; do sleep 0.05; done");
    std::stop_source source;
    stopLater(source, 300);
    QElapsedTimer clock;
    clock.start();
    const auto failure = failureRunning(script, source.get_token());
    EXPECT_TRUE(isCancellation(failure));
    EXPECT_LT(clock.elapsed(), 3000);
    QFile pidFile(folder.file("pid"));
    ASSERT_TRUE(pidFile.open(QIODevice::ReadOnly));
    const qint64 pid = pidFile.readAll().trimmed().toLongLong();
    EXPECT_FALSE(processExists(pid)) << "child must be ended and reaped";
    EXPECT_TRUE(livingChildren().isEmpty());
}

TEST_F(ProcessRunnerTest, StopAfterTheChildEndedChangesNothing)
{
    std::stop_source source;
    EXPECT_EQ(runToEnd(tool("echo done"), {}, source.get_token()), "done\n");
    source.request_stop();
    spinEventLoop(50);
}

TEST_F(ProcessRunnerTest, ChildIgnoringTerminateIsKilledAfterTheGracePeriod)
{
    service.setKillGracePeriod(300);
    const QString script = tool("trap '' TERM; while true; do sleep 0.05; done");
    std::stop_source source;
    stopLater(source, 200);
    QElapsedTimer clock;
    clock.start();
    EXPECT_TRUE(isCancellation(failureRunning(script, source.get_token())));
    EXPECT_LT(clock.elapsed(), 3000);
    spinEventLoop(100);
    EXPECT_TRUE(livingChildren().isEmpty());
}

TEST_F(ProcessRunnerTest, CancelStopsOnlyTheTrackedConversion)
{
    service.cancel();  // nothing running: no effect, no failure

    writeFakeTool(folder.path(), "slowprobe", "sleep 0.6; echo probed");
    writeFakeTool(folder.path(), "convert", "trap 'exit 255' TERM; while true; do sleep 0.05; done");
    QCoro::Task<QString> probe = service.run(folder.file("slowprobe"), {}, false, {}, {});
    QCoro::Task<QString> conversion = service.run(folder.file("convert"), {}, true, {}, {});
    QTimer::singleShot(200, [this] { service.cancel(); });

    EXPECT_TRUE(isCancellation(failureOf(std::move(conversion))));
    EXPECT_EQ(waitForTask(std::move(probe)), "probed\n");
    service.cancel();  // the tracked child is gone: again no effect
}

namespace {

// Runs `onPostedCall` before the first queued call that reaches the
// application object: the runner resumes its waiting task that way once the
// child has ended, so this lands between the end and the resumption.
class BeforeQueuedCall : public QObject {
public:
    explicit BeforeQueuedCall(std::function<void()> onPostedCall) : onPostedCall_(std::move(onPostedCall))
    {
        QCoreApplication::instance()->installEventFilter(this);
    }
    bool eventFilter(QObject* target, QEvent* event) override
    {
        if (target == QCoreApplication::instance() && event->type() == QEvent::MetaCall && onPostedCall_)
            std::exchange(onPostedCall_, {})();
        return false;
    }
    bool fired() const { return !onPostedCall_; }

private:
    std::function<void()> onPostedCall_;
};

}  // namespace

TEST_F(ProcessRunnerTest, AStopAfterTheChildEndedButBeforeItsRunResumedIsNoCancellation)
{
    std::stop_source source;
    QCoro::Task<QString> conversion = service.run(tool("echo finished"), {}, true, {}, source.get_token());
    const BeforeQueuedCall stop([&] {
        service.cancel();
        source.request_stop();
    });
    EXPECT_EQ(waitForTask(std::move(conversion)), "finished\n");
    EXPECT_TRUE(stop.fired());
}
