#include "controller/batch_plan.h"
#include "controller/output_naming.h"
#include "support/temp_folder.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QTimeZone>
#include <gtest/gtest.h>

using namespace tavrelune;
using tavrelune::test::TempFolder;

namespace {

ClipItem probedClip(std::optional<int64_t> width, std::optional<int64_t> height,
                    std::optional<double> fps, bool hasAudio = true)
{
    ClipItem clip(QUrl::fromLocalFile("/c/a.mov"));
    clip.duration = 10;
    clip.width = width;
    clip.height = height;
    clip.fps = fps;
    clip.hasAudio = hasAudio;
    return clip;
}

}  // namespace

TEST(BatchPlan, CombinedTargetComesFromTheFirstClip)
{
    struct Case {
        std::optional<int64_t> width, height;
        std::optional<double> fps;
        int64_t expectedWidth, expectedHeight;
        double expectedFps;
    };
    const Case cases[] = {
        {1920, 1080, 25, 1920, 1080, 25},
        {std::nullopt, std::nullopt, std::nullopt, 1920, 1080, 24},
        {1919, 1081, 30000.0 / 1001, 1918, 1080, 30000.0 / 1001},
        {1, 0, 240, 2, 2, 120},
        {640, 480, 0.5, 640, 480, 1},
    };
    EncodeSettings settings;
    settings.concatenateClips = true;
    for (const Case& c : cases) {
        const BatchPlan plan = planBatch({probedClip(c.width, c.height, c.fps), probedClip(320, 240, 60)}, settings);
        ASSERT_TRUE(plan.normalization);
        EXPECT_EQ(plan.normalization->width, c.expectedWidth);
        EXPECT_EQ(plan.normalization->height, c.expectedHeight);
        EXPECT_DOUBLE_EQ(plan.normalization->fps, c.expectedFps);
        EXPECT_EQ(plan.progressDenominator(), 3);
    }
}

TEST(BatchPlan, PartsCarryAsManyAudioTracksAsTheClipWithTheMost)
{
    EncodeSettings settings;
    settings.concatenateClips = true;
    ClipItem camera = probedClip(8, 8, 24);
    camera.audioTracks = {{"pcm_s24le", 1}, {"pcm_s24le", 1}, {"pcm_s24le", 1}};
    const auto tracksOf = [&settings](const ClipItem& first, const ClipItem& second) {
        return planBatch({first, second}, settings).normalization->audioTracks;
    };
    EXPECT_EQ(tracksOf(probedClip(8, 8, 24, false), probedClip(8, 8, 24)), 1) << "unprobed audio is one track";
    EXPECT_EQ(tracksOf(probedClip(8, 8, 24, false), probedClip(8, 8, 24, false)), 0);
    EXPECT_EQ(tracksOf(probedClip(8, 8, 24), camera), 3);
    const BatchPlan plan = planBatch({probedClip(8, 8, 24), camera}, settings);
    EXPECT_EQ(expectedClipOutput(probedClip(8, 8, 24), plan, settings).audioTracks, 3);
    EXPECT_EQ(expectedJoinedOutput(plan, settings, 20).audioTracks, 3);
    settings.concatenateClips = false;
    EXPECT_EQ(expectedClipOutput(camera, planBatch({camera}, settings), settings).audioTracks, 3);
    settings.concatenateClips = true;
    settings.removeAudio = true;
    EXPECT_EQ(tracksOf(camera, camera), 0);

    settings.removeAudio = false;
    const BatchPlan single = planBatch({probedClip(8, 8, 24)}, settings);
    EXPECT_FALSE(single.combine) << "one clip is never combined";
    EXPECT_FALSE(single.normalization);
    EXPECT_EQ(single.progressDenominator(), 1);
}

TEST(BatchPlan, JobTakesTheClipsTrimGradeAndFallbackSize)
{
    ClipItem clip = probedClip(std::nullopt, 720, 24, false);
    clip.inPoint = 2.25;
    clip.outPoint = 6;
    clip.grade.exposure = 0.5;
    clip.grade.temperature = 30;
    const BatchPlan plan = planBatch({clip}, EncodeSettings{});
    const ClipConversion job = conversionFor(clip, plan, "/out/a_graded.mp4", QString("/w/active-lut.cube"),
                                             std::nullopt, EncodeSettings{});
    EXPECT_EQ(job.input, "/c/a.mov");
    EXPECT_DOUBLE_EQ(job.startTime, 2.25);
    EXPECT_DOUBLE_EQ(job.duration, 3.75);
    EXPECT_TRUE(job.trim);
    EXPECT_EQ(job.width, 1920) << "unknown width: the batch's target";
    EXPECT_EQ(job.height, 720);
    EXPECT_EQ(job.grade.exposure, 0.5);
    EXPECT_EQ(job.grade.temperature, 30);
    EXPECT_FALSE(job.hasAudio);
    EXPECT_EQ(job.lutPath, QString("/w/active-lut.cube"));

    ClipItem unprobed(QUrl::fromLocalFile("/c/b.mov"));
    EXPECT_EQ(exportDuration(unprobed), 0);
    EXPECT_EQ(partFileName(0), "000.mov");
    EXPECT_EQ(partFileName(12), "012.mov");
}

