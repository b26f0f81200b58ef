// `tavrelune probe FILE...`: one JSON object per file on standard output.
#include "cli/commands.h"
#include "cli/interrupt_watcher.h"
#include "async/blocking_wait.h"
#include "engine/ffmpeg_service.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

#include <qcoro/qcorotask.h>

namespace tavrelune::cli {

namespace {

QJsonObject toJson(const QString& path, const MediaInfo& info)
{
    QJsonArray tracks;
    for (const AudioTrack& track : info.audioTracks)
        tracks << QJsonObject{{"codecName", track.codec}, {"channels", track.channels}};
    return QJsonObject{
        {"path", path},
        {"duration", info.duration},
        {"width", static_cast<qint64>(info.width)},
        {"height", static_cast<qint64>(info.height)},
        {"codecName", info.codecName},
        {"pixFmt", info.pixFmt},
        {"fps", info.fps},
        {"hasAudio", info.hasAudio},
        {"interlaced", info.interlaced},
        {"audioTracks", tracks},
    };
}

QCoro::Task<int> probeAll(FFmpegService& service, QStringList paths, std::stop_token stop)
{
    QTextStream out(stdout);
    QTextStream err(stderr);
    int status = 0;
    for (const QString& path : paths) {
        const QString absolute = QFileInfo(path).absoluteFilePath();
        try {
            const MediaInfo info = co_await service.probe(absolute, stop);
            out << QJsonDocument(toJson(absolute, info)).toJson(QJsonDocument::Compact) << "\n";
            out.flush();
        } catch (const FFmpegError& error) {
            if (error.kind() == FFmpegError::Kind::cancelled)
                co_return 130;
            err << "tavrelune: " << path << ": " << error.description() << "\n";
            err.flush();
            status = 1;
        } catch (const Error& error) {
            err << "tavrelune: " << path << ": " << error.description() << "\n";
            err.flush();
            status = 1;
        }
    }
    co_return status;
}

}  // namespace

int runProbe(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription("Print the facts of media files as JSON, one object per line.");
    parser.addHelpOption();
    parser.addPositionalArgument("FILE", "Media files to probe.", "FILE...");
    const QStringList commandLine = QStringList{"tavrelune probe"} + arguments;
    if (parser.parse(commandLine) && parser.isSet(QStringLiteral("help"))) {
        QTextStream(stdout) << commandHelpText(parser, QStringLiteral("probe"));
        return 0;
    }
    parser.process(commandLine);  // --help-all, and bad options (status 1)
    const QStringList files = parser.positionalArguments();
    if (files.isEmpty()) {
        QTextStream(stderr) << "tavrelune probe: no FILE given\n"
                            << commandHelpText(parser, QStringLiteral("probe"));
        return 2;
    }
    FFmpegService service;
    // Named once, rather than as every file's failure.
    if (const auto missing = missingTool(service, {QStringLiteral("ffprobe")})) {
        QTextStream(stderr) << "tavrelune probe: " << *missing << "\n";
        return 2;
    }
    InterruptWatcher interrupts;
    const int status = waitForTask(probeAll(service, files, interrupts.stopSource().get_token()));
    return interrupts.interrupted() ? interrupts.exitStatus() : status;
}

}  // namespace tavrelune::cli
