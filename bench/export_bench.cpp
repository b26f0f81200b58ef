// Export speed: one graded 1080p conversion through FFmpegService::convertClip
// against the very same argument vector run directly with ffmpeg.
//
// Usage: export_bench [benchmark flags] INPUT LUT WORKDIR SECONDS CODEC:PRESET...
// e.g. export_bench in.mp4 look.cube /tmp/w 10 h264:faster hevc:fast
// Each repetition runs both, alternating which goes first; the counters give
// the wall-time ratio (ours / direct) and the speed as a multiple of real
// time. The last output of each encoder and preset is kept in WORKDIR as
// <codec>-<preset>.mp4, and the grade chain in WORKDIR/grade.txt, so the
// calling script can measure quality against the graded source.
#include "async/blocking_wait.h"
#include "engine/clip_conversion.h"
#include "engine/ffmpeg_service.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <benchmark/benchmark.h>
#include <cstdio>


using namespace tavrelune;

namespace {

struct Setup {
    QString input;
    QString lut;
    QString workDir;
    double seconds = 10;
};

// A visible, non-neutral grade, as an editor would export it.
ClipConversion gradedJob(const Setup& setup, VideoCodec codec, const QString& output)
{
    ClipConversion job;
    job.input = setup.input;
    job.output = output;
    job.lutPath = setup.lut;
    job.grade = {.exposure = 0.3, .contrast = 1.1, .saturation = 1.15, .temperature = 40};
    job.settings.codec = codec;
    job.settings.quality = QualityPreset::high;
    job.duration = setup.seconds;
    job.width = 1920;
    job.height = 1080;
    job.hasAudio = true;
    return job;
}

VideoEncoder encoderWithPreset(VideoCodec codec, const QString& preset)
{
    VideoEncoder encoder = softwareEncoder(codec);
    const auto at = encoder.options.indexOf(QStringLiteral("-preset"));
    encoder.options[at + 1] = preset;
    return encoder;
}

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

double timeOurs(FFmpegService& service, const ClipConversion& job)
{
    QElapsedTimer timer;
    timer.start();
    if (!tavrelune::waitForTask(convertOnce(service, job)))
        return -1;
    return timer.nsecsElapsed() / 1e9;
}

double timeDirect(const QString& ffmpeg, const QStringList& arguments)
{
    QElapsedTimer timer;
    timer.start();
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(ffmpeg, arguments);
    if (!process.waitForFinished(-1) || process.exitCode() != 0) {
        std::fprintf(stderr, "ffmpeg failed: %s\n", process.readAllStandardError().constData());
        return -1;
    }
    return timer.nsecsElapsed() / 1e9;
}

void benchmarkPreset(benchmark::State& state, Setup setup, VideoCodec codec, QString preset)
{
    FFmpegService service;
    EncoderCatalog catalog;
    catalog.setEncoder(codec, encoderWithPreset(codec, preset));
    service.pinEncoders(catalog);
    const QString name = caseName(codec) + QLatin1Char('-') + preset;
    const ClipConversion ours = gradedJob(setup, codec, setup.workDir + "/" + name + ".mp4");
    const ClipConversion direct = gradedJob(setup, codec, setup.workDir + "/" + name + "-direct.mp4");
    const QStringList directArguments = conversionArguments(direct, catalog.encoder(codec));
    const QString ffmpeg = service.binaryPath(QStringLiteral("ffmpeg"));

    // Alternates across repetitions too, so neither side always runs with a
    // warm page cache.
    static bool oursFirst = true;
    double oursTotal = 0;
    double directTotal = 0;
    for (auto _ : state) {
        double oursSeconds = 0;
        double directSeconds = 0;
        if (oursFirst) {
            oursSeconds = timeOurs(service, ours);
            directSeconds = timeDirect(ffmpeg, directArguments);
        } else {
            directSeconds = timeDirect(ffmpeg, directArguments);
            oursSeconds = timeOurs(service, ours);
        }
        oursFirst = !oursFirst;
        if (oursSeconds < 0 || directSeconds < 0) {
            state.SkipWithError("conversion failed");
            return;
        }
        state.SetIterationTime(oursSeconds);
        oursTotal += oursSeconds;
        directTotal += directSeconds;
    }
    QFile::remove(direct.output);
    const double runs = static_cast<double>(state.iterations());
    state.counters["ours_s"] = oursTotal / runs;
    state.counters["direct_s"] = directTotal / runs;
    state.counters["ratio"] = oursTotal / directTotal;
    state.counters["x_realtime"] = setup.seconds * runs / oursTotal;
}

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    QCoreApplication app(argc, argv);
    if (argc < 6) {
        std::fprintf(stderr, "usage: %s INPUT LUT WORKDIR SECONDS CODEC:PRESET...\n", argv[0]);
        return 2;
    }
    const Setup setup{QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]),
                      QString::fromLocal8Bit(argv[3]), QString::fromLocal8Bit(argv[4]).toDouble()};

    QFile grade(setup.workDir + "/grade.txt");
    if (grade.open(QIODevice::WriteOnly)) {
        const ClipConversion job = gradedJob(setup, VideoCodec::h264, {});
        grade.write(FFmpegService::filterGraph(job.lutPath, job.grade, std::nullopt, "yuv420p")
                        .toUtf8());
        grade.close();
    }

    for (int i = 5; i < argc; ++i) {
        const QStringList spec = QString::fromLocal8Bit(argv[i]).split(QLatin1Char(':'));
        const auto codec = spec.size() == 2 ? videoCodecFromCaseName(spec[0]) : std::nullopt;
        if (!codec) {
            std::fprintf(stderr, "not CODEC:PRESET: %s\n", argv[i]);
            return 2;
        }
        benchmark::RegisterBenchmark(argv[i], benchmarkPreset, setup, *codec, spec[1])
            ->UseManualTime()
            ->Unit(benchmark::kSecond)
            ->Iterations(1);
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
