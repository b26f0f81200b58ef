#include "support/media_fixtures.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <stdexcept>

namespace tavrelune::test {

ToolResult runTool(const QString& program, const QStringList& arguments, int timeoutMs)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments);
    ToolResult result;
    if (!process.waitForStarted(10000))
        return result;
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        return result;
    }
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

void makeClip(const QString& path, const ClipSpec& spec)
{
    QStringList args{"-nostdin", "-hide_banner", "-loglevel", "error", "-y"};
    const QString secs = QString::number(spec.seconds, 'f', 3);
    if (!spec.videoCodec.isEmpty()) {
        args << "-f" << "lavfi" << "-i"
             << QString("%1%6size=%2x%3:rate=%4:duration=%5")
                    .arg(spec.pattern).arg(spec.width).arg(spec.height).arg(spec.rate, secs,
                         spec.pattern.contains('=') ? ":" : "=");
    }
    if (!spec.audioTracks.isEmpty()) {
        for (const QString& source : spec.audioTracks)
            args << "-f" << "lavfi" << "-t" << secs << "-i" << source;
        const int first = spec.videoCodec.isEmpty() ? 0 : 1;
        if (first == 1)
            args << "-map" << "0:v";
        for (int track = 0; track < spec.audioTracks.size(); ++track)
            args << "-map" << QString::number(first + track) + ":a";
    } else if (spec.audio) {
        args << "-f" << "lavfi" << "-i"
             << QString("sine=frequency=440:sample_rate=48000:duration=%1").arg(secs);
    }
    if (!spec.videoCodec.isEmpty()) {
        if (!spec.filter.isEmpty())
            args << "-vf" << spec.filter;
        args << "-c:v" << spec.videoCodec << "-pix_fmt" << "yuv420p";
        if (spec.videoCodec == "libx264")
            args << "-preset" << "ultrafast";
        args << spec.videoOptions;
    }
    if (spec.audio || !spec.audioTracks.isEmpty())
        args << "-c:a" << spec.audioCodec;
    args << path;
    const ToolResult result = runTool("ffmpeg", args);
    if (result.exitCode != 0 || !QFile::exists(path))
        throw std::runtime_error("ffmpeg could not make test clip " + path.toStdString() + ": "
                                 + result.err.toStdString());
}

void makeRotatedCopy(const QString& source, const QString& path, int degrees)
{
    const ToolResult result = runTool("ffmpeg", {"-nostdin", "-hide_banner", "-loglevel", "error", "-y", "-i", source,
                                                 "-c", "copy", "-metadata:s:v:0",
                                                 QString("rotate=%1").arg(degrees), path});
    if (result.exitCode != 0 || !QFile::exists(path))
        throw std::runtime_error("ffmpeg could not rotate test clip: " + result.err.toStdString());
}

QString probeEntry(const QString& path, const QString& entry, const QString& stream)
{
    QStringList args{"-v", "error"};
    if (stream == "format") {
        args << "-show_entries" << "format=" + entry;
    } else {
        args << "-select_streams" << stream << "-show_entries" << "stream=" + entry;
    }
    args << "-of" << "default=noprint_wrappers=1:nokey=1" << path;
    return QString::fromUtf8(runTool("ffprobe", args).out).trimmed();
}

int audioStreamCount(const QString& path)
{
    const ToolResult result = runTool("ffprobe", {"-v", "error", "-select_streams", "a",
                                                  "-show_entries", "stream=index", "-of", "csv=p=0",
                                                  path});
    return static_cast<int>(QString::fromUtf8(result.out).split('\n', Qt::SkipEmptyParts).size());
}

QString writeFakeTool(const QString& folder, const QString& name, const QString& scriptBody)
{
    QDir().mkpath(folder);
    const QString path = QDir(folder).filePath(name);
    QFile script(path);
    if (!script.open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw std::runtime_error("cannot write fake tool");
    script.write(("#!/bin/sh\n" + scriptBody + "\n").toUtf8());
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return folder;
}

}  // namespace tavrelune::test
