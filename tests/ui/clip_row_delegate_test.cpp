// A clip row's tooltip carries what the row had to cut.
#include "model/clip_item.h"
#include "ui/clip_row_delegate.h"

#include <QListView>
#include <gtest/gtest.h>

using namespace tavrelune;

TEST(ClipRowDelegate, TheTooltipShowsTheWholeCaptionOnlyWhenTheRowCutsIt)
{
    QListView view;
    ui::ClipRowDelegate delegate(&view);
    ClipItem clip;
    clip.name = "A001.mov";
    clip.duration = 4;
    clip.grade.exposure = 0.3;
    clip.grade.contrast = 1.2;
    clip.grade.saturation = 0.8;
    clip.grade.temperature = 12;
    EXPECT_EQ(delegate.cutText(clip, view.font(), 900), "");
    EXPECT_EQ(delegate.cutText(clip, view.font(), 160),
              QString("A001.mov\n0:04 \u00B7 +0.3 EV \u00B7 1.20\u00D7 \u00B7 Sat 0.80\u00D7 \u00B7 WB +12"));
}
