// Reading job files: one good file, then one edit at a time, each with the
// message the user would see.
#include "qt_printers.h"
#include "cli/convert_options.h"
#include "cli/job_file.h"

#include <gtest/gtest.h>

using namespace tavrelune;
using namespace tavrelune::cli;

namespace {

const QByteArray goodJob = R"({
  "outputFolder": "Delivery",
  "settings": { "codec": "hevc", "quality": "balanced", "copyAudio": true, "removeAudio": false, "concatenateClips": false },
  "lut": "../looks/Warm.cube",
  "watermark": { "url": "/brand/logo.svg", "x": 0.78, "y": 0.82, "widthFraction": 0.18, "opacity": 0.9 },
  "clips": [
    { "url": "card/A001.mov", "exposure": 0.3, "contrast": 1.1, "saturation": 1.0, "temperature": 12, "inPoint": 2.5, "outPoint": 9.0 },
    { "url": "card/A002.mov" }
  ]
})";

QString messageFor(const QByteArray& json)
{
    try {
        parseConvertJob(json, "/jobs/today");
    } catch (const JobFileError& error) {
        return error.message;
    }
    return "(accepted)";
}

}  // namespace

TEST(JobFile, ReadsEveryKeyAndResolvesPathsAgainstTheJobFolder)
{
    const ConvertJob job = parseConvertJob(goodJob, "/jobs/today");
    EXPECT_EQ(job.outputFolder, "/jobs/today/Delivery");
    EXPECT_EQ(job.lut, "/jobs/looks/Warm.cube");
    EXPECT_EQ(job.settings, (SettingsChoice{VideoCodec::hevc, QualityPreset::balanced, true, false, false}));
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
        {R"("clips": [)", R"("clips": [ ,)", "not valid JSON (illegal value at offset 309)"},
        // Qt's parser keeps the last of repeated keys; each object has its own.
        {R"("codec": "hevc")", R"("codec": "hevc", "\u0063odec": "h264")", "settings.codec: given twice"},
        {R"({ "url": "card/A002.mov" })", R"({ "url": "card/A002.mov", "url": "x.mov" })", "clips[1].url: given twice"},
        {R"("outputFolder")", R"("clips": [], "outputFolder")", "clips: given twice"},
    };
    for (const Case& c : cases) {
        QByteArray json = goodJob;
        ASSERT_TRUE(json.contains(c.from)) << c.from;
        json.replace(json.indexOf(c.from), qstrlen(c.from), c.to);
        EXPECT_EQ(messageFor(json), c.message) << "edit: " << c.to;
    }
    EXPECT_EQ(messageFor("[]"), "expected a JSON object at the top");
}

TEST(ConvertOptions, CommandLineWinsOverTheJob)
{
    const ConvertJob job = parseConvertJob(goodJob, "/jobs/today");
    const ConvertRequest request = mergeRequest(
        job, parseConvertOptions({"--codec", "h264", "--exposure", "-0.5", "-o", "/out", "/extra/B.mp4"}));
    EXPECT_EQ(request.outputFolder, "/out");
    EXPECT_EQ(request.settings.codec, VideoCodec::h264);
    EXPECT_EQ(request.settings.quality, QualityPreset::balanced);
    EXPECT_EQ(request.files, QStringList({"/jobs/looks/Warm.cube", "/brand/logo.svg", "/jobs/today/card/A001.mov",
                                          "/jobs/today/card/A002.mov", "/extra/B.mp4"}));
    ASSERT_EQ(request.clipEdits.size(), 3);
    EXPECT_EQ(request.clipEdits[0].grade, (GradeChoice{-0.5, 1.1, 1.0, 12}));
    EXPECT_EQ(request.clipEdits[2].grade, (GradeChoice{-0.5, {}, {}, {}}));
}

TEST(ConvertOptions, OneJobFileAtMost)
{
    try {
        parseConvertOptions({"--job", "a.json", "--job", "b.json"});
        FAIL() << "accepted";
    } catch (const UsageError& error) {
        EXPECT_EQ(error.message, "--job: given 2 times; one job file per run");
    }
}

TEST(NumberRanges, OptionsAndJobKeysOutsideTheWindowsLimitsAreRefusedByName)
{
    const struct {
        const char* option;  // without "--"
        const char* key;     // the job file's key ("clips[0]." or "watermark." before it)
        const char* value;   // as QString::number writes it back
        const char* range;   // empty: accepted
    } cases[] = {
        {"exposure", "exposure", "-3", ""},
        {"exposure", "exposure", "3.01", "-3 to 3"},
        {"exposure", "exposure", "-1e+308", "-3 to 3"},
        {"contrast", "contrast", "0.49", "0.5 to 2"},
        {"contrast", "contrast", "2", ""},
        {"saturation", "saturation", "-0.01", "0 to 2"},
        {"saturation", "saturation", "0", ""},
        {"temperature", "temperature", "100", ""},
        {"temperature", "temperature", "-100.5", "-100 to 100"},
        {"watermark-opacity", "opacity", "7", "0.05 to 1"},
        {"watermark-opacity", "opacity", "-1", "0.05 to 1"},
        {"watermark-opacity", "opacity", "0.05", ""},
        {"watermark-width", "widthFraction", "0.9", "0.05 to 0.8"},
        {"watermark-width", "widthFraction", "0.8", ""},
        {"watermark-x", "x", "1.5", "0 to 1"},
        {"watermark-x", "x", "0", ""},
        {"watermark-y", "y", "-0.1", "0 to 1"},
        {"watermark-y", "y", "1", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.option) + " " + c.value);
        const QString outside = QString("%1 is outside %2").arg(c.value, c.range);
        QString optionMessage = "(accepted)";
        try {
            parseConvertOptions({QString("--") + c.option, c.value});
        } catch (const UsageError& error) {
            optionMessage = error.message;
        }
        const bool watermark = QString(c.option).startsWith("watermark-");
        const QString key = (watermark ? "watermark." : "clips[0].") + QString(c.key);
        const QString job = watermark ? R"({"watermark": {"%1": %2}})" : R"({"clips": [{"url": "a.mov", "%1": %2}]})";
        const QString jobMessage = messageFor(job.arg(c.key, c.value).toUtf8());
        if (*c.range) {
            EXPECT_EQ(optionMessage, QString("--") + c.option + ": " + outside);
            EXPECT_EQ(jobMessage, key + ": " + outside);
        } else {
            EXPECT_EQ(optionMessage, "(accepted)");
            EXPECT_EQ(jobMessage, "(accepted)");
        }
    }
}
