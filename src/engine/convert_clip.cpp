// FFmpegService::convertClip: one clip to one MP4 file.
#include "engine/ffmpeg_service.h"

#include <QFileInfo>

namespace tavrelune {

QCoro::Task<void> FFmpegService::runConversion(QStringList arguments, double duration,
                                               ProgressCallback onProgress, std::stop_token stop)
{
    LineCallback onLine;
    if (onProgress) {
        onLine = [duration, onProgress](const QString& line) {
            if (const auto fraction = progressFraction(line, duration))
                onProgress(*fraction);
        };
    }
    co_await run(binaryPath(QStringLiteral("ffmpeg")), std::move(arguments), true, std::move(onLine),
                 stop);
}

QCoro::Task<void> FFmpegService::convertClip(ClipConversion job, ProgressCallback onProgress,
                                             std::stop_token stop)
{
    co_await detectEncoders(stop);
    const VideoEncoder videoEncoder = encoder(job.settings.codec);

    std::exception_ptr failure;
    try {
        co_await runConversion(conversionArguments(job, videoEncoder), job.duration, onProgress, stop);
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure) {
        // MP4 takes fewer audio codecs than the sources bring (PCM from
        // cameras, for one); the copy is the only step that can hit that.
        if (!job.triesAudioCopy() || !isAudioCopyFailure(describe(failure)))
            std::rethrow_exception(failure);
        job.settings.copyAudio = false;
        co_await runConversion(conversionArguments(job, videoEncoder), job.duration, onProgress, stop);
    }
    // The output may have been created empty beforehand, as a claim.
    if (QFileInfo(job.output).size() <= 0)
        throw FFmpegError::conversionFailed(QStringLiteral("Output file was not created."));
}

}  // namespace tavrelune
