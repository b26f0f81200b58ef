#include "engine/decimal_text.h"
#include "engine/ffmpeg_service.h"
#include "support/temp_folder.h"

#include <QProcess>
#include <clocale>
#include <cstdio>
#include <gtest/gtest.h>

namespace tavrelune {
namespace {

QString graph(double exposure, double contrast, double temperature, double saturation)
{
    return FFmpegService::filterGraph(std::nullopt, exposure, contrast, temperature, saturation,
                                      std::nullopt, "yuv420p");
}

TEST(FilterGraph, AdjustmentsAppearOnlyPastTheirThresholds)
{
    const QString in = "format=gbrp16le,", out = ",scale=trunc(iw/2)*2:trunc(ih/2)*2,format=yuv420p";
    EXPECT_EQ(graph(0, 1, 0, 1), in.chopped(1) + out);
    EXPECT_EQ(graph(0.001, 1.001, 0.5, 0.999), in.chopped(1) + out);
    EXPECT_EQ(graph(0.5, 1.1, 50, 1.2), in + "exposure=exposure=0.5000,colorbalance=rs=0.2000:rm=0.2000:"
              "rh=0.2000:bs=-0.2000:bm=-0.2000:bh=-0.2000,eq=contrast=1.1000:saturation=1.2000" + out);
    EXPECT_EQ(graph(-0.0011, 1, 0, 1), in + "exposure=exposure=-0.0011" + out);
    EXPECT_TRUE(graph(0, 1, -600, 1).contains("rh=-1.0000:bs=1.0000:"));
    EXPECT_EQ(graph(0, 1, 0, 0), in + "eq=saturation=0.0000" + out);
    EXPECT_EQ(graph(0, 2.5, 0, 5), in + "eq=contrast=2.5000:saturation=3.0000" + out);
}

TEST(FilterGraph, LutNormalizationAndEscaping)
{
    EXPECT_EQ(FFmpegService::filterGraph(QString(""), 0, 1, 0, 1, std::nullopt, "yuv420p"), graph(0, 1, 0, 1));
    EXPECT_EQ(FFmpegService::filterGraph(R"(C:\l,u't[1];é.cube)", 0, 1, 0, 1,
                                         VideoNormalization{1280, 720, 29.97002997, true}, "gbrp16le"),
              R"(format=gbrp16le,lut3d=file=C\:\\l\,u\'t\[1\]\;é.cube:interp=tetrahedral,)"
              "scale=1280:720:force_original_aspect_ratio=decrease,pad=1280:720:(ow-iw)/2:(oh-ih)/2,"
              "setsar=1,fps=29.970,format=gbrp16le");
    EXPECT_TRUE(FFmpegService::filterGraph({}, 0, 1, 0, 1, VideoNormalization{2, 2, 240, false}, "x")
                    .contains(",fps=120.000,"));
}

TEST(WatermarkFilterComplex, PlacesTheClampedWatermarkInsideTheFrame)
{
    EXPECT_EQ(FFmpegService::watermarkFilterComplex("G", {"/m.png", 0.75, 0.05, 0.2, 0.8, 2}, 1920, 1080),
              "[0:v]G[v];[1:v]format=rgba,colorchannelmixer=aa=0.8000,scale=384:-1:flags=lanczos"
              "[wm];[v][wm]overlay=1440:54:format=auto,format=yuv420p[vout]");
    EXPECT_TRUE(FFmpegService::watermarkFilterComplex("G", {"/m.png", 1, 1, 0.25, 0.999, 1}, 1920, 1080)
                    .endsWith("[1:v]format=rgba,scale=480:-1:flags=lanczos[wm];[v][wm]overlay=1440:600:"
                              "format=auto,format=yuv420p[vout]"));
    EXPECT_TRUE(FFmpegService::watermarkFilterComplex("G", {"/m.png", 0.5, 0, 0.2, 1, 0}, 1, 100)
                    .contains("scale=2:-1:flags=lanczos[wm];[v][wm]overlay=0:0:"));
}

// Qt applications hand the user's locale to the C library, where a German
// one makes printf write "0,5000".
TEST(DecimalText, IgnoresTheProcessLocale)
{
    test::TempFolder folder;
    if (QProcess::execute("localedef", {"-i", "de_DE", "-f", "UTF-8", folder.file("de_DE.UTF-8")}) != 0)
        GTEST_SKIP() << "localedef cannot build de_DE";
    setenv("LOCPATH", folder.path().toLocal8Bit().constData(), 1);
    ASSERT_TRUE(setlocale(LC_NUMERIC, "de_DE.UTF-8"));
    const QString text = graph(0.5, 1, 0, 1) + fixedDecimal(12.3456, 3);
    char printed[8];
    std::snprintf(printed, sizeof printed, "%.1f", 0.5);
    const QString qtPrinted = QString::asprintf("%.1f", 0.5);
    setlocale(LC_NUMERIC, "C");
    unsetenv("LOCPATH");
    ASSERT_STREQ(printed, "0,5") << "the locale did not take effect";
    EXPECT_EQ(qtPrinted, "0.5");
    EXPECT_TRUE(text.contains("exposure=0.5000,") && text.endsWith("12.346")) << text.toStdString();
}

}  // namespace
}  // namespace tavrelune
