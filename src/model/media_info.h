// What a probe learned about one media file. Plain value type.
#pragma once

#include <QList>
#include <QString>
#include <cstdint>

namespace tavrelune {

// How a video stream says its pixels are to be read, in ffprobe's names
// ("bt709", "tv", ...). Empty when the stream does not say.
struct ColorTags {
    QString space;      // the YUV matrix: bt709, smpte170m, bt470bg, bt2020nc, ...
    QString range;      // tv (limited) or pc (full)
    QString primaries;
    QString transfer;

    bool operator==(const ColorTags&) const = default;
};

// One audio stream of a file, in ffprobe's names ("aac", "pcm_s24le", ...).
struct AudioTrack {
    QString codec;     // empty when unknown
    int channels = 0;  // 0 when unknown

    bool operator==(const AudioTrack&) const = default;
};

// The standard video rate (23.976, 24, 25, 29.97, 30, 50, 59.94, 60) nearest
// `fps`.
double nearestStandardRate(double fps);

struct MediaInfo {
    double duration = 0;          // seconds; 0 when unknown
    // First video stream as shown: turned upright, non-square pixels
    // widened to square ones; 0 when absent.
    int64_t width = 0;
    int64_t height = 0;
    QString codecName = QStringLiteral("unknown");
    QString pixFmt;               // empty when absent
    double fps = 24;              // 24 when no rate could be read
    bool hasAudio = false;
    int64_t audioBitrate = 0;     // first audio stream, bits per second; 0 when unknown
    QList<AudioTrack> audioTracks;  // every audio stream, in file order
    ColorTags color;              // of the first video stream
    // Stored as fields (ffprobe's field_order tt, bb, tb or bt), not as
    // whole frames; deinterlaced by the export and the preview.
    bool interlaced = false;
    double pixelAspect = 1;       // stored pixel's width over height (HDV 4:3)
    // Frames at irregular times (phones, screen recordings): `fps` is then
    // the standard rate nearest the average, which the export makes constant.
    bool variableFrameRate = false;

    bool operator==(const MediaInfo&) const = default;
};

}  // namespace tavrelune
