// `tavrelune convert [OPTIONS] FILE...`: the window's batch, driven from the
// command line. Everything goes through the one controller, as the window's
// controls would: files are dropped with addURLs, choices written to its
// fields, and the batch is its own startConversion.
#include "cli/commands.h"
#include "cli/convert_options.h"
#include "cli/interrupt_watcher.h"
#include "cli/progress_printer.h"
#include "cli/standard_output.h"
#include "controller/app_model.h"
#include "controller/job_application.h"
#include "async/blocking_wait.h"
#include "async/next_signal.h"
#include "grading/cube_lut.h"
#include "grading/lut_parse_error.h"
#include "model/media_type.h"
#include "model/time_formatting.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTextStream>
#include <algorithm>
#include <cstring>

#include <qcoro/qcorotask.h>

namespace tavrelune::cli {

namespace {

const QString prefix = QStringLiteral("tavrelune convert: ");

void complain(const QString& message)
{
    QTextStream(stderr) << prefix << message << "\n";
}

// Why the request cannot run, found before the controller sees it: the
// batch would otherwise skip such files without a word.
std::optional<QString> inputProblem(const ConvertRequest& request)
{
    bool anyVideo = false;
    bool anyWatermark = false;
    for (const QString& file : request.files) {
        if (!QFileInfo(file).isFile())
            return file + ": no such file";
        if (!MediaType::isVideo(file) && !MediaType::isLut(file) && !MediaType::isWatermark(file))
            return file + ": not a video, LUT (.cube) or watermark (PNG, SVG) file";
        anyVideo = anyVideo || MediaType::isVideo(file);
        anyWatermark = anyWatermark || MediaType::isWatermark(file);
    }
    if (!anyVideo)
        return QStringLiteral("no video clips given");
    if (request.watermark.placesWatermark() && !anyWatermark)
        return QStringLiteral("watermark placement given, but no watermark image (a PNG or SVG FILE, or "
                              "watermark.url in the job)");
    // A table the loader rejects would otherwise fail every clip in ffmpeg.
    for (const QString& file : request.files) {
        if (MediaType::extensionOf(file) != "cube")
            continue;
        try {
            CubeLUT::load(file);
        } catch (const LUTParseError& error) {
            return file + ": " + error.description();
        }
    }
    return std::nullopt;
}

// A clip ffprobe could not read, or one without a picture (an audio-only
// file): the batch cannot convert it.
std::optional<QString> unsupportedInput(const ClipItem& clip)
{
    const QString path = clip.url.toLocalFile();
    if (clip.readError)
        return path + ": unsupported input: " + *clip.readError;
    if (clip.width.value_or(0) <= 0 || clip.height.value_or(0) <= 0)
        return path + ": unsupported input: no video stream";
    return std::nullopt;
}

// Whether every clip has been probed, successfully or not.
bool allProbed(const AppModel& model)
{
    return std::all_of(model.clips().begin(), model.clips().end(),
                       [](const ClipItem& clip) { return clip.duration || clip.readError; });
}

// Why the batch could not write to `folder`: a file stands at it, or at one
// of the folders it would be made in.
std::optional<QString> outputFolderProblem(const QString& folder)
{
    if (folder.isEmpty())
        return std::nullopt;  // reported once the clips are known
    QFileInfo existing(folder);
    while (!existing.exists() && !existing.isRoot())
        existing = QFileInfo(existing.absolutePath());
    if (!existing.exists() || existing.isDir())
        return std::nullopt;
    if (existing.absoluteFilePath() == QFileInfo(folder).absoluteFilePath())
        return folder + ": not a folder";
    return folder + ": " + existing.absoluteFilePath() + " is not a folder";
}

void complainOfOutput(int error)
{
    complain(QStringLiteral("could not write to standard output: ") + QString::fromLocal8Bit(std::strerror(error)));
}

// Writes `text` to standard output. A reader that went away counts as a
// SIGPIPE (exit 141); any other failure is reported, with exit status 1.
int print(const QString& text, InterruptWatcher& interrupts)
{
    const int error = writeStandardOutput(text.toUtf8());
    if (error == 0)
        return 0;
    if (error == EPIPE) {
        interrupts.noteBrokenPipe();
        return interrupts.exitStatus();
    }
    complainOfOutput(error);
    return 1;
}

int printPlan(AppModel& model, InterruptWatcher& interrupts)
{
    QString text;
    const QString program = model.ffmpeg().binaryPath(QStringLiteral("ffmpeg"));
    for (const PlannedCommand& command : model.plannedCommands()) {
        QJsonArray argv{program};
        for (const QString& argument : command.arguments)
            argv.append(argument);
        text += QString::fromUtf8(QJsonDocument(argv).toJson(QJsonDocument::Compact)) + "\n# output: "
                + printablePath(command.output) + "\n";
    }
    text += "# forecast: " + forecastSummary(model.sizeForecast()) + "\n";
    return print(text, interrupts);
}

// What the progress display shows for the batch as it stands, `elapsed`
// seconds after it started.
ProgressState progressOf(const AppModel& model, double elapsed)
{
    const QList<ClipItem>& clips = model.clips();
    const double overall = model.conversionFraction();
    // Once every part is made, the remaining step is the joining, which
    // counts as one more clip's worth of the overall fraction.
    const bool joining = model.settings().concatenateClips && clips.size() > 1
                         && std::all_of(clips.begin(), clips.end(), [](const ClipItem& clip) {
                                return clip.status == ClipStatus::converting && clip.progress >= 1;
                            });
    if (joining) {
        const auto n = static_cast<double>(clips.size());
        return {QStringLiteral("combined video"), std::clamp(overall * (n + 1) - n, 0.0, 1.0), overall,
                TimeFormatting::timeLeft(elapsed, overall)};
    }
    const auto clip = model.selectedClip();
    return {clip ? clip->name : QString(), clip ? clip->progress : 0.0, overall,
            TimeFormatting::timeLeft(elapsed, overall)};
}

// Lists each written file on standard output as soon as it is in place, so
// a reader sees the first file while the batch goes on. A failed write
// stops the batch: a reader that went away counts as SIGPIPE, any other
// failure is kept for the end (status 1).
class WrittenFileList {
public:
    WrittenFileList(AppModel& model, InterruptWatcher& interrupts) : model_(model), interrupts_(interrupts) {}

