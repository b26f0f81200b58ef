// The executable's first argument: a command, a file for the window, or a
// mistake; and each command's help.
#include "support/temp_folder.h"

#include <QProcess>
#include <gtest/gtest.h>

using namespace tavrelune::test;

namespace {

struct Outcome {
    int exitCode = -1;
    QString out;
    QString err;
};

// Runs the program without a display, so that the window cannot open.
Outcome runWithoutDisplay(const QStringList& arguments, const QString& folder)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(name);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    process.start(TAVRELUNE_BINARY, arguments);
    if (!process.waitForFinished(20000))
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

}  // namespace

TEST(Commands, AMistypedCommandListsTheCommandsWhileAFileOpensTheWindow)
{
    TempFolder folder;
    folder.write("a.mov", "x");
    const Outcome mistyped = runWithoutDisplay({"covnert", "a.mov"}, folder.path());
    EXPECT_EQ(mistyped.exitCode, 2);
    EXPECT_TRUE(mistyped.err.startsWith("tavrelune: unknown command 'covnert'\n")) << mistyped.err.toStdString();
    EXPECT_TRUE(mistyped.err.contains("\n  convert ")) << "the commands are listed";

    const Outcome file = runWithoutDisplay({"a.mov"}, folder.path());
    EXPECT_EQ(file.exitCode, 1);
    EXPECT_TRUE(file.err.contains("no display")) << file.err.toStdString();
}

TEST(Commands, EachCommandsHelpNamesTheCommand)
{
    TempFolder folder;
    for (const QString command : {"probe", "grade"}) {
        const Outcome help = runWithoutDisplay({command, "--help"}, folder.path());
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_TRUE(help.out.startsWith("Usage: tavrelune " + command + " ")) << help.out.toStdString();
    }
}
