// FFmpegService::detectEncoders: which video encoders work on this machine.
#include "engine/ffmpeg_service.h"

#include "async/next_signal.h"

namespace tavrelune {

void FFmpegService::pinEncoders(EncoderCatalog catalog)
{
    encoders_ = std::move(catalog);
    const bool wasRunning = detection_ == DetectionState::running;
    detection_ = DetectionState::settled;
    if (wasRunning)
        Q_EMIT detectionSettled_->settled();
}

QCoro::Task<bool> FFmpegService::encoderWorks(QString ffmpeg, VideoEncoder candidate,
                                              std::stop_token stop)
{
    std::exception_ptr failure;
    try {
        co_await run(ffmpeg, encoderTrialArguments(candidate), false, {}, stop);
    } catch (...) {
        failure = std::current_exception();
    }
    if (isCancellation(failure))
        std::rethrow_exception(failure);
    co_return !failure;
}

QCoro::Task<void> FFmpegService::detectEncoders(std::stop_token stop)
{
    // Another caller's detection is under way: wait for it. If it was
    // stopped, detect here unless this caller is stopping too.
    while (detection_ == DetectionState::running) {
        co_await nextSignal(detectionSettled_.get(), &EncoderDetectionSignal::settled);
        if (stop.stop_requested())
            throw FFmpegError::cancelled();
    }
    if (detection_ == DetectionState::settled)
        co_return;

    detection_ = DetectionState::running;
    EncoderCatalog found = EncoderCatalog::software();
    std::exception_ptr failure;
    try {
        const QString ffmpeg = binaryPath(QStringLiteral("ffmpeg"));
        // Named, not braced inside the co_await: GCC 12 rejects that.
        const QStringList listArguments{QStringLiteral("-hide_banner"), QStringLiteral("-encoders")};
        const QString listing = co_await run(ffmpeg, listArguments, false, {}, stop);
        const QStringList listed = parseEncoderList(listing);
        for (VideoCodec codec : allVideoCodecs) {
            const std::vector<VideoEncoder> candidates = hardwareCandidates(codec);
            for (const VideoEncoder& candidate : candidates) {
                if (listed.contains(candidate.name) && co_await encoderWorks(ffmpeg, candidate, stop)) {
                    found.setEncoder(codec, candidate);
                    break;
                }
            }
        }
    } catch (...) {
        failure = std::current_exception();
    }

    // A pin made meanwhile wins over what was found.
    if (detection_ == DetectionState::running) {
        if (isCancellation(failure)) {
            detection_ = DetectionState::pending;
        } else {
            encoders_ = found;
            detection_ = DetectionState::settled;
        }
        Q_EMIT detectionSettled_->settled();
    }
    if (isCancellation(failure))
        std::rethrow_exception(failure);
}

}  // namespace tavrelune