TEST(OutputNaming, NumbersTakenNames)
{
    QStringList taken{"/out/a_graded.mp4", "/out/a_graded-2.mp4", "/out/Tavrelune_2025-03-07T14-05-09Z.mp4"};
    const auto isTaken = [&taken](const QString& path) { return taken.contains(path); };
    EXPECT_EQ(OutputNaming::uniqueOutputPath("/card/a.mov", "/out", isTaken), "/out/a_graded-3.mp4");
    EXPECT_EQ(OutputNaming::uniqueOutputPath("/card/b.tar.MOV", "/out", isTaken), "/out/b.tar_graded.mp4");
    const QDateTime when(QDate(2025, 3, 7), QTime(15, 5, 9), QTimeZone(3600));
    EXPECT_EQ(OutputNaming::uniqueCombinedOutputPath("/out", when, isTaken),
              "/out/Tavrelune_2025-03-07T14-05-09Z-2.mp4");
    taken << "/out/Day one.mp4";
    for (const char* name : {"Day one", " Day one.MP4 "})
        EXPECT_EQ(OutputNaming::uniqueCombinedOutputPath("/out", when, isTaken, name), "/out/Day one-2.mp4");
    EXPECT_EQ(OutputNaming::uniqueCombinedOutputPath("/out", when, isTaken, "../up"), "/out/..-up.mp4");
    EXPECT_EQ(OutputNaming::uniqueCombinedOutputPath("/out", when, isTaken, ".mp4"),
              "/out/Tavrelune_2025-03-07T14-05-09Z-2.mp4");
}

TEST(OutputNaming, OverlongNamesAreShortenedByWholeCharactersToFit)
{
    TempFolder folder;
    const auto bytes = [](const QString& path) { return QFileInfo(path).fileName().toUtf8().size(); };
    const auto never = [](const QString&) { return false; };
    const QString accented = QString("e\u0301").repeated(90);  // 270 bytes, 90 characters
    const QString path = OutputNaming::uniqueOutputPath("/card/" + accented + ".mov", folder.path(), never);
    EXPECT_EQ(QFileInfo(path).fileName(), QString("e\u0301").repeated(81) + "_graded.mp4");
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << "the file system takes the name";

    const QString ascii(246, 'a');
    const auto firstTaken = [&](const QString& candidate) { return candidate.endsWith("_graded.mp4"); };
    const QString second = OutputNaming::uniqueOutputPath("/card/" + ascii + ".mov", "/out", firstTaken);
    EXPECT_EQ(bytes(second), 255);
    EXPECT_TRUE(second.endsWith(QString(242, 'a') + "_graded-2.mp4")) << second.toStdString();
}

// A 2 s clip, then a 30 s one, then one not yet probed: shares follow the
// seconds (and pixels) to write, so the time left holds from the start.
TEST(BatchPlan, ProgressSharesFollowTheWorkNotTheClipCount)
{
    ClipItem shortClip = probedClip(1920, 1080, 30);
    shortClip.duration = 2;
    ClipItem longClip = probedClip(1920, 1080, 30);
    longClip.duration = 30;
    ClipItem unknown = probedClip(1920, 1080, 30);
    unknown.duration.reset();
    const QList<double> shares = progressShares({shortClip, longClip, unknown}, planBatch({shortClip}, {}));
    ASSERT_EQ(shares.size(), 3);
    EXPECT_NEAR(shares[0], 2.0 / 48, 1e-12);
    EXPECT_NEAR(shares[1], 30.0 / 48, 1e-12);
    EXPECT_NEAR(shares[2], 16.0 / 48, 1e-12) << "as long as the average known clip";

    ClipItem small = probedClip(960, 540, 30);
    small.duration = 2;
    EXPECT_NEAR(progressShares({small, shortClip}, planBatch({small}, {}))[0], 0.2, 1e-12) << "a quarter of the pixels";

    EncodeSettings combine;
    combine.concatenateClips = true;
    const QList<double> joined = progressShares({small, shortClip}, planBatch({small, shortClip}, combine));
    EXPECT_EQ(joined, (QList<double>{0.5 / 1.05, 0.5 / 1.05, 0.05 / 1.05})) << "parts share the batch's size";
}
