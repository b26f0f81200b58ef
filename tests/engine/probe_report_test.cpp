#include "engine/probe_report.h"
#include "engine/ffmpeg_error.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

using namespace tavrelune;

namespace {

// The value of key "v" in a JSON object text, so tests can give values as
// JSON numbers or strings exactly as ffprobe might write them.
QJsonValue json(const char* valueText)
{
    const QByteArray text = QByteArray("{\"v\":") + valueText + "}";
    return QJsonDocument::fromJson(text).object().value("v");
}

}  // namespace

TEST(ProbeValues, DoubleValue)
{
    const std::pair<const char*, double> cases[] = {
        {"12.5", 12.5},     {"12", 12},           {"\"12.500000\"", 12.5}, {"\" 12.5\"", 0},
        {"\"12.5s\"", 0},   {"\"\"", 0},          {"\"+2.5\"", 2.5},       {"\"-2.5\"", -2.5},
        {"\"1e3\"", 1000},  {"null", 0},          {"true", 0},             {"[1]", 0},
        {"\"12.5 \"", 0},   {"\"0x10\"", 0},      {"\"+-1\"", 0},          {"1e400", 0},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(ProbeReport::doubleValue(json(text)), expected) << text;
    EXPECT_EQ(ProbeReport::doubleValue(QJsonValue(QJsonValue::Undefined)), 0);
}

TEST(ProbeValues, IntValue)
{
    const std::pair<const char*, int64_t> cases[] = {
        {"1920", 1920},       {"\"1920\"", 1920},  {"\"+1920\"", 1920},   {"\"-7\"", -7},
        {"\"1920.0\"", 0},    {"1919.9", 1919},    {"-1919.9", -1919},    {"\"\"", 0},
        {"\"+\"", 0},         {"\"-\"", 0},        {"\" 1920\"", 0},      {"\"1920px\"", 0},
        {"\"9223372036854775807\"", INT64_MAX},   {"\"9223372036854775808\"", 0},
        {"1e300", 0},         {"null", 0},         {"{}", 0},           {"\"+-5\"", 0},
        {"\"-+5\"", 0},     {"\"--5\"", 0},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(ProbeReport::intValue(json(text)), expected) << text;
}

TEST(ProbeValues, FrameRate)
{
    EXPECT_NEAR(*ProbeReport::frameRate(json("\"30000/1001\"")), 29.97002997, 1e-8);
    EXPECT_EQ(ProbeReport::frameRate(json("\"25/1\"")), 25);
    EXPECT_EQ(ProbeReport::frameRate(json("\"25\"")), 25);
    EXPECT_EQ(ProbeReport::frameRate(json("\"0/1\"")), 0);
    EXPECT_EQ(ProbeReport::frameRate(json("\"0/0\"")), std::nullopt);
    EXPECT_EQ(ProbeReport::frameRate(json("\"a/b\"")), std::nullopt);
    EXPECT_EQ(ProbeReport::frameRate(json("25")), std::nullopt) << "numbers are not rates";
    EXPECT_EQ(ProbeReport::frameRate(json("\"50/2/\"")), 25) << "empty pieces are dropped";
}

TEST(ProbeReportParse, ReadsTheFirstVideoStreamAndEveryAudioTrack)
{
    const MediaInfo info = ProbeReport::parse(R"({
        "streams": [
            {"codec_type": "audio", "codec_name": "aac", "bit_rate": "128000", "channels": 2},
            {"codec_type": "audio", "codec_name": "ac3", "bit_rate": "448000", "channels": "6"},
            {"codec_type": "video", "codec_name": "h264", "width": 1920, "height": "1080",
             "pix_fmt": "yuv420p", "r_frame_rate": "0/0", "avg_frame_rate": "24000/1001"},
            {"codec_type": "video", "codec_name": "mjpeg", "width": 300, "height": 300},
            {"codec_type": "audio", "codec_name": null, "channels": -1}
        ],
        "format": {"duration": "12.500000"}
    })");
    EXPECT_EQ(info.duration, 12.5);
    EXPECT_EQ(info.width, 1920);
    EXPECT_EQ(info.height, 1080);
    EXPECT_EQ(info.codecName, "h264");
    EXPECT_EQ(info.pixFmt, "yuv420p");
    EXPECT_NEAR(info.fps, 23.976, 1e-3);
    EXPECT_TRUE(info.hasAudio);
    EXPECT_EQ(info.audioBitrate, 128000) << "the first audio stream's";
    EXPECT_EQ(info.audioTracks, (QList<AudioTrack>{{"aac", 2}, {"ac3", 6}, {"", 0}}));
}

TEST(ProbeReportParse, SizeIsTheDisplayedSizeOfATurnedStream)
{
    const auto size = [](const char* turn) {
        const MediaInfo info = ProbeReport::parse(
            QString(R"({"streams": [{"codec_type": "video", "width": 320, "height": 240, %1}]})").arg(turn));
        return std::pair(info.width, info.height);
    };
    const std::pair<int64_t, int64_t> upright{320, 240};
    const std::pair<int64_t, int64_t> sideways{240, 320};
    EXPECT_EQ(size(R"("side_data_list": [{"side_data_type": "Display Matrix", "rotation": -90}])"), sideways);
    EXPECT_EQ(size(R"("side_data_list": [{"side_data_type": "other"}, {"rotation": "270"}])"), sideways);
    EXPECT_EQ(size(R"("side_data_list": [{"rotation": 180}])"), upright);
    EXPECT_EQ(size(R"("side_data_list": [{"rotation": 45}])"), upright);
    EXPECT_EQ(size(R"("tags": {"rotate": "90"})"), sideways);
    EXPECT_EQ(size(R"("tags": {"rotate": "90"}, "side_data_list": [{"rotation": 0}])"), upright)
        << "the display matrix wins over the tag";
    EXPECT_EQ(size(R"("tags": {})"), upright);
}

TEST(ProbeReportParse, MissingPartsGetNeutralValues)
{
    const MediaInfo neutral;  // 0 x 0, "unknown", "", 24 fps, no audio, 0 s
    EXPECT_EQ(ProbeReport::parse("{}"), neutral);
    EXPECT_EQ(ProbeReport::parse(R"({"streams": {"codec_type": "video"}, "format": []})"), neutral);
    EXPECT_EQ(ProbeReport::parse(R"({"streams": [{"codec_type": "video"}, 3]})"), neutral)
        << "streams that are not all objects count as none";

    const MediaInfo audioOnly = ProbeReport::parse(
        R"({"streams": [{"codec_type": "audio"}], "format": {"duration": 3}})");
    EXPECT_TRUE(audioOnly.hasAudio);
    EXPECT_EQ(audioOnly.duration, 3);
    EXPECT_EQ(audioOnly.codecName, "unknown");

    const MediaInfo oddTypes = ProbeReport::parse(
        R"({"streams": [{"codec_type": "video", "codec_name": 7, "pix_fmt": null}]})");
    EXPECT_EQ(oddTypes.codecName, "unknown");
    EXPECT_EQ(oddTypes.pixFmt, "");
    EXPECT_EQ(oddTypes.fps, 24);
}

TEST(ProbeReportParse, DolbyVisionPlaysByItsBaseLayerUnlessItHasNone)
{
    const QString report = R"({"streams": [{"codec_type": "video", "width": 1920, "height": 1080,
        "color_transfer": "smpte2084", "side_data_list": [{"side_data_type": "DOVI configuration record",
        "dv_profile": %1}]}]})";
    EXPECT_EQ(ProbeReport::parse(report.arg(8)).color.transfer, "smpte2084");
    try {
        ProbeReport::parse(report.arg(5));
        ADD_FAILURE() << "profile 5 accepted";
    } catch (const FFmpegError& error) {
        EXPECT_TRUE(error.description().startsWith("Could not read clip: Dolby Vision profile 5"));
    }
}

TEST(ProbeReportParse, UnreadableReportsFail)
{
    for (const char* report : {"", "not json", "[]", "\"text\"", "{\"a\":"}) {
        try {
            ProbeReport::parse(report);
            ADD_FAILURE() << "accepted " << report;
        } catch (const FFmpegError& error) {
            EXPECT_EQ(error.description(), "Could not read clip: invalid ffprobe output");
        }
    }
}
