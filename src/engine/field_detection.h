// Telling fields from whole frames by the picture itself, for streams that
// do not say how they are stored (MPEG-4 Part 2 in AVI, some MJPEG and
// MPEG-2 files): ffmpeg's idet filter judges each of the first frames.
//
// Pure functions, any thread.
#pragma once

#include <QString>
#include <QStringList>

namespace tavrelune::FieldDetection {

// How many frames are judged: enough for a steady verdict, quick to decode.
inline constexpr int framesJudged = 60;

// ffmpeg arguments that print one "lavfi.idet.multiple.current_frame=<verdict>"
// line per judged frame (tff, bff, progressive or undetermined).
QStringList arguments(const QString& path);

// Whether the verdicts say fields: at least 20 frames judged, nine in ten
// of them with one field order.
bool looksInterlaced(const QString& verdicts);

}  // namespace tavrelune::FieldDetection
