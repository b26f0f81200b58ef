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

// One "file '<path>'" line per input, each ended by a line feed. Quotes in a
// path are written as '\'' (close, escaped quote, reopen), as the demuxer
// reads them.
QString concatListText(const QStringList& inputs);

// The first attempt: a pure stream copy, fast and lossless when every part
// shares codec parameters.
QStringList concatCopyArguments(const QString& listPath, const QString& output);

// The fallback: re-encode video at the preset's bitrate for the given frame
// size, and audio as AAC unless audio is removed.
QStringList concatReencodeArguments(const QString& listPath, const QString& output,
                                    const VideoEncoder& encoder, const EncodeSettings& settings,
                                    int64_t width, int64_t height);

}  // namespace tavrelune
