// The command line over a job file, and the ranges both share.
#include "support/qt_printers.h"
#include "cli/convert_options.h"
#include "controller/job_file.h"
#include "support/job_messages.h"

#include <gtest/gtest.h>

using namespace tavrelune;
using namespace tavrelune::cli;

namespace {

const QByteArray goodJob = R"({
  "settings": { "codec": "hevc", "quality": "balanced" },
  "lut": "../looks/Warm.cube",
  "watermark": { "url": "/brand/logo.svg" },
  "clips": [
    { "url": "card/A001.mov", "exposure": 0.3, "contrast": 1.1, "saturation": 1.0, "temperature": 12 },
    { "url": "card/A002.mov" }
  ]
})";


}  // namespace

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
        const QString jobMessage = test::jobMessageFor(job.arg(c.key, c.value).toUtf8());
        if (*c.range) {
            EXPECT_EQ(optionMessage, QString("--") + c.option + ": " + outside);
            EXPECT_EQ(jobMessage, key + ": " + outside);
        } else {
            EXPECT_EQ(optionMessage, "(accepted)");
            EXPECT_EQ(jobMessage, "(accepted)");
        }
    }
}
