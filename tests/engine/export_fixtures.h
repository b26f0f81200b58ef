// Helpers shared by the engine's export tests.
#pragma once

#include "async/blocking_wait.h"
#include "engine/ffmpeg_service.h"
#include "support/media_fixtures.h"
#include "support/temp_folder.h"

#include <unistd.h>

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

// Runs the task to its end; the error it failed with, if any (any other
// exception than FFmpegError comes back as its description).
inline std::optional<FFmpegError> failureOf(QCoro::Task<void> task)
{
    try {
        waitForTask(std::move(task));
    } catch (const FFmpegError& error) {
        return error;
    } catch (...) {
        return FFmpegError::conversionFailed(describe(std::current_exception()));
    }
    return std::nullopt;
}

inline QString ffmpegChildren()
{
    return QString::fromUtf8(runTool("pgrep", {"-P", QString::number(getpid()), "ffmpeg"}).out);
}

// A clip with `spec` written to `path`, as a job converting it to `output`.
inline ClipConversion clipJob(const QString& path, const QString& output, const ClipSpec& spec,
                              VideoCodec codec = VideoCodec::h264)
{
    makeClip(path, spec);
    ClipConversion job{.input = path, .output = output, .duration = spec.seconds, .width = spec.width,
                       .height = spec.height, .hasAudio = spec.audio};
    job.settings.codec = codec;
    return job;
}

}  // namespace tavrelune::test
