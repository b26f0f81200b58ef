// FFmpegService::probe: ffprobe's JSON report of one file.
#include "engine/ffmpeg_service.h"

#include "engine/probe_report.h"

namespace tavrelune {

QCoro::Task<MediaInfo> FFmpegService::probe(QString path, std::stop_token stop)
{
    const QString report = co_await run(binaryPath(QStringLiteral("ffprobe")),
                                        ProbeReport::arguments(path), false, {}, stop);
    co_return ProbeReport::parse(report);
}

}  // namespace tavrelune
