// Helpers shared by the engine's export tests.
#pragma once

#include "engine/ffmpeg_service.h"
#include "support/media_fixtures.h"

#include <unistd.h>

#include <qcoro/qcorotask.h>

// Tests build jobs with designated initializers; GCC 12 warns about every
// member left to its default there.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

namespace tavrelune::test {

// Fastest presets: these tests check what is exported, not how well.
inline EncoderCatalog quickSoftwareEncoders()
{
    EncoderCatalog catalog;
    catalog.setEncoder(VideoCodec::h264, {"libx264", "x264", {"-preset", "ultrafast"}, false});
    catalog.setEncoder(VideoCodec::hevc, {"libx265", "x265",
                                          {"-preset", "ultrafast", "-x265-params", "log-level=error"}, false});
    return catalog;
}

// QCoro keeps its own exception_ptr beside a task's value, so the value
// cannot be one; and QCoro::waitFor never returns after a throw.
struct TaskOutcome {
    std::exception_ptr failure;
};

inline QCoro::Task<TaskOutcome> capturedFailure(QCoro::Task<void> task)
{
    try {
        co_await std::move(task);
    } catch (...) {
        co_return TaskOutcome{std::current_exception()};
    }
    co_return TaskOutcome{};
}

// Runs the task to its end; the error it failed with, if any (any other
// exception than FFmpegError comes back as its description).
inline std::optional<FFmpegError> failureOf(QCoro::Task<void> task)
{
    const auto failure = QCoro::waitFor(capturedFailure(std::move(task))).failure;
    try {
        if (failure)
            std::rethrow_exception(failure);
    } catch (const FFmpegError& error) {
        return error;
    } catch (...) {
        return FFmpegError::conversionFailed(describe(failure));
    }
    return std::nullopt;
}

inline QString ffmpegChildren()
{
    return QString::fromUtf8(runTool("pgrep", {"-P", QString::number(getpid()), "ffmpeg"}).out);
}

}  // namespace tavrelune::test
