// The executable's headless side, run as a user would run it.
#include "support/media_fixtures.h"
#include "support/temp_folder.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <gtest/gtest.h>

using namespace tavrelune::test;

TEST(ProbeCommand, PrintsOneObjectPerGoodFileAndReportsBadOnes)
{
    TempFolder folder;
    const QString good = folder.file("good clip.mov");
    makeClip(good, {.width = 320, .height = 240, .rate = "25", .seconds = 1.0, .audio = false});
    const QString bad = folder.write("bad.mp4", "garbage");

    const ToolResult result = runTool(TAVRELUNE_BINARY, {"probe", bad, good});
    EXPECT_EQ(result.exitCode, 1);
    const QList<QByteArray> lines = result.out.trimmed().split('\n');
    ASSERT_EQ(lines.size(), 1) << result.out.toStdString();
    const QJsonObject facts = QJsonDocument::fromJson(lines[0]).object();
    EXPECT_EQ(facts["path"].toString(), good);
    EXPECT_EQ(facts["width"].toInteger(), 320);
    EXPECT_EQ(facts["height"].toInteger(), 240);
    EXPECT_EQ(facts["codecName"].toString(), "h264");
    EXPECT_EQ(facts["pixFmt"].toString(), "yuv420p");
    EXPECT_EQ(facts["fps"].toDouble(), 25);
    EXPECT_FALSE(facts["hasAudio"].toBool());
    EXPECT_NEAR(facts["duration"].toDouble(), 1.0, 0.1);
    EXPECT_TRUE(result.err.contains("bad.mp4")) << result.err.toStdString();

    EXPECT_EQ(runTool(TAVRELUNE_BINARY, {"probe", good}).exitCode, 0);
}

TEST(CommandLine, HelpVersionAndNoDisplay)
{
    const ToolResult help = runTool(TAVRELUNE_BINARY, {"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.contains("probe"));
    EXPECT_TRUE(help.out.contains("TAVRELUNE_TOOLS_DIR"));
    const ToolResult version = runTool(TAVRELUNE_BINARY, {"--version"});
    EXPECT_EQ(version.exitCode, 0);
    const QList<QByteArray> versions = version.out.trimmed().split('\n');
    ASSERT_EQ(versions.size(), 3) << version.out.toStdString();
    EXPECT_EQ(versions[0], "tavrelune " TAVRELUNE_VERSION);
    EXPECT_TRUE(versions[1].startsWith("ffmpeg ") && versions[1].endsWith("/ffmpeg)")) << versions[1].toStdString();
    EXPECT_TRUE(versions[2].startsWith("libmpv ") && !versions[2].contains("client API")) << versions[2].toStdString();
    EXPECT_EQ(runTool(TAVRELUNE_BINARY, {"probe"}).exitCode, 2);

    QProcess window;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("DISPLAY");
    environment.remove("WAYLAND_DISPLAY");
    environment.remove("QT_QPA_PLATFORM");
    window.setProcessEnvironment(environment);
    window.start(TAVRELUNE_BINARY, {});
    ASSERT_TRUE(window.waitForFinished(20000));
    EXPECT_EQ(window.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(window.exitCode(), 1);
    const QByteArray message = window.readAllStandardError();
    EXPECT_TRUE(message.contains("no display")) << message.toStdString();
    EXPECT_EQ(message.count('\n'), 1) << "one line, not Qt's abort text";
}
