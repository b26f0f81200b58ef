// Live preview playback: each clip played through the real player and the
// real view for a fixed time, once through the graded view (full grade and
// a LUT) and once through the plain view as the baseline. Prints frames
// shown against the frames the clip has in the played span, mpv's own drop
// and lateness counts, the CPU cores the process used, and the per-frame
// render, grade and draw times recorded by the player and the view.
//
// preview_bench [--seconds N] [--lut FILE] NAME=CLIP...   (needs a display)
#include "async/blocking_wait.h"
#include "engine/ffmpeg_service.h"
#include "grading/cube_lut.h"
#include "ui/preview/graded_preview_view.h"
#include "ui/preview/player_layer_view.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <set>
#include <sys/resource.h>

using namespace tavrelune;

namespace {

struct Run {
    QString name;
    QString path;
    double fps = 0;
    ColorTags colour;
};

double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

QString timing(std::vector<double> samples)
{
    if (samples.empty())
        return QStringLiteral("-");
    std::sort(samples.begin(), samples.end());
    const auto at = [&](double q) { return samples[std::min(samples.size() - 1, std::size_t(q * samples.size()))]; };
    return QStringLiteral("%1/%2").arg(at(0.5), 0, 'f', 1).arg(at(0.95), 0, 'f', 1);
}

void spin(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

template <typename Done>
bool spinUntil(Done done, int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < milliseconds)
        spin(5);
    return done();
}

void play(const Run& run, bool graded, double seconds, const std::optional<CubeLUT>& lut)
{
    ClipPreviewPlayer player({QStringLiteral("null")});
    GradeSnapshot grade;
    grade.grade = {0.3, 1.1, 1.2, 40};
    grade.lut = lut;
    player.grade().assign(grade);
    auto statistics = std::make_shared<FrameStatistics>();
    player.setStatistics(statistics);
    std::unique_ptr<VideoFrameView> view;
    if (graded)
        view = std::make_unique<GradedPreviewView>(&player);
    else
        view = std::make_unique<PlayerLayerView>(&player);
    view->setStatistics(statistics);
    view->resize(1280, 720);
    view->show();
    std::set<quint64> shown;
    QObject::connect(view.get(), &VideoFrameView::frameDrawn, view.get(), [&](quint64 sequence) { shown.insert(sequence); });
    bool ended = false;
    player.onEnded = [&] { ended = true; };

    if (!waitForTask(player.load(QUrl::fromLocalFile(run.path), run.colour))) {
        std::printf("%-16s cannot be played\n", qPrintable(run.name));
        return;
    }
    if (!spinUntil([&] { return !shown.empty(); }, 10000)) {
        std::printf("%-16s no frame drawn\n", qPrintable(run.name));
        return;
    }
    spin(300);  // let start-up work settle
    shown.clear();
    statistics->clear();
    const ClipPreviewPlayer::PlaybackCounters before = player.counters();
    const double startPosition = player.position().value_or(0);
    const double cpuBefore = cpuSeconds();
    QElapsedTimer wall;
    wall.start();
    player.play();
    spinUntil([&] { return ended; }, static_cast<int>(seconds * 1000));
    player.pause();
    const double elapsed = wall.elapsed() / 1000.0;
    const double cpu = cpuSeconds() - cpuBefore;
    spin(100);
    const double played = player.position().value_or(0) - startPosition;
    const ClipPreviewPlayer::PlaybackCounters after = player.counters();

    const long expected = std::lround(played * run.fps);
    const long drawn = static_cast<long>(shown.size());
    std::printf("%-16s %-6s %5.1f %5ld/%-5ld %7ld %5lld %5lld %6.2f %11s %11s %11s\n", qPrintable(run.name),
                graded ? "graded" : "plain", drawn / elapsed, drawn, expected, std::max(0L, expected - drawn),
                static_cast<long long>(after.droppedByOutput + after.droppedByDecoder - before.droppedByOutput
                                       - before.droppedByDecoder),
                static_cast<long long>(after.delayed - before.delayed), cpu / elapsed,
                qPrintable(timing(statistics->samples(FrameStatistics::Stage::render))),
                qPrintable(timing(statistics->samples(FrameStatistics::Stage::grade))),
                qPrintable(timing(statistics->samples(FrameStatistics::Stage::draw))));
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    double seconds = 10;
    std::optional<CubeLUT> lut;
    std::vector<Run> runs;
    FFmpegService ffmpeg;
    const QStringList arguments = app.arguments().mid(1);
    for (int i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == "--seconds" && i + 1 < arguments.size()) {
            seconds = arguments[++i].toDouble();
        } else if (argument == "--lut" && i + 1 < arguments.size()) {
            lut = CubeLUT::load(arguments[++i]);
        } else if (argument.contains('=')) {
            Run run{argument.section('=', 0, 0), argument.section('=', 1)};
            const MediaInfo info = waitForTask(ffmpeg.probe(run.path));
            run.fps = info.fps;
            run.colour = info.color;  // HDR clips take the delivery conversion
            runs.push_back(run);
        } else {
            std::fprintf(stderr, "usage: preview_bench [--seconds N] [--lut FILE] NAME=CLIP...\n");
            return 2;
        }
    }
    std::printf("%-16s %-6s %5s %11s %7s %5s %5s %6s %11s %11s %11s\n", "clip", "view", "fps", "shown/exp",
                "missed", "drops", "late", "cores", "render ms", "grade ms", "draw ms");
    for (const Run& run : runs) {
        play(run, true, seconds, lut);
        play(run, false, seconds, lut);
    }
    std::printf("missed: frames of the played span never drawn; drops/late: mpv's own counts;\n"
                "times: median/p95 per frame (render: mpv's software render call on the player's thread;\n"
                "grade: the view's grading thread; draw: upload and draw on the GUI thread).\n");
    return 0;
}
