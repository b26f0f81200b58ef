// FFmpegService::probe: ffprobe's JSON report of one file.
#include "engine/ffmpeg_service.h"

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
    co_return info;
}

}  // namespace tavrelune
