#include "export_fixtures.h"

#include <QTimer>
#include <gtest/gtest.h>

namespace tavrelune {
namespace {

// NVENC is listed on machines without an NVIDIA device; only a passed trial
// counts. A stopped detection leaves nothing settled, so it runs again.
TEST(EncoderDetection, PrefersHardwareThatPassesItsTrial)
{
    test::TempFolder folder;
    const auto tool = [&](const QString& script) { return test::writeFakeTool(folder.path(), "ffmpeg", script); };
    FFmpegService service(ToolLocator({tool("exec sleep 30"), {}, {}}));
    std::stop_source stop;
    QTimer::singleShot(100, [&] { stop.request_stop(); });
    EXPECT_EQ(test::failureOf(service.detectEncoders(stop.get_token())), FFmpegError::cancelled());

    tool("case \"$*\" in *-encoders*) printf ' V..... = Video\\n ------\\n V....D h264_nvenc x\\n V....D hevc_nvenc x\\n' ;;\n"
         "*hevc_nvenc*) echo 'Cannot load libcuda.so.1' >&2; exit 1 ;; esac");
    EXPECT_EQ(service.encoder(VideoCodec::h264), softwareEncoder(VideoCodec::h264));
    EXPECT_EQ(test::failureOf(service.detectEncoders()), std::nullopt);
    EXPECT_EQ(service.encoder(VideoCodec::h264).label, "NVENC (hardware)");
    EXPECT_EQ(service.encoder(VideoCodec::hevc), softwareEncoder(VideoCodec::hevc));
    // The legend above the table's rule has the table's shape.
    EXPECT_EQ(parseEncoderList(" V..... = Video\n ------\n V....D libx264 x\n"), QStringList{"libx264"});
}

// The real tool: a conversion started during detection waits for it, and
// whatever was chosen really encodes.
TEST(EncoderDetection, RealChoiceEncodesAndConversionsWaitForIt)
{
    test::TempFolder folder;
    test::makeClip(folder.file("in.mp4"), {.seconds = 0.4, .audio = false});
    FFmpegService service;
    auto detection = service.detectEncoders();
    const ClipConversion job{.input = folder.file("in.mp4"), .output = folder.file("out.mp4"),
                             .settings = {.codec = VideoCodec::h264}, .width = 160, .height = 90};
    EXPECT_EQ(test::failureOf(service.convertClip(job, {}, {})), std::nullopt);
    EXPECT_EQ(test::failureOf(std::move(detection)), std::nullopt);
    for (VideoCodec codec : allVideoCodecs)
        EXPECT_EQ(test::runTool("ffmpeg", encoderTrialArguments(service.encoder(codec))).exitCode, 0);
}

}  // namespace
}  // namespace tavrelune
