// Headless subcommands of the tavrelune executable.
//
// Each runs on a QGuiApplication on the offscreen platform (watermark
// images are painted) and needs no display. They print results on
// standard output and errors on standard error, and return the exit status.
#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

namespace tavrelune {
class FFmpegService;
}

namespace tavrelune::cli {

struct Command {
    QString name;
    QString summary;
    // Receives the arguments after the command's name.
    std::function<int(const QStringList& arguments)> run;
};

// Every subcommand, in the order `--help` lists them.
const std::vector<Command>& commands();

// True when the first argument (after the program name) asks for a headless
// run: a subcommand, --help or --version, or a word that is neither an
// option, a file: URL nor an existing file (a mistyped command, which
// runHeadless answers with the list of commands). Anything else opens the
// window.
bool isHeadlessInvocation(const QString& firstArgument);


// Runs the subcommand named by the first argument; the application object
// must exist.
int runHeadless(const QStringList& arguments);

// A command's help from its parser, the usage line naming the command
// ("Usage: tavrelune grade [options] ...") instead of the program as typed.
QString commandHelpText(const QCommandLineParser& parser, const QString& command);

// Why the first of `tools` ("ffprobe", "ffmpeg") that `service` would run
// cannot be run ("ffprobe was not found. Install FFmpeg ..."), or nothing
// when each is an executable file.
std::optional<QString> missingTool(const FFmpegService& service, const QStringList& tools);

int runProbe(const QStringList& arguments);
int runGrade(const QStringList& arguments);
int runConvert(const QStringList& arguments);

}  // namespace tavrelune::cli
