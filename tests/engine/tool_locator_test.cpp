#include "engine/tool_locator.h"
#include "support/media_fixtures.h"
#include "support/temp_folder.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace tavrelune;
using namespace tavrelune::test;

TEST(ToolLocator, SearchOrderAndFallback)
{
    TempFolder root;
    const QString tools = root.path() + "/tools";
    const QString prefix = root.path() + "/usr";
    const QString bin = prefix + "/bin";
    const QString helpers = prefix + "/libexec/tavrelune";
    const QString pathA = root.path() + "/path-a";
    const QString pathB = root.path() + "/path-b";
    for (const QString& folder : {tools, bin, helpers, pathA, pathB})
        QDir().mkpath(folder);

    ToolLocator locator({.toolsDir = tools, .applicationDir = bin, .searchPath = pathA + ":" + pathB});
    EXPECT_EQ(locator.locate("ffmpeg"), tools + "/ffmpeg") << "nothing anywhere: the first candidate";

    writeFakeTool(pathB, "ffmpeg", "exit 0");
    EXPECT_EQ(locator.locate("ffmpeg"), pathB + "/ffmpeg");
    writeFakeTool(pathA, "ffmpeg", "exit 0");
    EXPECT_EQ(locator.locate("ffmpeg"), pathA + "/ffmpeg");
    writeFakeTool(bin, "ffmpeg", "exit 0");
    EXPECT_EQ(locator.locate("ffmpeg"), bin + "/ffmpeg");
    writeFakeTool(helpers, "ffmpeg", "exit 0");
    EXPECT_EQ(locator.locate("ffmpeg"), helpers + "/ffmpeg");
    writeFakeTool(tools, "ffmpeg", "exit 0");
    EXPECT_EQ(locator.locate("ffmpeg"), tools + "/ffmpeg");
    EXPECT_EQ(locator.locate("ffprobe"), tools + "/ffprobe") << "each tool is looked up on its own";

    // A non-executable file or a folder of the tool's name is passed over.
    QDir().mkpath(pathA + "/ffprobe");
    root.write("path-b/ffprobe", "not executable");
    ToolLocator withoutEnv({.toolsDir = {}, .applicationDir = {}, .searchPath = pathA + ":" + pathB});
    EXPECT_EQ(withoutEnv.locate("ffprobe"), pathA + "/ffprobe");
}
