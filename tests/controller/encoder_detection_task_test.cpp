// The controller's background search for working encoders.
#include "controller_fixture.h"
#include "support/task_helpers.h"

#include <QSignalSpy>

using namespace tavrelune;
using namespace tavrelune::test;

namespace {

std::unique_ptr<AppModel> modelWithTools(const TempFolder& root, const QString& ffmpegScript)
{
    AppModel::Options options;
    options.workspace = root.file("work");
    options.outputFolder = std::optional<QString>(root.file("out"));
    options.toolLocator = ToolLocator({writeFakeTool(root.file("tools"), "ffmpeg", ffmpegScript), {}, {}});
    return std::make_unique<AppModel>(options);
}

}  // namespace

TEST(EncoderDetectionTask, NamesTheEncoderFoundOnceDetectionEnds)
{
    TempFolder root;
    auto model = modelWithTools(root, "case \"$*\" in *-encoders*) printf ' ------\\n V....D h264_nvenc x\\n' ;; esac");
    model->setSettings({.codec = VideoCodec::h264});
    EXPECT_EQ(model->encoderLabel(), "x264 (software)");

    QSignalSpy changed(model.get(), &AppModel::encodersChanged);
    model->startEncoderDetection();
    ASSERT_TRUE(changed.wait(10000));
    EXPECT_EQ(model->encoderLabel(), "NVENC (hardware)");
    model->setSettings({.codec = VideoCodec::hevc});
    EXPECT_EQ(model->encoderLabel(), "x265 (software)");
}

TEST(EncoderDetectionTask, ClosingTheControllerEndsARunningDetection)
{
    TempFolder root;
    auto model = modelWithTools(root, "exec sleep 30");
    model->startEncoderDetection();
    spinEventLoop(200);
    ASSERT_FALSE(livingChildren().isEmpty());
    model.reset();
    EXPECT_TRUE(livingChildren().isEmpty());
}
