// FFmpegService::probe: ffprobe's JSON report of one file.
#include "engine/ffmpeg_service.h"

#include "engine/field_detection.h"
#include "engine/probe_report.h"

namespace tavrelune {

QCoro::Task<MediaInfo> FFmpegService::probe(QString path, std::stop_token stop)
{
    const QString ffprobe = binaryPath(QStringLiteral("ffprobe"));
    const QString report = co_await run(ffprobe, ProbeReport::arguments(path), false, {}, stop);
    MediaInfo info = ProbeReport::parse(report);
    if (!(info.duration > 0) && info.width > 0) {
        // No stated length: the packets say how far the picture goes, so
        // trims, progress and the time left work.
        const QString packets = co_await run(ffprobe, ProbeReport::packetArguments(path), false, {}, stop);
        info.duration = ProbeReport::durationFromPackets(packets, ProbeReport::startTime(report));
    }
    if (info.width > 0 && !info.interlaced && !ProbeReport::statesFieldOrder(report))
        info.interlaced = co_await picturedAsFields(path, stop);
    co_return info;
}

QCoro::Task<bool> FFmpegService::picturedAsFields(QString path, std::stop_token stop)
{
    QString verdicts;
    std::exception_ptr failure;
    try {
        verdicts = co_await run(binaryPath(QStringLiteral("ffmpeg")), FieldDetection::arguments(path), false, {},
                                stop);
    } catch (...) {
        failure = std::current_exception();
    }
    // Only a hint: a file ffmpeg cannot judge is taken as whole frames.
    if (failure && isCancellation(failure))
        std::rethrow_exception(failure);
    co_return FieldDetection::looksInterlaced(verdicts);
}

}  // namespace tavrelune
