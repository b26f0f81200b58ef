#include "engine/video_encoder.h"

namespace tavrelune {

VideoEncoder softwareEncoder(VideoCodec codec)
{
    // Presets measured with bench/export_bench.sh (graded 1080p30 with a
    // LUT at the "High" bitrate, two cores). The grade filters hold the
    // export near half real time whatever the preset, so slower presets cost
    // less than usual. x264 "faster" matches "medium" (SSIM 0.9974 both) at
    // 1.2x its speed. HEVC gets 28% less bitrate, so x265 needs more effort
    // to look right: "fast" reaches SSIM 0.9957 where "superfast" stays at
    // 0.9933; "medium" adds 0.0006 for another 11% of the time.
    // x265 prints its own banner and statistics to standard error, which
    // would read as an error message; log-level=error keeps it quiet.
    if (codec == VideoCodec::h264)
        return {QStringLiteral("libx264"), QStringLiteral("x264 (software)"),
                {QStringLiteral("-preset"), QStringLiteral("faster")}, false};
    return {QStringLiteral("libx265"), QStringLiteral("x265 (software)"),
            {QStringLiteral("-preset"), QStringLiteral("fast"), QStringLiteral("-x265-params"),
             QStringLiteral("log-level=error")},
            false};
}

std::vector<VideoEncoder> hardwareCandidates(VideoCodec codec)
{
    // p5 is NVENC's "slow": still many times real time, and closer to the
    // software encoders' quality at the same bitrate than the default p4.
    const QStringList nvencOptions{QStringLiteral("-preset"), QStringLiteral("p5")};
    if (codec == VideoCodec::h264)
        return {{QStringLiteral("h264_nvenc"), QStringLiteral("NVENC (hardware)"), nvencOptions, true}};
    return {{QStringLiteral("hevc_nvenc"), QStringLiteral("NVENC (hardware)"), nvencOptions, true}};
}

QStringList parseEncoderList(const QString& listing)
{
    QStringList names;
    bool inTable = false;
    for (const QString& line : listing.split(QLatin1Char('\n'))) {
        const QStringList columns = line.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (!inTable) {
            // The legend above the rule uses the same shape ("V..... = Video").
            inTable = columns.size() == 1 && columns.first().startsWith(QLatin1String("---"));
            continue;
        }
        if (columns.size() >= 2 && columns.first().size() == 6)
            names << columns.at(1);
    }
    return names;
}

QStringList encoderTrialArguments(const VideoEncoder& encoder)
{
    return QStringList{QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"),
                       QStringLiteral("-loglevel"), QStringLiteral("error"),
                       QStringLiteral("-f"), QStringLiteral("lavfi"),
                       QStringLiteral("-i"), QStringLiteral("color=black:size=256x256:rate=25"),
                       QStringLiteral("-frames:v"), QStringLiteral("1"),
                       QStringLiteral("-c:v"), encoder.name}
        + encoder.options
        + QStringList{QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"),
                      QStringLiteral("-f"), QStringLiteral("null"), QStringLiteral("-")};
}

EncoderCatalog EncoderCatalog::software()
{
    return {};
}

VideoEncoder EncoderCatalog::encoder(VideoCodec codec) const
{
    return codec == VideoCodec::h264 ? h264_ : hevc_;
}

void EncoderCatalog::setEncoder(VideoCodec codec, VideoEncoder encoder)
{
    (codec == VideoCodec::h264 ? h264_ : hevc_) = std::move(encoder);
}

}  // namespace tavrelune
