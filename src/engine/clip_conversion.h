// One clip's export job and the ffmpeg arguments that carry it out.
//
// Pure functions over value types, safe on any thread. Times are seconds,
// sizes pixels, paths local file paths passed to ffmpeg as plain arguments.
#pragma once

#include "engine/video_encoder.h"
#include "grading/delivery_table.h"
#include "model/encode_settings.h"
#include "model/media_info.h"
#include "watermark/watermark_settings.h"

#include <QString>
#include <QStringList>
#include <QStringView>
#include <cstdint>
#include <optional>

namespace tavrelune {

struct ClipConversion {
    QString input;
    QString output;  // overwritten if it exists
    std::optional<QString> lutPath;
    GradeValues grade;
    EncodeSettings settings;
    // Length to convert (the trimmed length when trimmed); drives "-t" and
    // progress. 0 when unknown.
    double duration = 0;
    double startTime = 0;  // the clip's effective in point
    bool trim = false;     // the clip counts as trimmed
    double fps = 0;        // the source's frame rate; 0 when unknown
    bool deinterlace = false;  // the source is stored as fields
    bool constantRate = false;  // frames at irregular times are brought to `fps`
    // Non-square source pixels: the frame is first scaled to `width` x
    // `height`, the size it is shown at, with square pixels.
    bool squarePixels = false;
    int64_t width = 0;
    int64_t height = 0;
    bool hasAudio = false;
    // The source's audio tracks as probed; empty when unknown (then a
    // source with audio counts as one track of unknown codec).
    QList<AudioTrack> audioTracks;
    // Present only for the parts of a combined export.
    std::optional<VideoNormalization> normalization;
    std::optional<WatermarkOverlay> watermark;
    // With settings.matchPreview: the baked preview grade (none for a
    // neutral clip without LUT), which replaces the LUT and the four values.
    std::optional<QString> bakedCube;
    // The source's colour tags, which say how its pixels are read, and the
    // tables that bring an HDR or BT.2020 source to SDR BT.709 (see
    // export_colour.h), in both export modes.
    ColorTags sourceColor;
    std::optional<DeliveryTable::TableFiles> deliveryTables;

    bool operator==(const ClipConversion&) const = default;

    int sourceAudioTrackCount() const;
    // A part with fewer tracks than the combined export's layout gets silent
    // ones, so every part has the same streams.
    bool needsSilence() const;
    // Some source track is copied unchanged: only in an untrimmed clip
    // outside a combined export (anything else is re-encoded to one format),
    // and only a track whose codec belongs in MP4 or is unknown.
    bool triesAudioCopy() const;
};

// Where a trimmed export seeks and how long it runs, so that its first frame
// is the one showing at the in point and its last the one before the out
// point: the seek lands a millisecond before the first frame's start (a
// time rounded past that start would skip it), the length is whole frames. With
// an unknown rate, the times as they are.
struct FrameSpan {
    double seek = 0;
    double length = 0;
    bool operator==(const FrameSpan&) const = default;
};
FrameSpan frameSpan(double inPoint, double length, double fps);

// Audio codecs copied into MP4 as they are: AAC, MP3, AC-3, E-AC-3 and
// ALAC. Others (Vorbis, Opus, FLAC, PCM, MP2, DTS, ...) either do not fit
// the container or are refused by many players there.
bool belongsInMp4(const QString& audioCodec);

// The complete ffmpeg argument list, "-nostdin" to the output path.
QStringList conversionArguments(const ClipConversion& job, const VideoEncoder& encoder);

// The frame rate of the job's output (0 when unknown).
double outputFps(const ClipConversion& job);

// The colour tags the job's output carries (and its pixels have).
ColorTags outputColour(const ClipConversion& job);

// "-c:v" ... "-pix_fmt" "yuv420p" (and "-tag:v" "hvc1" for HEVC, which
// players expect in MP4): shared by conversion and combining.
QStringList videoEncodingArguments(const VideoEncoder& encoder, VideoCodec codec, int64_t bitrateKbps);

// Whether a failed copy reads like the audio stream did not fit the MP4
// container (ffmpeg: "Could not find tag for codec ... in stream").
bool isAudioCopyFailure(const QString& description);

// The fraction done that an "out_time_ms=" progress line reports (the value
// is in microseconds despite the name), limited to [0, 1]. Nothing for other
// lines, unreadable values or an unknown duration.
std::optional<double> progressFraction(QStringView line, double duration);

}  // namespace tavrelune
