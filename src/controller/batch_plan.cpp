#include "controller/batch_plan.h"

#include "engine/export_colour.h"

#include <algorithm>
#include <cmath>

namespace tavrelune {

namespace {

int64_t evenSide(const std::optional<int64_t>& side, int64_t fallback)
{
    const int64_t value = side.value_or(fallback);
    return std::max<int64_t>(value - value % 2, 2);
}

}  // namespace

BatchPlan planBatch(const QList<ClipItem>& clips, const EncodeSettings& settings)
{
    BatchPlan plan;
    plan.clipCount = static_cast<int>(clips.size());
    plan.combine = settings.concatenateClips && clips.size() > 1;
    if (!clips.isEmpty()) {
        const ClipItem& first = clips.first();
        plan.width = evenSide(first.width, 1920);
        plan.height = evenSide(first.height, 1080);
        const double fps = first.fps.value_or(24);
        plan.fps = fps <= 1 || std::isnan(fps) ? 1 : std::min(fps, 120.0);
    }
    if (plan.combine) {
        // As many tracks as the clip with the most: none is lost.
        int tracks = 0;
        for (const ClipItem& clip : clips)
            tracks = std::max(tracks, clip.audioTrackCount());
        plan.normalization =
            VideoNormalization{plan.width, plan.height, plan.fps, settings.removeAudio ? 0 : tracks};
    }
    return plan;
}

double exportDuration(const ClipItem& clip)
{
    if (const auto trimmed = clip.trimmedDuration())
        return *trimmed;
    return clip.duration.value_or(0.0);
}

QList<double> progressShares(const QList<ClipItem>& clips, const BatchPlan& plan)
{
    double known = 0;
    int knownCount = 0;
    for (const ClipItem& clip : clips) {
        if (const double length = exportDuration(clip); length > 0) {
            known += length;
            ++knownCount;
        }
    }
    const double typicalLength = knownCount > 0 ? known / knownCount : 1.0;
    QList<double> work;
    for (const ClipItem& clip : clips) {
        const double length = exportDuration(clip) > 0 ? exportDuration(clip) : typicalLength;
        // A part is written at the batch's size and rate.
        const double pixelRate =
            plan.normalization
                ? double(plan.normalization->width * plan.normalization->height) * plan.normalization->fps
                : double(clip.width.value_or(1920) * clip.height.value_or(1080)) * clip.fps.value_or(30);
        work << length * std::max(pixelRate, 1.0);
    }
    double total = 0;
    for (const double each : work)
        total += each;
    if (plan.combine)
        work << total / 20;
    total += plan.combine ? total / 20 : 0;
    for (double& each : work)
        each = total > 0 ? each / total : 1.0 / double(work.size());
    return work;
}

QString partsFolderPrefix()
{
    return QStringLiteral(".tavrelune-parts-");
}

QString partFileName(int position)
{
    return QString::asprintf("%03d.mov", position);
}

ClipConversion conversionFor(const ClipItem& clip, const BatchPlan& plan, const QString& output,
                             const std::optional<QString>& lutPath,
                             const std::optional<WatermarkOverlay>& watermark,
                             const EncodeSettings& settings)
{
    ClipConversion job;
    job.input = clip.url.toLocalFile();
    job.output = output;
    job.lutPath = lutPath;
    job.grade = clip.grade;
    job.settings = settings;
    job.duration = exportDuration(clip);
    job.startTime = clip.effectiveInPoint();
    job.trim = clip.isTrimmed();
    job.fps = clip.fps.value_or(0);
    job.deinterlace = clip.interlaced;
    job.constantRate = clip.variableFrameRate;
    job.squarePixels = std::abs(clip.pixelAspect - 1) > 0.001;
    job.width = clip.width.value_or(plan.width);
    job.height = clip.height.value_or(plan.height);
    job.hasAudio = clip.hasAudio;
    job.audioTracks = clip.audioTracks;
    job.normalization = plan.normalization;
    job.watermark = watermark;
    job.sourceColor = clip.color;
    return job;
}

ExpectedOutput expectedClipOutput(const ClipItem& clip, const BatchPlan& plan, const EncodeSettings& settings)
{
    ExpectedOutput expected;
    expected.codec = settings.codec;
    expected.duration = exportDuration(clip);
    if (plan.normalization) {
        // A part: fitted to the batch's size, rate and audio track layout.
        expected.width = plan.normalization->width;
        expected.height = plan.normalization->height;
        expected.fps = plan.normalization->fps;
        expected.audioTracks = plan.normalization->audioTracks;
        expected.colour = ExportColour::outputTags(clip.color, expected.width, expected.height, true);
        return expected;
    }
    // The filter graph truncates each side to an even number.
    if (clip.width && clip.height) {
        expected.width = *clip.width - *clip.width % 2;
        expected.height = *clip.height - *clip.height % 2;
    }
    expected.fps = clip.fps.value_or(plan.fps);
    expected.audioTracks = settings.removeAudio ? 0 : clip.audioTrackCount();
    expected.colour = ExportColour::outputTags(clip.color, clip.width.value_or(plan.width),
                                               clip.height.value_or(plan.height), false);
    return expected;
}

ExpectedOutput expectedJoinedOutput(const BatchPlan& plan, const EncodeSettings& settings, double partsDuration)
{
    ExpectedOutput expected;
    expected.codec = settings.codec;
    expected.width = plan.width;
    expected.height = plan.height;
    expected.duration = partsDuration;
    expected.fps = plan.fps;
    expected.audioTracks = plan.normalization ? plan.normalization->audioTracks : 0;
    expected.colour = ExportColour::outputTags({}, plan.width, plan.height, true);
    return expected;
}

}  // namespace tavrelune
