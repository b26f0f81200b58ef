// The size live preview frames are drawn at, and the mpv video filter that
// brings a clip's decoded frames there.
//
// Frames reach the render call already upright, with square pixels and at
// most `maximumSide` pixels on their longer side (aspect kept, never
// enlarged), so the render call only converts colour and the grade's cost
// does not grow with the source. The filter runs in mpv's decoding threads.
// Rotation happens here rather than in mpv's output, whose software renderer
// cannot rotate.
//
// Pure; any thread.
#pragma once

#include <QSize>
#include <QString>
#include <cstdint>

namespace tavrelune {

// A video track as mpv's demuxer describes it.
struct VideoTrackShape {
    std::int64_t width = 0;
    std::int64_t height = 0;
    double pixelAspect = 1;  // sample aspect ratio; 0 or less counts as 1
    int rotation = 0;        // clockwise degrees to turn the picture upright
    // For an HDR or BT.2020 clip: the filter itself reads the frames into
    // float RGB with these zscale options (its matrix and range), applies
    // the delivery tables (`.cube` files; see grading/delivery_table.h) as
    // the export does, and labels the result
    // plain SDR RGB, so the render call passes it through untouched.
    QString zscaleReadOptions;
    QString lightTable;
    QString encodingTable;
};

struct PreviewFilter {
    QSize frameSize;   // upright size of every frame
    QString mpvFilter; // value of mpv's "vf" option
};

constexpr int previewMaximumSide = 1280;

// None (an empty frame size) when the track has no positive size.
PreviewFilter previewFilterFor(const VideoTrackShape& track, int maximumSide = previewMaximumSide);

}  // namespace tavrelune
