// One clip of the batch and its trim arithmetic.
//
// Plain value type, copied freely; identity is `id`. Times are seconds,
// sizes pixels. Derived values are computed on every call, never stored.
#pragma once

#include "model/grade_values.h"
#include "model/media_info.h"

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <QUuid>
#include <cstdint>
#include <optional>

namespace tavrelune {

enum class ClipStatus { ready, converting, done, failed };

struct ClipItem {
    // Shortest span an effective in or out point keeps from the other end.
    static constexpr double minimumTrimSpan = 0.12;
    // Offsets up to this much do not count as a trim.
    static constexpr double trimTolerance = 0.04;

    ClipItem() = default;
    // A new clip for a file: fresh identifier, name = last path component.
    explicit ClipItem(const QUrl& fileUrl);

    QUuid id = QUuid::createUuid();
    QUrl url;
    QString name;
    std::optional<double> duration;
    std::optional<int64_t> width;
    std::optional<int64_t> height;
    std::optional<QString> codecName;
    std::optional<double> fps;
    bool hasAudio = true;
    bool interlaced = false;  // as probed
    double pixelAspect = 1;   // as probed; width and height are the shown size
    bool variableFrameRate = false;  // as probed; `fps` is then the rate it is made constant at
    std::optional<int64_t> audioBitrate;  // bits per second, when the probe learned it
    QList<AudioTrack> audioTracks;  // as probed; empty until then
    ColorTags color;  // as probed; empty until then
    GradeValues grade;
    double inPoint = 0;
    std::optional<double> outPoint;
    double previewFraction = 0.2;
    ClipStatus status = ClipStatus::ready;
    double progress = 0;
    std::optional<QString> errorMessage;
    std::optional<QUrl> outputURL;
    // What the export at outputURL was made from (a digest; see the batch's
    // selection rules): unchanged since means there is nothing to redo.
    std::optional<QByteArray> exportedAs;
    // Why the file could not be read when it was probed, in one line; such
    // a clip shows the reason in its row and on the stage, not a preview.
    std::optional<QString> readError;

    bool operator==(const ClipItem&) const = default;

    double effectiveInPoint() const;
    double effectiveOutPoint() const;
    std::optional<double> trimmedDuration() const;
    bool isTrimmed() const;
    double playheadInWindow() const;
    // The probed tracks, or one unknown track while a clip said to have
    // audio is unprobed.
    int audioTrackCount() const;

    // Brings stored trim points inside a newly learned duration: the out
    // point no later than the end, the in point leaving the shortest span.
    void clampTrimTo(double newDuration);

    // "—" when unprobed, "0:12 / 1:05" when trimmed, else "1:05".
    QString durationLabel() const;
    // "1920×1080", or empty when either side is unknown.
    QString resolutionLabel() const;

private:
    // The duration when present, finite and positive.
    std::optional<double> usableDuration() const;
};

}  // namespace tavrelune
