// The list file and ffmpeg arguments for joining parts with the concat
// demuxer.
//
// Pure functions, safe on any thread. Paths are local file paths.
#pragma once

#include "engine/video_encoder.h"
#include "model/encode_settings.h"

#include <QString>
#include <QStringList>
#include <cstdint>

namespace tavrelune {

// "tavrelune-concat.txt" in the folder of the parts (a folder of the
// batch's own, never one of the user's).
QString concatListPath(const QString& partsFolder);

// One part of a join: its file and the length of its picture (0 when
// unknown).
struct ConcatPart {
    QString path;
    double videoDuration = 0;
    bool operator==(const ConcatPart&) const = default;
};

// ffprobe arguments that print the length of a part's first video stream
// alone, and that length read back from their output (0 when absent).
QStringList partDurationArguments(const QString& path);
double partDuration(const QString& probeOutput);

// One "file '<name>'" line per part, each ended by a line feed: the part's
// name alone when it lies in `listFolder` (the demuxer reads it relative to
// the list, so no folder name with a line feed or quote is written), else
// its path with quotes written as '\'' (close, escaped quote, reopen). With
// a known picture length, an "outpoint" line after it: the next part starts
// where the picture ends, never where audio a few milliseconds longer ends,
// so the joined picture has no gaps.
QString concatListText(const QList<ConcatPart>& parts, const QString& listFolder);

// The first attempt: the video copied (every part shares codec parameters),
// the audio encoded once as AAC over the whole programme, so no join
// carries an encoder's priming or padding.
QStringList concatCopyArguments(const QString& listPath, const QString& output, const EncodeSettings& settings);

// The fallback: re-encode video at the preset's bitrate for the given frame
// size and rate, and audio as AAC unless audio is removed.
QStringList concatReencodeArguments(const QString& listPath, const QString& output,
                                    const VideoEncoder& encoder, const EncodeSettings& settings,
                                    const VideoNormalization& size);

}  // namespace tavrelune
