#include "engine/concat_job.h"
#include "export_fixtures.h"

#include <QDir>
#include <QFileInfo>
#include <QTimer>
#include <algorithm>
#include <gtest/gtest.h>

namespace tavrelune {
namespace {

class ConcatenateTest : public ::testing::Test {
protected:
    ConcatenateTest()
    {
        QDir().mkpath(output.section('/', 0, -2));
        service.pinEncoders(test::quickSoftwareEncoders());
    }

    std::optional<FFmpegError> join(const QStringList& parts, double duration, std::stop_token stop = {})
    {
        return test::failureOf(service.concatenate(parts, output, duration, {.codec = VideoCodec::h264},
                                                   {320, 180, 25, 1}, [this](double f) { progress.push_back(f); },
                                                   stop));
    }
    // The parts lie in `folder`, which holds the list while joining.
    bool listFileExists() const { return QFileInfo::exists(concatListPath(folder.path())); }

    test::TempFolder folder;
    const QString output = folder.file("out put's [final]; é/all.mp4");
    FFmpegService service;
    std::vector<double> progress;
};

// The largest step between the picture's frame times, in seconds.
double longestFrameStep(const QString& path)
{
    QList<double> times;
    for (const QByteArray& line :
         test::runTool("ffprobe", {"-v", "error", "-select_streams", "v:0", "-show_entries", "packet=pts_time",
                                   "-of", "csv=p=0", path}).out.split('\n'))
        if (!line.trimmed().isEmpty())
            times << line.toDouble();
    std::sort(times.begin(), times.end());
    double longest = 0;
    for (qsizetype i = 1; i < times.size(); ++i)
        longest = std::max(longest, times[i] - times[i - 1]);
    return longest;
}

// Differently shaped clips, one silent, converted to one normalization and
// joined: the picture runs on without gaps and the sound stays with it.
TEST_F(ConcatenateTest, PartsOfOneNormalizationJoinToTheSumOfTheirLengths)
{
    QStringList parts;
    for (const test::ClipSpec& source : {test::ClipSpec{.width = 320, .height = 180, .seconds = 0.52},
                                         {.width = 160, .height = 120, .rate = "30", .seconds = 0.6, .audio = false},
                                         {.width = 200, .height = 100, .seconds = 0.52}}) {
        parts << folder.file(QString("part it's %1.mov").arg(parts.size()));
        ClipConversion part = test::clipJob(parts.last() + ".src.mp4", parts.last(), source);
        part.normalization = VideoNormalization{320, 180, 25, 1};
        ASSERT_FALSE(test::failureOf(service.convertClip(part, {}, {})));
    }
    EXPECT_EQ(join(parts, 1.64), std::nullopt);
    EXPECT_NEAR(test::probeEntry(output, "duration").toDouble(), 1.64, 0.001);
    EXPECT_NEAR(longestFrameStep(output), 0.04, 0.001);
    const QString sound = folder.file("sound.wav");
    test::runTool("ffmpeg", {"-v", "error", "-i", output, "-map", "0:a:0", sound});
    EXPECT_NEAR(test::probeEntry(sound, "duration", "a:0").toDouble(), 1.64, 0.02);
    EXPECT_EQ(test::audioStreamCount(output), 1);
    EXPECT_FALSE(listFileExists());
    ASSERT_FALSE(progress.empty());
    EXPECT_NEAR(progress.back(), 1.0, 0.05);
}

// MP4 cannot carry FFV1 video, so copying fails and the join is re-encoded.
// However the join ends, its list file goes.
TEST_F(ConcatenateTest, CopyFailureFallsBackToReencodingAndTheListFileNeverStays)
{
    const QString part = folder.file("camera.mov");
    test::makeClip(part, {.seconds = 0.5, .videoCodec = "ffv1", .audioCodec = "pcm_s16le"});
    EXPECT_EQ(join({part, part}, 1.0), std::nullopt);
    EXPECT_NEAR(test::probeEntry(output, "duration", "format").toDouble(), 1.0, 0.1);
    EXPECT_EQ(test::probeEntry(output, "codec_name", "a:0"), "aac");
    EXPECT_FALSE(listFileExists());

    EXPECT_EQ(join({}, 1), FFmpegError::conversionFailed("No clips to concatenate."));
    EXPECT_EQ(join({folder.file("missing.mp4")}, 1).value().kind(), FFmpegError::Kind::conversionFailed);
    EXPECT_FALSE(listFileExists());

    FFmpegService slow(ToolLocator({test::writeFakeTool(folder.file("b"), "ffmpeg", "exec sleep 30"), {}, {}}));
    std::stop_source stop;
    QTimer::singleShot(200, [&] { stop.request_stop(); });
    EXPECT_EQ(test::failureOf(slow.concatenate({folder.file("p.mp4")}, output, 1, {}, {2, 2}, {}, stop.get_token())),
              FFmpegError::cancelled());
    EXPECT_FALSE(listFileExists());
}

}  // namespace
}  // namespace tavrelune
