#include "export_fixtures.h"
#include "support/temp_folder.h"

#include <QFileInfo>
#include <QImage>
#include <gtest/gtest.h>

namespace tavrelune {
namespace {

TEST(FrameExtraction, EvenSizedImageAndNoStaleImageAfterAFailure)
{
    test::TempFolder folder;
    const QString clip = folder.file("odd [1]; it's.mp4");
    test::makeClip(clip, {.width = 200, .height = 150, .seconds = 1.0, .audio = false});
    FFmpegService service;
    const QString still = folder.file("still é.png");
    ASSERT_EQ(test::failureOf(service.extractFrame(clip, 0.5, still, 101)), std::nullopt);
    EXPECT_EQ(QImage(still).size(), QSize(101, 76));

    // An older still would pass the existence check after a failed run.
    EXPECT_EQ(test::failureOf(service.extractFrame(folder.file("gone.mp4"), 0, still, 160)).value().kind(),
              FFmpegError::Kind::conversionFailed);
    EXPECT_FALSE(QFileInfo::exists(still));
}

}  // namespace
}  // namespace tavrelune
