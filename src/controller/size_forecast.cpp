#include "controller/size_forecast.h"

#include "controller/batch_plan.h"

#include <cmath>

namespace tavrelune {

int64_t SizeForecast::outputBytes() const
{
    int64_t total = 0;
    for (const int64_t bytes : outputs)
        total += bytes;
    return total;
}

int64_t forecastAudioBitrate(const ClipConversion& job, std::optional<int64_t> probedBitsPerSecond)
{
    if (job.settings.removeAudio)
        return 0;
    if (job.normalization)
        return partAudioKbps * job.normalization->audioTracks;
    const int tracks = job.sourceAudioTrackCount();
    // Only the first track's rate is known; the others are taken alike.
    if (job.triesAudioCopy() && probedBitsPerSecond && *probedBitsPerSecond > 0)
        return (*probedBitsPerSecond + 500) / 1000 * tracks;
    return forecastAudioKbps * tracks;
}

int64_t forecastBytes(const ClipConversion& job, std::optional<int64_t> probedAudioBitsPerSecond)
{
    if (!(job.duration > 0) || !std::isfinite(job.duration))
        return 0;
    const int64_t width = job.normalization ? job.normalization->width : job.width;
    const int64_t height = job.normalization ? job.normalization->height : job.height;
    const double kbps = static_cast<double>(bitrateKbps(job.settings.quality, width, height, job.settings.codec,
                                                              outputFps(job)))
                        + static_cast<double>(forecastAudioBitrate(job, probedAudioBitsPerSecond));
    return static_cast<int64_t>(std::llround(kbps * 1000.0 / 8.0 * job.duration));
}

SizeForecast forecastBatch(const QList<ClipItem>& clips, const EncodeSettings& settings)
{
    SizeForecast forecast;
    const BatchPlan plan = planBatch(clips, settings);
    int64_t joined = 0;
    for (const ClipItem& clip : clips) {
        const ClipConversion job = conversionFor(clip, plan, QString(), std::nullopt, std::nullopt, settings);
        const int64_t bytes = forecastBytes(job, clip.audioBitrate);
        if (!plan.combine) {
            forecast.outputs << bytes;
            continue;
        }
        forecast.parts += bytes;
        // The join encodes the parts' sound once as AAC.
        const int64_t tracks = job.settings.removeAudio ? 0 : plan.normalization->audioTracks;
        const double duration = job.duration > 0 && std::isfinite(job.duration) ? job.duration : 0;
        joined += bytes
                - static_cast<int64_t>(std::llround(double((partAudioKbps - forecastAudioKbps) * tracks) * 125.0
                                                    * duration));
    }
    if (plan.combine)
        forecast.outputs << joined;
    return forecast;
}

QString byteCountText(int64_t bytes)
{
    static const char* const units[] = {"kB", "MB", "GB", "TB"};
    double scaled = static_cast<double>(std::max<int64_t>(bytes, 0)) / 1e3;
    int unit = 0;
    while (unit < 3 && scaled >= 999.5) {
        scaled /= 1e3;
        ++unit;
    }
    if (unit == 0)  // whole kilobytes; a file of a few bytes is not "0 kB"
        return QString::number(bytes > 0 ? std::max(std::round(scaled), 1.0) : 0.0, 'f', 0) + " kB";
    // Three figures at most: "2.1 MB", "12.3 GB", "820 MB".
    return QString::number(scaled, 'f', scaled < 99.95 ? 1 : 0) + ' ' + units[unit];
}

QString forecastSummary(const SizeForecast& forecast)
{
    const qsizetype files = forecast.outputs.size();
    if (files == 0)
        return QString();
    return QStringLiteral("About %1 in %2 file%3")
        .arg(byteCountText(forecast.outputBytes()))
        .arg(files)
        .arg(files == 1 ? "" : "s");
}

}  // namespace tavrelune
