// The frame size and mpv filter for each kind of track.
#include "preview/preview_filter.h"

#include <gtest/gtest.h>

using namespace tavrelune;

TEST(PreviewFilter, FramesAreUprightSquarePixelledAndNoLargerThan1280)
{
    struct Case {
        VideoTrackShape track;
        QSize frame;
        QString filter;
    };
    // Frames coded as fields are made whole first; others pass through.
    const QString fields = "lavfi=[bwdif=mode=send_frame:deint=interlaced,";
    const Case cases[] = {
        {{3840, 2160}, {1280, 720}, fields + "scale=w=1280:h=720:flags=bilinear,setsar=1]"},
        {{1280, 720}, {1280, 720}, fields + "scale=w=1280:h=720:flags=bilinear,setsar=1]"},
        {{160, 90}, {160, 90}, fields + "scale=w=160:h=90:flags=bilinear,setsar=1]"},
        // A phone's portrait clip: stored landscape, turned on display.
        {{3840, 2160, 1, 90}, {720, 1280}, fields + "scale=w=1280:h=720:flags=bilinear,setsar=1,transpose=clock]"},
        {{3840, 2160, 1, 270}, {720, 1280}, fields + "scale=w=1280:h=720:flags=bilinear,setsar=1,transpose=cclock]"},
        {{3840, 2160, 1, -90}, {720, 1280}, fields + "scale=w=1280:h=720:flags=bilinear,setsar=1,transpose=cclock]"},
        {{640, 480, 1, 180}, {640, 480}, fields + "scale=w=640:h=480:flags=bilinear,setsar=1,hflip,vflip]"},
        // Anamorphic: the aspect widens wide pixels and heightens tall ones.
        {{1440, 1080, 4.0 / 3.0}, {1280, 720}, fields + "scale=w=1280:h=720:flags=bilinear,setsar=1]"},
        {{720, 480, 0.9}, {720, 533}, fields + "scale=w=720:h=533:flags=bilinear,setsar=1]"},
        {{720, 480, 0}, {720, 480}, fields + "scale=w=720:h=480:flags=bilinear,setsar=1]"},
        {{2160, 3840}, {720, 1280}, fields + "scale=w=720:h=1280:flags=bilinear,setsar=1]"},
    };
    for (const Case& c : cases) {
        const PreviewFilter filter = previewFilterFor(c.track);
        EXPECT_EQ(filter.frameSize, c.frame) << c.filter.toStdString();
        EXPECT_EQ(filter.mpvFilter, c.filter);
    }
    EXPECT_TRUE(previewFilterFor({0, 1080}).frameSize.isEmpty());
    EXPECT_TRUE(previewFilterFor({}).mpvFilter.isEmpty());
}