    // Prints the files the clips record as done that are not listed yet.
    void update()
    {
        if (error_)
            return;
        for (const ClipItem& clip : model_.clips()) {
            if (clip.status != ClipStatus::done || !clip.outputURL)
                continue;
            const QString file = clip.outputURL->toLocalFile();
            if (listed_.contains(file))
                continue;  // every clip of a combined batch names the one file
            listed_ << file;
            error_ = writeStandardOutput((printablePath(file) + "\n").toUtf8());
            if (error_ == 0)
                continue;
            if (error_ == EPIPE)
                interrupts_.noteBrokenPipe();  // stops the batch like SIGPIPE
            else
                model_.cancelConversion();
            return;
        }
    }

    // The final complaint and status for a write that failed, or 0.
    int reportFailure() const
    {
        if (error_ == 0 || error_ == EPIPE)
            return 0;
        complainOfOutput(error_);
        return 1;
    }

private:
    AppModel& model_;
    InterruptWatcher& interrupts_;
    QStringList listed_;
    int error_ = 0;
};

QCoro::Task<int> runBatch(AppModel& model, InterruptWatcher& interrupts)
{
    ProgressPrinter printer = ProgressPrinter::forStandardError();
    WrittenFileList written(model, interrupts);
    QElapsedTimer clock;
    {
        QObject listening;  // its end disconnects everything below
        // Status texts written after the batch stops (twice after a stop)
        // are left to the final line.
        QObject::connect(&model, &AppModel::statusMessageChanged, &listening, [&] {
            if (model.isConverting())
                printer.status(model.statusMessage());
        });
        // The controller writes a clip's progress before the overall
        // fraction, so the fraction's change sees both up to date.
        QObject::connect(&model, &AppModel::conversionFractionChanged, &listening, [&] {
            if (model.isConverting())
                printer.progress(progressOf(model, static_cast<double>(clock.elapsed()) / 1000.0));
        });
        QObject::connect(&model, &AppModel::errorMessageChanged, &listening, [&] {
            if (model.errorMessage().isEmpty())
                return;
            const auto failed = std::find_if(model.clips().begin(), model.clips().end(), [](const ClipItem& clip) {
                return clip.status == ClipStatus::failed;
            });
            printer.message(prefix + (failed != model.clips().end() ? failed->name + ": " : QString())
                            + model.errorMessage());
        });
        QObject::connect(&interrupts, &InterruptWatcher::interruptReceived, &listening,
                         [&model] { model.cancelConversion(); });
        QObject::connect(&model, &AppModel::clipsChanged, &listening, [&written] { written.update(); });

        clock.start();
        model.startConversion();
        co_await model.conversionFinished();
    }
    printer.message(model.statusMessage());
    const int printed = written.reportFailure();

    if (interrupts.interrupted())
        co_return interrupts.exitStatus();
    if (printed != 0)
        co_return printed;
    const bool allDone = std::all_of(model.clips().begin(), model.clips().end(),
                                     [](const ClipItem& clip) { return clip.status == ClipStatus::done; });
    co_return allDone ? 0 : 1;
}

QCoro::Task<int> convert(ConvertRequest request, bool dryRun, InterruptWatcher& interrupts)
{
    AppModel::Options options;
    options.previews = false;  // nothing is shown: no player, no stills
    AppModel model(options);
    if (request.outputFolder)
        model.setOutputFolder(QUrl::fromLocalFile(*request.outputFolder));
    if (const auto problem = outputFolderProblem(model.outputFolder().toLocalFile())) {
        complain(*problem);
        co_return 2;
    }
    // A dry run only shows ffmpeg's commands, but probes the clips as well.
    const QStringList tools = dryRun ? QStringList{"ffprobe"} : QStringList{"ffprobe", "ffmpeg"};
    if (const auto missing = missingTool(model.ffmpeg(), tools)) {
        complain(*missing);
        co_return 2;
    }
    model.setSettings(request.settings.appliedTo(model.settings()));
    QList<QUrl> urls;
    for (const QString& file : request.files)
        urls << QUrl::fromLocalFile(file);
    model.addURLs(urls);
    if (!model.errorMessage().isEmpty()) {  // an unreadable watermark image
        complain(model.errorMessage());
        co_return 2;
    }

    // An interrupt does not wait for the remaining probes: the controller's
    // end stops the running ffprobe.
    while (!allProbed(model) && !interrupts.interrupted())
        co_await firstSignal(&model, &AppModel::probePassEnded, &interrupts, &InterruptWatcher::interruptReceived);
    if (interrupts.interrupted())
        co_return interrupts.exitStatus();
    co_await model.probesFinished();
    for (const ClipItem& clip : model.clips()) {
        if (const auto problem = unsupportedInput(clip)) {
            complain(*problem);
            co_return 2;
        }
    }
    applyClipEdits(model, request.clipEdits);
    placeWatermark(model, request.watermark);
    if (!model.canConvert()) {
        complain(QStringLiteral("no output folder (the desktop reports no Videos folder); use --output DIR"));
        co_return 2;
    }

    if (!dryRun)
        co_return co_await runBatch(model, interrupts);
    // Shown as it would run: with the encoders this machine would use.
    try {
        co_await model.ffmpeg().detectEncoders(interrupts.stopSource().get_token());
    } catch (const FFmpegError&) {
        // The only failure detection reports is a stop.
        co_return interrupts.interrupted() ? interrupts.exitStatus() : 130;
    }
    co_return printPlan(model, interrupts);
}

}  // namespace

int runConvert(const QStringList& arguments)
{
    ConvertOptions options;
    ConvertJob job;
    try {
        options = parseConvertOptions(arguments);
        if (options.help) {
            QTextStream(stdout) << convertHelpText();
            return 0;
        }
        if (options.jobPath)
            job = readConvertJob(*options.jobPath);
    } catch (const UsageError& error) {
        complain(error.message + " (see 'tavrelune convert --help')");
        return 2;
    } catch (const JobFileError& error) {
        complain(*options.jobPath + ": " + error.message);
        return 2;
    }
    const ConvertRequest request = mergeRequest(job, options);
    if (const auto problem = inputProblem(request)) {
        complain(*problem);
        return 2;
    }
    InterruptWatcher interrupts;
    return waitForTask(convert(request, options.dryRun, interrupts));
}

}  // namespace tavrelune::cli
