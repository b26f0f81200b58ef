#include "engine/tool_versions.h"

#include <QProcess>

namespace tavrelune {

QString ffmpegVersion(const QString& path)
{
    QProcess process;
    process.start(path, {QStringLiteral("-version")});
    if (!process.waitForFinished(5000)) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return {};
    // "ffmpeg version 5.1.6-0+deb12u1 Copyright (c) 2000-2024 the FFmpeg developers"
    const QString firstLine = QString::fromUtf8(process.readAllStandardOutput()).section('\n', 0, 0);
    const QStringList words = firstLine.split(' ', Qt::SkipEmptyParts);
    if (words.size() < 3 || words[1] != QLatin1String("version"))
        return {};
    return words[2];
}

}  // namespace tavrelune
