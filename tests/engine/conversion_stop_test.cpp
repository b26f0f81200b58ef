// Stopping with the real ffmpeg, which answers SIGTERM by finishing up and
// exiting with status 255 rather than dying of the signal.
#include "export_fixtures.h"
#include "support/temp_folder.h"

#include <QFileInfo>
#include <gtest/gtest.h>

namespace tavrelune {
namespace {

TEST(ConversionStop, StopTokenAndCancelEndTheChildAndDeleteNothing)
{
    test::TempFolder folder;
    // Long enough that x265 is still busy at its first progress report.
    test::makeClip(folder.file("long.mp4"), {.width = 320, .height = 180, .seconds = 20});
    FFmpegService service;
    service.pinSoftwareEncoders();
    for (const bool throughToken : {true, false}) {
        std::stop_source stop;
        bool asked = false;
        ClipConversion job{.input = folder.file("long.mp4"), .output = folder.file("out.mp4"), .duration = 20,
                           .width = 320, .height = 180, .hasAudio = true};
        job.settings.codec = VideoCodec::hevc;
        const auto stopAtFirstProgress = [&](double) {
            if (!std::exchange(asked, true))
                throughToken ? (void)stop.request_stop() : service.cancel();
        };
        EXPECT_EQ(test::failureOf(service.convertClip(job, stopAtFirstProgress, stop.get_token())),
                  FFmpegError::cancelled());
        EXPECT_TRUE(asked);
        EXPECT_EQ(test::ffmpegChildren(), "");
        EXPECT_TRUE(QFileInfo::exists(job.input));
        EXPECT_TRUE(QFileInfo::exists(job.output)) << "a partial output is left alone";
    }

    // Preview stills are not the tracked conversion: cancel() leaves them be.
    auto still = service.extractFrame(folder.file("long.mp4"), 15, folder.file("still.png"), 160);
    service.cancel();
    EXPECT_EQ(test::failureOf(std::move(still)), std::nullopt);
}

}  // namespace
}  // namespace tavrelune
