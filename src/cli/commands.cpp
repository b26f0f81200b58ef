#include "cli/commands.h"

#include "engine/ffmpeg_service.h"
#include "engine/tool_locator.h"
#include "controller/version_text.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTextStream>
#include <cstdio>

namespace tavrelune::cli {

const std::vector<Command>& commands()
{
    static const std::vector<Command> all{
        {"probe", "Print duration, size, codec, frame rate and audio of media files as JSON", runProbe},
        {"grade", "Apply the preview grade and an optional .cube LUT to an image, writing PNG", runGrade},
        {"convert", "Grade and convert video clips to MP4, one file each or combined", runConvert},
    };
    return all;
}

namespace {

QString usage()
{
    QString text =
        "Usage: tavrelune [FILE...]\n"
        "       tavrelune COMMAND [OPTIONS] [ARGUMENTS]\n\n"
        "Without a command, opens the Tavrelune window (FILEs are added to the batch).\n\n"
        "Commands:\n";
    for (const Command& command : commands())
        text += QString("  %1  %2\n").arg(command.name, -8).arg(command.summary);
    text += "\nRun 'tavrelune COMMAND --help' for a command's options.\n"
            "  -h, --help     Show this help\n"
            "  -v, --version  Show the version\n\n"
            "Environment:\n"
            "  TAVRELUNE_TOOLS_DIR  Folder holding the ffmpeg and ffprobe programs to use\n";
    return text;
}

}  // namespace

bool isHeadlessInvocation(const QString& firstArgument)
{
    if (firstArgument == "-h" || firstArgument == "--help" || firstArgument == "-v" || firstArgument == "--version")
        return true;
    for (const Command& command : commands())
        if (command.name == firstArgument)
            return true;
    // Qt's own options (-platform, -style, ...) and files go to the window.
    if (firstArgument.startsWith('-') || firstArgument.startsWith(QLatin1String("file:")))
        return false;
    return !QFileInfo::exists(firstArgument);
}

int runHeadless(const QStringList& arguments)
{
    QTextStream out(stdout);
    const QString& first = arguments.value(0);
    if (first == "-h" || first == "--help") {
        out << usage();
        return 0;
    }
    if (first == "-v" || first == "--version") {
        out << versionText(ToolLocator::fromEnvironment().locate(QStringLiteral("ffmpeg")));
        return 0;
    }
    for (const Command& command : commands())
        if (command.name == first)
            return command.run(arguments.mid(1));
    QTextStream(stderr) << "tavrelune: unknown command '" << first << "'\n" << usage();
    return 2;
}

std::optional<QString> missingTool(const FFmpegService& service, const QStringList& tools)
{
    for (const QString& tool : tools) {
        const QFileInfo program(service.binaryPath(tool));
        if (!program.isFile() || !program.isExecutable())
            return FFmpegError::missingBinary(tool).description();
    }
    return std::nullopt;
}

QString commandHelpText(const QCommandLineParser& parser, const QString& command)
{
    // Qt names the program as it was typed (build/tavrelune, a full path).
    QString text = parser.helpText();
    const QString typed = QStringLiteral("Usage: ") + QCoreApplication::arguments().value(0);
    if (text.startsWith(typed))
        text.replace(0, typed.size(), QStringLiteral("Usage: tavrelune ") + command);
    return text;
}

}  // namespace tavrelune::cli
