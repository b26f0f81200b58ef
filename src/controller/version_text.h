// What --version prints and the About box shows.
//
// Runs `ffmpeg -version` (blocking, a few seconds at most); any thread.
#pragma once

#include <QString>

namespace tavrelune {

// "tavrelune 0.1.0", then the version and path of the ffmpeg at `ffmpeg`
// (the one exports run) and the libmpv version, one per line.
QString versionText(const QString& ffmpeg);

}  // namespace tavrelune
