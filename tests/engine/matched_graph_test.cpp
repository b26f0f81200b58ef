// The preview-matched export: its argument lists, and real exports of small
// generated clips read back through the preview's own player, graded by the
// preview's grade, pixel for pixel.
#include "engine/clip_conversion.h"
#include "engine/matched_graph.h"
#include "export_fixtures.h"
#include "grading/baked_cube.h"
#include "grading/grade_pipeline.h"
#include "preview/clip_preview_player.h"
#include "support/preview_fixtures.h"

#include <QUrl>
#include <gtest/gtest.h>

#include <algorithm>

namespace tavrelune {
namespace {

TEST(MatchedGraph, ReadsTheSourceAsThePreviewDoesAndTagsTheOutput)
{
    // Tags win; untagged is BT.709 from 1280 wide or past 576 high.
    EXPECT_EQ(MatchedGraph::sourceMatrix({}, 1024, 577), "bt709");
    EXPECT_EQ(MatchedGraph::sourceMatrix({}, 720, 576), "bt601");
    EXPECT_EQ(MatchedGraph::sourceMatrix({.space = "bt709"}, 320, 240), "bt709");
    EXPECT_EQ(MatchedGraph::sourceMatrix({.space = "bt470bg"}, 1920, 1080), "bt601");

    ClipConversion job{.input = "/in/c.mov", .output = "/out/c.mp4", .lutPath = "/w/active-lut.cube",
                       .exposure = 0.3, .duration = 10, .width = 1920, .height = 1080};
    job.settings.removeAudio = true;
    job.settings.matchPreview = true;
    job.bakedCube = "/w/preview-grade-0123456789abcdef.cube";
    job.sourceColor = {.range = "pc", .primaries = "bt709"};
    const VideoEncoder encoder = softwareEncoder(VideoCodec::hevc);
    EXPECT_EQ(conversionArguments(job, encoder).join(' '),
              "-nostdin -hide_banner -loglevel error -y -i /in/c.mov -vf scale=in_color_matrix=bt709:in_range=pc,"
              "format=gbrp16le,lut3d=file=/w/preview-grade-0123456789abcdef.cube:interp=tetrahedral,"
              "scale=trunc(iw/2)*2:trunc(ih/2)*2,format=gbrp16le,scale=out_color_matrix=bt709:out_range=tv,"
              "format=yuv420p -map 0:v:0 " + videoEncodingArguments(encoder, VideoCodec::hevc, 13478).join(' ')
              + " -colorspace bt709 -color_range tv -color_primaries bt709 -sn -an "
              "-movflags +faststart -progress pipe:1 -nostats /out/c.mp4");

    // A neutral SD part, watermarked: no table; the overlay blends in RGB and
    // the final conversion writes BT.601.
    job = ClipConversion{.input = "/in/c.mov", .output = "/out/c.mp4", .width = 640, .height = 480,
                         .normalization = VideoNormalization{720, 576, 25, false},
                         .watermark = WatermarkOverlay{"/w/m.png", 0, 0, 0.2, 1, 2}};
    job.settings.matchPreview = true;
    const QString arguments = conversionArguments(job, encoder).join(' ');
    EXPECT_TRUE(arguments.contains("[0:v]scale=in_color_matrix=bt601:in_range=tv,format=gbrp16le,scale=720:576:"))
        << arguments.toStdString();
    EXPECT_TRUE(arguments.contains("fps=25.000,format=gbrp16le[v];[1:v]"));
    EXPECT_TRUE(arguments.contains("overlay=0:0:format=auto,scale=out_color_matrix=bt601:out_range=tv,"
                                   "format=yuv420p[vout]"));
    EXPECT_TRUE(arguments.contains("-colorspace smpte170m -color_range tv -sn"));
    EXPECT_FALSE(arguments.contains("lut3d"));
}

// Per-channel differences of two frames of one size, in 8-bit steps.
struct Difference {
    double mean = 0;
    int p95 = 0;
};

Difference compare(const VideoFrame& a, const VideoFrame& b)
{
    std::vector<int> steps;
    for (int y = 0; y < a.height(); ++y) {
        const std::uint8_t* pa = a.pixels().row(y);
        const std::uint8_t* pb = b.pixels().row(y);
        for (int x = 0; x < a.width() * 4; ++x)
            if (x % 4 != 3)
                steps.push_back(std::abs(pa[x] - pb[x]));
    }
    std::sort(steps.begin(), steps.end());
    double sum = 0;
    for (int step : steps)
        sum += step;
    return {sum / double(steps.size()), steps[steps.size() * 95 / 100]};
}

class MatchedExportTest : public ::testing::Test {
protected:
    MatchedExportTest() { service.pinEncoders(test::quickSoftwareEncoders()); }

