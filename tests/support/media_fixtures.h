// Tiny media files made with ffmpeg's lavfi sources, and small helpers to run
// the real tools from tests. Everything here is synchronous and meant for the
// test thread only.
#pragma once

#include <QString>
#include <QStringList>

namespace tavrelune::test {

struct ClipSpec {
    int width = 160;
    int height = 90;
    QString rate = "25";           // frame rate as ffmpeg takes it, e.g. "30000/1001"
    double seconds = 1.0;
    bool audio = true;
    QString videoCodec = "libx264"; // empty: no video stream at all
    QString audioCodec = "aac";
    QString pattern = "testsrc2";   // lavfi video source (testsrc keeps odd sizes)
    QString filter = {};            // -vf applied to the source, e.g. "drawbox=..."
    QStringList videoOptions = {};  // more output options, e.g. {"-g", "10"}
    // One audio track per lavfi source ("anullsrc=channel_layout=mono"), in
    // place of the single sine; each as long as the clip.
    QStringList audioTracks = {};
};

struct ToolResult {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

// Runs `program` (looked up on PATH) with `arguments`, waits up to `timeoutMs`.
ToolResult runTool(const QString& program, const QStringList& arguments, int timeoutMs = 120000);

// Writes a clip to `path` (the container follows the extension) or throws.
void makeClip(const QString& path, const ClipSpec& spec = {});

// A copy of `source` whose video track says it must be turned `degrees`
// (as ffmpeg's "rotate" tag) to be upright; the stream itself is copied.
void makeRotatedCopy(const QString& source, const QString& path, int degrees);

// Stream facts read back with ffprobe for assertions: "width", "height",
// "duration", "r_frame_rate", "codec_name" of the first video stream, or of
// the format for "duration" when `stream` is "format".
QString probeEntry(const QString& path, const QString& entry, const QString& stream = "v:0");

// Number of audio streams in a file.
int audioStreamCount(const QString& path);

// Path of a folder holding fake tools: one executable shell script per name
// with the given body. Used for exit codes and signals real tools won't give.
QString writeFakeTool(const QString& folder, const QString& name, const QString& scriptBody);

}  // namespace tavrelune::test
