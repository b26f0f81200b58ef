// The values a batch fixes when it starts, and each clip's export job.
//
// Pure functions over value types. The batch and the command line's dry run
// both build their jobs here, so what is shown is what runs.
#pragma once

#include "engine/clip_conversion.h"
#include "engine/output_check.h"
#include "model/clip_item.h"

#include <QList>
#include <optional>

namespace tavrelune {

struct BatchPlan {
    bool combine = false;      // join the clips into one video
    int clipCount = 0;
    int64_t width = 1920;      // target size from the first clip, even, at least 2
    int64_t height = 1080;
    double fps = 24;           // from the first clip, limited to [1, 120]
    std::optional<VideoNormalization> normalization;  // combined mode only
    // Steps that progress counts: one per clip, plus the joining.
    int progressDenominator() const { return clipCount + (combine ? 1 : 0); }

    bool operator==(const BatchPlan&) const = default;
};

BatchPlan planBatch(const QList<ClipItem>& clips, const EncodeSettings& settings);

// Length of a clip's export: its trimmed length, else its length, else 0.
double exportDuration(const ClipItem& clip);

// Each step's share of the batch's work, in order, summing to 1: one per
// clip, as its export length times the pixels it writes per second (a clip
// of unknown length counts as long as the average known one), then the
// join of a combined batch (a copy, a twentieth of the clips' work). The
// time left then follows seconds of video, not the number of clips.
QList<double> progressShares(const QList<ClipItem>& clips, const BatchPlan& plan);

// The parts of a combined batch lie beside its output, on the file system
// that will hold the result, in a hidden folder of the batch's own: this
// prefix and a unique ending.
QString partsFolderPrefix();

// File name of the part at `position` in the parts folder: 000.mov,
// 001.mov, ... (QuickTime holds the parts' uncompressed audio; MP4 cannot).
QString partFileName(int position);

// One clip's export job within the batch.
ClipConversion conversionFor(const ClipItem& clip, const BatchPlan& plan, const QString& output,
                             const std::optional<QString>& lutPath,
                             const std::optional<WatermarkOverlay>& watermark,
                             const EncodeSettings& settings);

// What a clip's converted file must hold: the export length; on its own, the
// source's size made even and its audio tracks unless removed; as a part of a
// combined batch, the normalization's size and audio tracks.
ExpectedOutput expectedClipOutput(const ClipItem& clip, const BatchPlan& plan, const EncodeSettings& settings);

// What the joined file of a combined batch must hold: the normalization's
// size and audio tracks, and the length of the parts as they were made (each part
// is checked against its clip's length first).
ExpectedOutput expectedJoinedOutput(const BatchPlan& plan, const EncodeSettings& settings, double partsDuration);

}  // namespace tavrelune
