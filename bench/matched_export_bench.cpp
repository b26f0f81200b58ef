// "Match preview colours": how close an export comes to the preview, and how
// fast it is against the grade filter chain.
//
// Usage: matched_export_bench [benchmark flags] WORKDIR LUT TIMING_INPUT SECONDS SOURCE...
// Accuracy, written to WORKDIR/accuracy.txt: for each SOURCE (1080p clips)
// and each grade, the first frame as the preview shows it (read by the
// preview's player, graded by the reference grade) against the exported
// file read by the same player, per channel in 8-bit steps (mean, 95th
// percentile), for the matched export and for the filter chain; "round
// trip" is a neutral matched export against the ungraded preview, the
// error the encoder alone makes. Speed, as Google Benchmark cases: a graded
// export of TIMING_INPUT with LUT, matched (baking included) and with the
// filter chain, with its multiple of real time.
#include "async/blocking_wait.h"
#include "engine/clip_conversion.h"
#include "engine/ffmpeg_service.h"
#include "grading/baked_cube.h"
#include "grading/grade_pipeline.h"
#include "preview/clip_preview_player.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QUrl>
#include <benchmark/benchmark.h>
#include <algorithm>
#include <cstdio>

using namespace tavrelune;

namespace {

struct NamedGrade {
    const char* name;
    GradeValues values;
    bool withLut;
};

const NamedGrade grades[] = {
    {"temperature +60", {.temperature = 60}, false},
    {"contrast 1.3", {.contrast = 1.3}, false},
    {"exp 0.3 con 1.1 sat 1.2 temp 30", {.exposure = 0.3, .contrast = 1.1, .saturation = 1.2, .temperature = 30},
     false},
    {"33-point LUT", {}, true},
};

QCoro::Task<bool> convertOnce(FFmpegService& service, ClipConversion job)
{
    try {
        co_await service.convertClip(std::move(job), [](double) {}, {});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "convertClip failed: %s\n", error.what());
        co_return false;
    }
    co_return true;
}

ClipConversion exportJob(const QString& input, const QString& output, const NamedGrade& grade,
                         const QString& lutPath, bool matched, const QString& workDir,
                         const std::optional<CubeLUT>& lut, const ColorTags& color, double seconds)
{
    ClipConversion job;
    job.input = input;
    job.output = output;
    job.settings.codec = VideoCodec::h264;
    job.settings.quality = QualityPreset::high;
    job.settings.removeAudio = true;
    job.settings.matchPreview = matched;
    job.duration = seconds;
    job.width = 1920;
    job.height = 1080;
    job.sourceColor = color;
    job.grade = grade.values;
    if (grade.withLut)
        job.lutPath = lutPath;
    const std::optional<CubeLUT> usedLut = grade.withLut ? lut : std::nullopt;
    if (matched && BakedCube::isNeeded(grade.values, usedLut))
        job.bakedCube = BakedCube::writeBakedCube(workDir, grade.values, usedLut);
    return job;
}