    std::shared_ptr<const VideoFrame> previewFrame(const QString& path)
    {
        if (!waitForTask(player.load(QUrl::fromLocalFile(path))))
            return nullptr;
        test::waitUntil([this] { return player.latestFrame() != nullptr; }, 5000);
        return player.latestFrame();
    }

    QString exportMatched(const ClipConversion& source, const GradeValues& grade, const QString& output)
    {
        ClipConversion job = source;
        job.output = output;
        job.settings.matchPreview = true;
        job.settings.quality = QualityPreset::high;
        if (BakedCube::isNeeded(grade, std::nullopt))
            job.bakedCube = BakedCube::writeBakedCube(folder.path(), grade, std::nullopt);
        const auto failure = test::failureOf(service.convertClip(job, {}, {}));
        return failure ? failure->description() : QString();
    }

    test::TempFolder folder;
    FFmpegService service;
    ClipPreviewPlayer player{{QStringLiteral("null")}};
};

TEST_F(MatchedExportTest, FileLooksLikeTheGradedPreviewForBothMatricesAndFullRange)
{
    struct Source {
        const char* name;
        int width;
        int height;
        QStringList options;
    };
    // Untagged: the preview picks the matrix by size. Sizes stay small; the
    // HD case is the smallest frame the preview calls HD.
    const Source sources[] = {
        {"sd-untagged", 320, 240, {}},
        {"hd-untagged", 1280, 720, {}},
        {"full-range", 320, 240, {"-color_range", "pc"}},
    };
    const GradeValues grade{.exposure = 0.3, .contrast = 1.1, .saturation = 1.2, .temperature = 30};
    for (const Source& source : sources) {
        SCOPED_TRACE(source.name);
        // Softened, so chroma subsampling at sharp edges does not drown the
        // colour differences this is about.
        test::ClipSpec spec{.width = source.width, .height = source.height, .seconds = 0.2, .audio = false,
                            .filter = "boxblur=3", .videoOptions = source.options};
        ClipConversion job = test::clipJob(folder.file(QString(source.name) + ".mp4"), QString(), spec);
        job.sourceColor = waitForTask(service.probe(job.input)).color;

        ASSERT_EQ(exportMatched(job, {}, folder.file("neutral.mp4")), "");
        ASSERT_EQ(exportMatched(job, grade, folder.file("graded.mp4")), "");
        const auto seen = previewFrame(job.input);
        ASSERT_TRUE(seen);
        auto graded = std::make_shared<VideoFrame>(seen->width(), seen->height());
        GradePipeline::apply(seen->pixels(), graded->pixels(), grade, std::nullopt);
        const auto neutral = previewFrame(folder.file("neutral.mp4"));
        const auto exported = previewFrame(folder.file("graded.mp4"));
        ASSERT_TRUE(neutral && exported);

        // The round trip through an encoder costs something by itself; the
        // grade may add at most a rounding step on top.
        const Difference roundTrip = compare(*seen, *neutral);
        const Difference matched = compare(*graded, *exported);
        EXPECT_LT(roundTrip.mean, 3.0);
        EXPECT_LE(matched.mean, roundTrip.mean + 1.0);
        EXPECT_LE(matched.p95, roundTrip.p95 + 3);
    }
}

}  // namespace
}  // namespace tavrelune
