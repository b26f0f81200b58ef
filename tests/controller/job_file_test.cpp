// Reading job files: one good file, then one edit at a time, each with the
// message the user would see.
#include "support/qt_printers.h"
#include "controller/job_file.h"
#include "support/job_messages.h"

#include <gtest/gtest.h>

using namespace tavrelune;

namespace {

const QByteArray goodJob = R"({
  "outputFolder": "Delivery",
  "settings": { "codec": "hevc", "quality": "balanced", "copyAudio": true, "removeAudio": false, "concatenateClips": false, "combinedName": "Day one" },
  "lut": "../looks/Warm.cube",
  "watermark": { "url": "/brand/logo.svg", "x": 0.78, "y": 0.82, "widthFraction": 0.18, "opacity": 0.9 },
  "clips": [
    { "url": "card/A001.mov", "exposure": 0.3, "contrast": 1.1, "saturation": 1.0, "temperature": 12, "inPoint": 2.5, "outPoint": 9.0 },
    { "url": "card/A002.mov" }
  ]
})";


}  // namespace

TEST(JobFile, ReadsEveryKeyAndResolvesPathsAgainstTheJobFolder)
{
    const ConvertJob job = parseConvertJob(goodJob, "/jobs/today");
    EXPECT_EQ(job.outputFolder, "/jobs/today/Delivery");
    EXPECT_EQ(job.lut, "/jobs/looks/Warm.cube");
    EXPECT_EQ(job.settings, (SettingsChoice{VideoCodec::hevc, QualityPreset::balanced, true, false, false, {}, "Day one"}));
    EXPECT_EQ(job.watermark, (WatermarkChoice{"/brand/logo.svg", 0.78, 0.82, 0.18, 0.9}));
    ASSERT_EQ(job.clips.size(), 2);
    EXPECT_EQ(job.clips[0], (JobClip{"/jobs/today/card/A001.mov", {0.3, 1.1, 1.0, 12}, 2.5, 9.0}));
    EXPECT_EQ(job.clips[1], (JobClip{"/jobs/today/card/A002.mov", {}, std::nullopt, std::nullopt}));
    EXPECT_EQ(parseConvertJob("{}", "/jobs"), ConvertJob{}) << "absent keys stay unset";
    EXPECT_EQ(parseConvertJob(R"({"settings": {"matchPreview": true}})", "/jobs").settings.matchPreview, true);
    EXPECT_EQ(parseConvertJob(R"({"outputFolder": "a\", \"lut\": \"b", "lut": "c.cube"})", "/jobs").lut,
              "/jobs/c.cube")
        << "a key inside a string is no key";
}

TEST(JobFile, EachMistakeNamesItsKey)
{
    struct Case {
        const char* from;
        const char* to;
        const char* message;
    };
    const Case cases[] = {
        {R"("outputFolder")", R"("bogus": 1, "outputFolder")", "bogus: unknown key"},
        {R"({ "url": "card/A002.mov" })", R"({ "url": "card/A002.mov", "speed": 2 })", "clips[1].speed: unknown key"},
        {R"("outputFolder": "Delivery")", R"("outputFolder": 5)", "outputFolder: expected a string"},
        {R"("exposure": 0.3)", R"("exposure": "0.3")", "clips[0].exposure: expected a number"},
        {R"("copyAudio": true)", R"("copyAudio": "yes")", "settings.copyAudio: expected true or false"},
        {R"("clips": [)", R"("clips": [ 7,)", "clips[0]: expected an object"},
        {R"("codec": "hevc")", R"("codec": "av1")", R"(settings.codec: unknown value "av1" (use h264 or hevc))"},
        {R"({ "url": "card/A002.mov" })", R"({ "exposure": 1 })", "clips[1].url: missing"},
        {"card/A002.mov", "card/A002.txt", R"(clips[1].url: "card/A002.txt" is not a video file)"},
        {R"("inPoint": 2.5)", R"("inPoint": -1)", "clips[0].inPoint: must not be negative"},
        {R"("outPoint": 9.0)", R"("outPoint": 2.5)", "clips[0].outPoint: must be after inPoint"},
        {"card/A002.mov", "card/../card/A001.mov", "clips[1].url: repeats clips[0]"},
        {R"("clips": [)", R"("clips": [ ,)", "not valid JSON (illegal value at offset 336)"},
        // Qt's parser keeps the last of repeated keys; each object has its own.
        {R"("codec": "hevc")", R"("codec": "hevc", "\u0063odec": "h264")", "settings.codec: given twice"},
        {R"({ "url": "card/A002.mov" })", R"({ "url": "card/A002.mov", "url": "x.mov" })", "clips[1].url: given twice"},
        {R"("outputFolder")", R"("clips": [], "outputFolder")", "clips: given twice"},
    };
    for (const Case& c : cases) {
        QByteArray json = goodJob;
        ASSERT_TRUE(json.contains(c.from)) << c.from;
        json.replace(json.indexOf(c.from), qstrlen(c.from), c.to);
        EXPECT_EQ(test::jobMessageFor(json), QString::fromUtf8(c.message)) << "edit: " << c.to;
    }
    EXPECT_EQ(test::jobMessageFor("[]"), "expected a JSON object at the top");
}
