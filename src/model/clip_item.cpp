#include "model/clip_item.h"

#include "model/time_formatting.h"

#include <QFileInfo>
#include <algorithm>
#include <cmath>

namespace tavrelune {

namespace {

// Non-finite user values would poison every comparison below; they count as
// the neutral value instead.
double finiteOr(double value, double fallback)
{
    return std::isfinite(value) ? value : fallback;
}

std::optional<double> finiteOutPoint(const std::optional<double>& outPoint)
{
    if (outPoint && std::isnan(*outPoint))
        return std::nullopt;
    return outPoint;
}

}  // namespace

ClipItem::ClipItem(const QUrl& fileUrl)
    : url(fileUrl), name(QFileInfo(fileUrl.toLocalFile()).fileName())
{
    if (name.isEmpty())
        name = fileUrl.fileName();
}

std::optional<double> ClipItem::usableDuration() const
{
    if (duration && std::isfinite(*duration) && *duration > 0)
        return *duration;
    return std::nullopt;
}

double ClipItem::effectiveInPoint() const
{
    const double in = std::max(finiteOr(inPoint, 0), 0.0);
    if (const auto d = usableDuration())
        return std::min(in, std::max(*d - minimumTrimSpan, 0.0));
    return in;
}

double ClipItem::effectiveOutPoint() const
{
    const std::optional<double> out = finiteOutPoint(outPoint);
    if (const auto d = usableDuration())
        return std::min(std::max(out.value_or(*d), minimumTrimSpan), *d);
    return out.value_or(0.0);
}

std::optional<double> ClipItem::trimmedDuration() const
{
    if (!usableDuration())
        return std::nullopt;
    return std::max(effectiveOutPoint() - effectiveInPoint(), 0.0);
}

bool ClipItem::isTrimmed() const
{
    const auto d = usableDuration();
    if (!d)
        return false;
    return effectiveInPoint() > trimTolerance || effectiveOutPoint() < *d - trimTolerance;
}

int ClipItem::audioTrackCount() const
{
    if (!audioTracks.isEmpty())
        return static_cast<int>(audioTracks.size());
    return hasAudio ? 1 : 0;
}

double ClipItem::playheadInWindow() const
{
    double p = 0;
    if (const auto d = usableDuration())
        p = std::clamp(finiteOr(previewFraction, 0) * *d, 0.0, *d);
    return std::min(effectiveOutPoint(), std::max(p, effectiveInPoint()));
}

void ClipItem::clampTrimTo(double newDuration)
{
    if (outPoint && newDuration < *outPoint)
        outPoint = newDuration;
    inPoint = std::min(inPoint, std::max(newDuration - minimumTrimSpan, 0.0));
}

QString ClipItem::durationLabel() const
{
    if (!duration)
        return QStringLiteral("\u2014");
    if (!(*duration > 0))
        return TimeFormatting::clock(*duration, false);
    if (isTrimmed()) {
        if (const auto trimmed = trimmedDuration())
            return TimeFormatting::clock(*trimmed, false) + QStringLiteral(" / ")
                   + TimeFormatting::clock(*duration, false);
    }
    return TimeFormatting::clock(*duration, false);
}

QString ClipItem::resolutionLabel() const
{
    if (!width || !height)
        return {};
    return QString::number(*width) + QChar(0x00D7) + QString::number(*height);
}

}  // namespace tavrelune
