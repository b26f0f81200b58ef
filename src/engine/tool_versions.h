// The version of the ffmpeg program that exports will run, for --version and
// the About box.
#pragma once

#include <QString>

namespace tavrelune {

// What `ffmpeg -version` says of itself ("5.1.6-0+deb12u1"), read from the
// program at `path`; empty when it cannot be run or says nothing usable.
// Blocks for as long as ffmpeg takes to answer (at most a few seconds).
QString ffmpegVersion(const QString& path);

}  // namespace tavrelune
