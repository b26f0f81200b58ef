#include "engine/clip_conversion.h"

#include "engine/decimal_text.h"
#include "engine/ffmpeg_service.h"
#include "engine/export_colour.h"

#include <algorithm>
#include <cmath>

namespace tavrelune {

namespace {

// The length the output is cut to: a trim's whole frames; a part's whole
// length on the batch's frame grid (its audio is padded to that); else
// none.
double outputLength(const ClipConversion& job)
{
    if (job.trim)
        return frameSpan(job.startTime, job.duration, job.fps).length;
    if (job.normalization && job.duration > 0)
        return frameSpan(0, job.duration, job.normalization->fps).length;
    return 0;
}

bool copiesTrack(const ClipConversion& job, const AudioTrack& track)
{
    return job.settings.copyAudio && !job.normalization && !job.trim
        && (track.codec.isEmpty() || belongsInMp4(track.codec));
}

// One clip on its own: each track copied when it can be, else AAC that
// keeps a mono track mono (four mono camera microphones stay four) and
// brings anything wider to stereo.
QStringList separateTrackArguments(const ClipConversion& job)
{
    const int count = job.sourceAudioTrackCount();
    QStringList arguments;
    for (int index = 0; index < count; ++index)
        // "?" keeps a clip whose probe was wrong about audio from failing.
        arguments << QStringLiteral("-map") << QStringLiteral("0:a:%1?").arg(index);
    for (int index = 0; index < count; ++index) {
        const AudioTrack track = index < job.audioTracks.size() ? job.audioTracks[index] : AudioTrack{};
        const QString stream = QStringLiteral(":a:%1").arg(index);
        if (copiesTrack(job, track)) {
            arguments << QStringLiteral("-c") + stream << QStringLiteral("copy");
            continue;
        }
        arguments << QStringLiteral("-c") + stream << QStringLiteral("aac") << QStringLiteral("-ar") + stream
                  << QStringLiteral("48000") << QStringLiteral("-ac") + stream
                  << (track.channels == 1 ? QStringLiteral("1") : QStringLiteral("2"))
                  << QStringLiteral("-b") + stream << QStringLiteral("192k");
    }
    return arguments;
}

QStringList audioArguments(const ClipConversion& job)
{
    const QString noAudio = QStringLiteral("-an");
    if (job.settings.removeAudio)
        return {noAudio};
    if (!job.normalization)
        return job.hasAudio ? separateTrackArguments(job) : QStringList{noAudio};
    // A part: the batch's layout of stereo tracks, the clip's own first and
    // silence after them. Uncompressed, and padded with silence to the
    // part's length: the join encodes the audio once, and each part's sound
    // lasts exactly as long as its picture, so nothing drifts at the joins.
    const int layout = job.normalization->audioTracks;
    if (layout <= 0)
        return {noAudio};
    const int own = std::min(job.sourceAudioTrackCount(), layout);
    QStringList arguments;
    for (int index = 0; index < own; ++index)
        arguments << QStringLiteral("-map") << QStringLiteral("0:a:%1?").arg(index);
    // The silence is the last input: after the watermark when there is one.
    const QString silence = job.watermark ? QStringLiteral("2:a:0") : QStringLiteral("1:a:0");
    for (int index = own; index < layout; ++index)
        arguments << QStringLiteral("-map") << silence;
    arguments << QStringLiteral("-c:a") << QStringLiteral("pcm_s16le") << QStringLiteral("-ar")
              << QStringLiteral("48000") << QStringLiteral("-ac") << QStringLiteral("2");
    // Endless padding needs a known length to stop at.
    if (outputLength(job) > 0)
        arguments << QStringLiteral("-af") << QStringLiteral("apad");
    else if (job.needsSilence())
        arguments << QStringLiteral("-shortest");
    return arguments;
}

}  // namespace

bool belongsInMp4(const QString& audioCodec)
{
    static const QStringList codecs{QStringLiteral("aac"), QStringLiteral("mp3"), QStringLiteral("ac3"),
                                    QStringLiteral("eac3"), QStringLiteral("alac")};
    return codecs.contains(audioCodec);
}

int ClipConversion::sourceAudioTrackCount() const
{
    if (!hasAudio)
        return 0;
    return audioTracks.isEmpty() ? 1 : static_cast<int>(audioTracks.size());
}

bool ClipConversion::needsSilence() const
{
    return !settings.removeAudio && normalization && normalization->audioTracks > sourceAudioTrackCount();
}

bool ClipConversion::triesAudioCopy() const
{
    if (!hasAudio || settings.removeAudio)
        return false;
    if (audioTracks.isEmpty())
        return copiesTrack(*this, {});
    return std::any_of(audioTracks.begin(), audioTracks.end(),
                       [this](const AudioTrack& track) { return copiesTrack(*this, track); });
}

QStringList videoEncodingArguments(const VideoEncoder& encoder, VideoCodec codec, int64_t bitrateKbps)
{
    QStringList arguments{QStringLiteral("-c:v"), encoder.name,
                          QStringLiteral("-b:v"), QString::number(bitrateKbps) + QLatin1Char('k')};
    arguments << encoder.options << QStringLiteral("-pix_fmt") << QStringLiteral("yuv420p");
    if (codec == VideoCodec::hevc)
        arguments << QStringLiteral("-tag:v") << QStringLiteral("hvc1");
    return arguments;
}

FrameSpan frameSpan(double inPoint, double length, double fps)
{
    if (!(fps > 0) || !std::isfinite(fps) || !(length > 0))
        return {std::max(inPoint, 0.0), length};
    // A whisker of tolerance: times set on the frame grid come back from
    // decimal text a hair below it.
    constexpr double tolerance = 1e-6;
    const double first = std::floor(std::max(inPoint, 0.0) * fps + tolerance);
    const double end = std::ceil((inPoint + length) * fps - tolerance);  // first frame left out
    const double frames = std::max(end - first, 1.0);
    // Just before the frame's start: far enough for timestamps a tick off
    // the grid, near enough that the frame keeps its place in a constant
    // rate output (half a frame early would shift every frame by one slot).
    const double lead = std::min(0.001, 0.25 / fps);
    return {first > 0 ? first / fps - lead : 0.0, frames / fps};
}

double outputFps(const ClipConversion& job)
{
    return job.normalization ? job.normalization->fps : job.fps;
}

ColorTags outputColour(const ClipConversion& job)
{
    const int64_t width = job.normalization ? job.normalization->width : job.width;
    const int64_t height = job.normalization ? job.normalization->height : job.height;
    return ExportColour::outputTags(job.sourceColor, width, height, job.normalization.has_value());
}

QStringList conversionArguments(const ClipConversion& job, const VideoEncoder& encoder)
{
    const int64_t width = job.normalization ? job.normalization->width : job.width;
    const int64_t height = job.normalization ? job.normalization->height : job.height;
    const ColorTags output = outputColour(job);
    const QString toOutput = ExportColour::outputConversion(output);
    QStringList gradeFilters;
    if (job.settings.matchPreview) {
        if (job.bakedCube && !job.bakedCube->isEmpty())
            gradeFilters << QStringLiteral("lut3d=file=") + FFmpegService::escapeFilterPath(*job.bakedCube)
                                + QStringLiteral(":interp=tetrahedral");
    } else {
        gradeFilters = FFmpegService::gradeFilters(job.lutPath, job.grade);
    }
    // With a watermark the chain ends in RGB, blended there, and converted after.
    // Fields become whole frames first, at the frame rate (bwdif, on YUV):
    // the file keeps the source's rate, frame count and trim grid.
    // Irregular frame times go onto the grid of the standard rate nearest
    // their average (parts of a combined export get the batch's rate).
    const QString constantRate = job.constantRate && !job.normalization && job.fps > 0
                                     ? QStringLiteral("fps=") + fixedDecimal(job.fps, 3) + QLatin1Char(',')
                                     : QString();
    // Non-square pixels become square at the shown size, so the watermark,
    // placed and sized on the shown picture, keeps its shape in the file.
    const QString squarePixels = job.squarePixels && job.width > 0 && job.height > 0
                                     ? QStringLiteral("scale=%1:%2,setsar=1,").arg(job.width).arg(job.height)
                                     : QString();
    const QString grade =
        (job.deinterlace ? QStringLiteral("bwdif=mode=send_frame:parity=auto:deint=all,") : QString()) + constantRate
        + squarePixels
        + ExportColour::videoGraph(job.sourceColor, job.width, job.height, job.deliveryTables, gradeFilters,
                                 job.normalization, job.watermark ? QString() : toOutput);

    QStringList arguments{QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"),
                          QStringLiteral("-loglevel"), QStringLiteral("error"), QStringLiteral("-y")};
    // Seeking before the input is fast; "-t" after it limits the output.
    const FrameSpan span = frameSpan(job.startTime, job.duration, job.fps);
    if (job.trim && span.seek > 0.001)
        arguments << QStringLiteral("-ss") << fixedDecimal(span.seek, 6);
    arguments << QStringLiteral("-i") << job.input;
    if (job.watermark)
        arguments << QStringLiteral("-i") << job.watermark->imagePath;
    if (job.needsSilence())
        arguments << QStringLiteral("-f") << QStringLiteral("lavfi") << QStringLiteral("-i")
                  << QStringLiteral("anullsrc=channel_layout=stereo:sample_rate=48000");
    if (job.watermark) {
        arguments << QStringLiteral("-filter_complex")
                  << FFmpegService::watermarkFilterComplex(
                         grade, *job.watermark, width, height, toOutput,
                         job.normalization ? std::optional(FFmpegService::partPicture(*job.normalization, job.width,
                                                                                      job.height))
                                           : std::nullopt)
                  << QStringLiteral("-map") << QStringLiteral("[vout]");
    } else {
        arguments << QStringLiteral("-vf") << grade << QStringLiteral("-map") << QStringLiteral("0:v:0");
    }
    arguments << videoEncodingArguments(
        encoder, job.settings.codec,
        bitrateKbps(job.settings.quality, width, height, job.settings.codec, outputFps(job)));
    arguments << ExportColour::outputColorArguments(output);
    arguments << QStringLiteral("-sn");
    if (const double length = outputLength(job); length > 0)
        arguments << QStringLiteral("-t") << fixedDecimal(length, 6);
    arguments << audioArguments(job);
    arguments << QStringLiteral("-movflags") << QStringLiteral("+faststart")
              << QStringLiteral("-progress") << QStringLiteral("pipe:1")
              << QStringLiteral("-nostats") << job.output;
    return arguments;
}

bool isAudioCopyFailure(const QString& description)
{
    const QString text = description.toLower();
    return text.contains(QLatin1String("audio")) || text.contains(QLatin1String("codec"))
        || text.contains(QLatin1String("incompatible"));
}

std::optional<double> progressFraction(QStringView line, double duration)
{
    const QLatin1String key("out_time_ms=");
    if (!(duration > 0) || !line.startsWith(key))
        return std::nullopt;
    bool parsed = false;
    const double microseconds = line.mid(key.size()).toDouble(&parsed);
    if (!parsed)
        return std::nullopt;
    const double fraction = microseconds / 1'000'000.0 / duration;
    if (std::isnan(fraction))
        return 0.0;
    return std::clamp(fraction, 0.0, 1.0);
}

}  // namespace tavrelune
