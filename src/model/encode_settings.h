// Export settings and the choices they are made of.
//
// Plain value types; safe to copy between threads. Bitrates are kilobits per
// second, frame sizes pixels, frame rates frames per second.
#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <cstdint>
#include <optional>

namespace tavrelune {

enum class VideoCodec { h264, hevc };

// Display label and identity ("H.264", "HEVC").
QString rawValue(VideoCodec codec);
// Exact match of a raw value only: no trimming, no case folding.
std::optional<VideoCodec> videoCodecFromRawValue(const QString& raw);
// The enumeration's case name ("h264", "hevc"), used by job files and options.
QString caseName(VideoCodec codec);
std::optional<VideoCodec> videoCodecFromCaseName(const QString& name);
inline constexpr std::array<VideoCodec, 2> allVideoCodecs{VideoCodec::h264, VideoCodec::hevc};

enum class QualityPreset { high, balanced, small };

QString rawValue(QualityPreset preset);
std::optional<QualityPreset> qualityPresetFromRawValue(const QString& raw);
QString caseName(QualityPreset preset);
std::optional<QualityPreset> qualityPresetFromCaseName(const QString& name);
inline constexpr std::array<QualityPreset, 3> allQualityPresets{
    QualityPreset::high, QualityPreset::balanced, QualityPreset::small};

// Megabits per second per megapixel for a preset and codec.
double bitrateFactor(QualityPreset preset, VideoCodec codec);

// Target video bitrate in kbit/s. Frames smaller than 1280x720 count as
// 1280x720 (each side raised on its own). Above 30 fps the bitrate grows
// with (fps / 30)^0.75, up to 240 fps: more frames need more bits, though
// fewer per frame, as each differs less from the last. Saturates instead of
// overflowing.
int64_t bitrateKbps(QualityPreset preset, int64_t width, int64_t height, VideoCodec codec, double fps = 30);

struct EncodeSettings {
    VideoCodec codec = VideoCodec::hevc;
    QualityPreset quality = QualityPreset::high;
    bool copyAudio = true;
    bool removeAudio = false;   // wins over copyAudio
    bool concatenateClips = false;
    // Bake each clip's preview grade into one look-up table, so the file
    // looks exactly like the preview; off, ffmpeg's own filters grade.
    bool matchPreview = true;
    // The combined video's file name, without ".mp4"; empty: one made from
    // the time the batch starts ("Tavrelune_2026-11-24T09-30-00Z").
    QString combinedName;

    bool operator==(const EncodeSettings&) const = default;
};

// The common shape every part of a combined export is brought to.
struct VideoNormalization {
    int64_t width = 1920;
    int64_t height = 1080;
    double fps = 24;
    // Every part carries this many audio tracks (silence where its clip has
    // fewer); 0 for none.
    int audioTracks = 0;

    bool operator==(const VideoNormalization&) const = default;
};

}  // namespace tavrelune
