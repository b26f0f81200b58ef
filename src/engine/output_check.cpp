#include "engine/output_check.h"

#include "engine/decimal_text.h"

#include <algorithm>
#include <cmath>

namespace tavrelune {

namespace {

QString failure(const QString& expected, const QString& found)
{
    return QStringLiteral("Output check failed: expected %1, the file holds %2.").arg(expected, found);
}

// ffprobe's name for the video stream of each codec.
QString probedName(VideoCodec codec)
{
    return codec == VideoCodec::h264 ? QStringLiteral("h264") : QStringLiteral("hevc");
}

}  // namespace

std::optional<QString> outputMismatch(const ExpectedOutput& expected, const MediaInfo& probed)
{
    const QString videoLabel = rawValue(expected.codec) + QStringLiteral(" video");
    // The probe gives no size exactly when the file has no video stream.
    if (probed.width <= 0 || probed.height <= 0)
        return failure(videoLabel, QStringLiteral("no video"));
    if (probed.codecName != probedName(expected.codec))
        return failure(videoLabel, probed.codecName + QStringLiteral(" video"));

    if (expected.width > 0 && expected.height > 0
        && (probed.width != expected.width || probed.height != expected.height)) {
        const auto size = [](int64_t width, int64_t height) {
            return QStringLiteral("%1%2%3 pixels").arg(width).arg(QChar(0x00D7)).arg(height);
        };
        return failure(size(expected.width, expected.height), size(probed.width, probed.height));
    }

    if (expected.duration > 0) {
        const double frame = 1.0 / std::clamp(expected.fps, 1.0, 120.0);
        if (!(std::abs(probed.duration - expected.duration) <= frame + 0.1)) {
            // The allowance exceeds 0.1 s, so one decimal always tells the two apart.
            return failure(fixedDecimal(expected.duration, 1) + QStringLiteral(" s"),
                           fixedDecimal(probed.duration, 1) + QStringLiteral(" s"));
        }
    }

    if (expected.colour && probed.color != *expected.colour) {
        const auto tags = [](const ColorTags& tags) {
            const auto named = [](const QString& name) { return name.isEmpty() ? QStringLiteral("none") : name; };
            return QStringLiteral("colour tags %1/%2/%3/%4")
                .arg(named(tags.space), named(tags.primaries), named(tags.transfer), named(tags.range));
        };
        return failure(tags(*expected.colour), tags(probed.color));
    }

    // An older probe result may say "audio" without listing tracks.
    const int tracks = probed.audioTracks.isEmpty() ? (probed.hasAudio ? 1 : 0)
                                                    : static_cast<int>(probed.audioTracks.size());
    if (tracks != expected.audioTracks) {
        const auto count = [](int tracks) {
            return tracks == 1 ? QStringLiteral("an audio track") : QStringLiteral("%1 audio tracks").arg(tracks);
        };
        return failure(expected.audioTracks == 0 ? QStringLiteral("no audio") : count(expected.audioTracks),
                       tracks == 0 ? QStringLiteral("none") : count(tracks));
    }
    return std::nullopt;
}

}  // namespace tavrelune