std::shared_ptr<const VideoFrame> previewFrame(ClipPreviewPlayer& player, const QString& path)
{
    if (!waitForTask(player.load(QUrl::fromLocalFile(path))))
        return nullptr;
    QElapsedTimer clock;
    clock.start();
    while (!player.latestFrame() && clock.elapsed() < 10000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return player.latestFrame();
}

QString difference(const VideoFrame& a, const VideoFrame& b)
{
    std::vector<int> steps[3];
    for (int y = 0; y < a.height(); ++y) {
        const std::uint8_t* pa = a.pixels().row(y);
        const std::uint8_t* pb = b.pixels().row(y);
        for (int x = 0; x < a.width(); ++x)
            for (int c = 0; c < 3; ++c)  // bytes blue, green, red
                steps[2 - c].push_back(std::abs(pa[x * 4 + c] - pb[x * 4 + c]));
    }
    QStringList parts;
    for (auto& channel : steps) {
        std::sort(channel.begin(), channel.end());
        double sum = 0;
        for (int step : channel)
            sum += step;
        parts << QString::asprintf("%4.1f/%-3d", sum / double(channel.size()), channel[channel.size() * 95 / 100]);
    }
    return parts.join(QLatin1Char(' '));
}

bool measureAccuracy(const QString& workDir, const QString& lutPath, const QStringList& sources)
{
    FFmpegService service;
    service.pinSoftwareEncoders();
    ClipPreviewPlayer player({QStringLiteral("null")});
    const std::optional<CubeLUT> lut = CubeLUT::load(lutPath);
    QFile report(workDir + "/accuracy.txt");
    if (!report.open(QIODevice::WriteOnly))
        return false;
    report.write(QString::asprintf("%-10s %-32s %-25s %-25s %-25s\n", "source", "grade",
                                   "round trip R/G/B mean/p95", "matched R/G/B", "filter chain R/G/B")
                     .toUtf8());
    for (const QString& source : sources) {
        const ColorTags color = waitForTask(service.probe(source)).color;
        const QString name = QFileInfo(source).completeBaseName();
        const NamedGrade neutral{"neutral", {}, false};
        const QString roundTripFile = workDir + "/" + name + "-neutral.mp4";
        if (!waitForTask(convertOnce(service, exportJob(source, roundTripFile, neutral, lutPath, true, workDir,
                                                        lut, color, 1))))
            return false;
        const auto seen = previewFrame(player, source);
        const auto roundTrip = previewFrame(player, roundTripFile);
        if (!seen || !roundTrip)
            return false;
        const QString roundTripText = difference(*seen, *roundTrip);
        for (const NamedGrade& grade : grades) {
            const QString matchedFile = workDir + "/" + name + "-matched.mp4";
            const QString chainFile = workDir + "/" + name + "-chain.mp4";
            if (!waitForTask(convertOnce(service, exportJob(source, matchedFile, grade, lutPath, true, workDir,
                                                            lut, color, 1)))
                || !waitForTask(convertOnce(service, exportJob(source, chainFile, grade, lutPath, false, workDir,
                                                               lut, color, 1))))
                return false;
            VideoFrame graded(seen->width(), seen->height());
            GradePipeline::apply(seen->pixels(), graded.pixels(), grade.values,
                                 grade.withLut ? lut : std::nullopt);
            const auto matched = previewFrame(player, matchedFile);
            const auto chain = previewFrame(player, chainFile);
            if (!matched || !chain)
                return false;
            report.write(QString::asprintf("%-10s %-32s %-25s %-25s %-25s\n", qPrintable(name), grade.name,
                                           qPrintable(roundTripText), qPrintable(difference(graded, *matched)),
                                           qPrintable(difference(graded, *chain)))
                             .toUtf8());
        }
    }
    return true;
}

struct Timing {
    QString workDir;
    QString lutPath;
    QString input;
    double seconds = 10;
};

void benchmarkExport(benchmark::State& state, Timing timing, bool matched)
{
    FFmpegService service;
    service.pinSoftwareEncoders();
    const std::optional<CubeLUT> lut = CubeLUT::load(timing.lutPath);
    const NamedGrade& grade = grades[2];
    const NamedGrade withLut{grade.name, grade.values, true};
    const ColorTags color = waitForTask(service.probe(timing.input)).color;
    const QString output = timing.workDir + (matched ? "/timed-matched.mp4" : "/timed-chain.mp4");
    for (auto _ : state) {
        // The bake is part of a matched export's cost. The table stays
        // afterwards for the script's filter-graph timing.
        if (matched)
            QFile::remove(timing.workDir + "/" + BakedCube::fileName(withLut.values, lut));
        QElapsedTimer timer;
        timer.start();
        const ClipConversion job =
            exportJob(timing.input, output, withLut, timing.lutPath, matched, timing.workDir, lut, color,
                      timing.seconds);
        if (!waitForTask(convertOnce(service, job))) {
            state.SkipWithError("conversion failed");
            return;
        }
        state.SetIterationTime(timer.nsecsElapsed() / 1e9);
        state.counters["seconds"] = timer.nsecsElapsed() / 1e9;
        state.counters["x_realtime"] = timing.seconds / (timer.nsecsElapsed() / 1e9);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    QCoreApplication app(argc, argv);
    if (argc < 6) {
        std::fprintf(stderr, "usage: %s WORKDIR LUT TIMING_INPUT SECONDS SOURCE...\n", argv[0]);
        return 2;
    }
    const Timing timing{QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]),
                        QString::fromLocal8Bit(argv[3]), QString::fromLocal8Bit(argv[4]).toDouble()};
    QStringList sources;
    for (int i = 5; i < argc; ++i)
        sources << QString::fromLocal8Bit(argv[i]);
    if (!measureAccuracy(timing.workDir, timing.lutPath, sources)) {
        std::fprintf(stderr, "accuracy measurement failed\n");
        return 1;
    }
    for (const bool matched : {true, false})
        benchmark::RegisterBenchmark(matched ? "matched" : "filter_chain", benchmarkExport, timing, matched)
            ->UseManualTime()
            ->Unit(benchmark::kSecond)
            ->Iterations(1);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
