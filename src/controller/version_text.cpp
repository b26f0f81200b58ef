#include "controller/version_text.h"

#include "engine/tool_versions.h"
#include "preview/mpv_version.h"

namespace tavrelune {

QString versionText(const QString& ffmpeg)
{
    const QString ffmpegFound = ffmpegVersion(ffmpeg);
    return QStringLiteral("tavrelune %1\nffmpeg %2\nlibmpv %3\n")
        .arg(QStringLiteral(TAVRELUNE_VERSION),
             ffmpegFound.isEmpty() ? QStringLiteral("not found") : ffmpegFound + " (" + ffmpeg + ")",
             libmpvVersion());
}

}  // namespace tavrelune
