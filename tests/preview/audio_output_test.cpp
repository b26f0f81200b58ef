// The audio output the preview chooses for each machine.
#include "preview/audio_output.h"

#include "support/temp_folder.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace tavrelune;
using namespace tavrelune::test;

TEST(AudioOutput, DefaultOutputWithASoundServerOrCardElseSilence)
{
    TempFolder root;
    const QString noCards = root.write("none", "--- no soundcards ---\n");
    const QString oneCard = root.write("cards", " 0 [PCH            ]: HDA-Intel - HDA Intel PCH\n"
                                                "                      HDA Intel PCH at 0xf7f10000 irq 33\n");
    const QString pulseRun = root.path() + "/pulse-run";
    QDir().mkpath(pulseRun + "/pulse");
    root.write("pulse-run/pulse/native", "");
    const QString pipewireRun = root.path() + "/pipewire-run";
    QDir().mkpath(pipewireRun);
    root.write("pipewire-run/pipewire-0", "");
    const QString emptyRun = root.path();

    struct Case {
        AudioEnvironment environment;
        QString output;
    };
    const Case cases[] = {
        {{"", "", noCards}, "null"},
        {{"", emptyRun, root.file("missing")}, "null"},
        {{"unix:/run/pulse.sock", "", noCards}, ""},
        {{"", pulseRun, noCards}, ""},
        {{"", pipewireRun, noCards}, ""},
        {{"", "", oneCard}, ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(previewAudioOutput(c.environment), c.output)
            << c.environment.pulseServer.toStdString() << " " << c.environment.runtimeDir.toStdString() << " "
            << c.environment.soundCards.toStdString();
}
