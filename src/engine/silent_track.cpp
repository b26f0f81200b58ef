// The silent-first-track check and FFmpegService::firstAudioTrackSilent.
#include "engine/silent_track.h"

#include "engine/ffmpeg_service.h"
#include "engine/probe_report.h"

#include <algorithm>
#include <cmath>

namespace tavrelune {

QStringList trackPeakArguments(const QString& input, int track)
{
    // One frame of the whole span, so astats reports once for all of it.
    const int samples = static_cast<int>(silenceCheckSeconds * 48000);
    return {QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"), QStringLiteral("-loglevel"),
            QStringLiteral("error"), QStringLiteral("-t"), QString::number(silenceCheckSeconds),
            QStringLiteral("-i"), input, QStringLiteral("-map"), QStringLiteral("0:a:%1").arg(track),
            QStringLiteral("-af"),
            QStringLiteral("aresample=48000,asetnsamples=n=%1:p=0,astats=metadata=1:reset=1,"
                           "ametadata=mode=print:key=lavfi.astats.Overall.Peak_level:file=-")
                .arg(samples),
            QStringLiteral("-f"), QStringLiteral("null"), QStringLiteral("-")};
}

std::optional<double> parseTrackPeak(const QString& output)
{
    const QLatin1String key("lavfi.astats.Overall.Peak_level=");
    std::optional<double> loudest;
    for (const QString& line : output.split(QLatin1Char('\n'))) {
        if (!line.startsWith(key))
            continue;
        // Digital silence reads "-inf", which parseDecimal takes.
        const auto peak = ProbeReport::parseDecimal(QStringView(line).mid(key.size()).trimmed());
        if (peak && !std::isnan(*peak))
            loudest = loudest ? std::max(*loudest, *peak) : *peak;
    }
    return loudest;
}

QString silentFirstTrackNotice(const QStringList& clipNames)
{
    return QStringLiteral("The first audio track is silent in %1; the other tracks were kept.")
        .arg(clipNames.join(QStringLiteral(", ")));
}

QCoro::Task<bool> FFmpegService::firstAudioTrackSilent(QString path, int tracks, std::stop_token stop)
{
    const auto silent = [](const std::optional<double>& peak) { return peak && *peak <= silencePeakDb; };
    const QString ffmpeg = binaryPath(QStringLiteral("ffmpeg"));
    if (tracks < 2 || !silent(parseTrackPeak(co_await run(ffmpeg, trackPeakArguments(path, 0), false, {}, stop))))
        co_return false;
    for (int track = 1; track < tracks; ++track) {
        const auto peak = parseTrackPeak(co_await run(ffmpeg, trackPeakArguments(path, track), false, {}, stop));
        if (peak && !silent(peak))
            co_return true;
    }
    co_return false;
}

}  // namespace tavrelune
