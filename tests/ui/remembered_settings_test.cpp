// The window's choices through a settings file, as across a restart.
#include "window_fixture.h"

#include "ui/remembered_settings.h"

#include <QSettings>
#include <QSplitter>

using namespace tavrelune;
using namespace tavrelune::test;

TEST_F(WindowTest, ChoicesAndPaneWidthsComeBackAfterARestart)
{
    const QString file = root.file("tavrelune.conf");
    const QString folder = root.file("Delivery");
    ASSERT_TRUE(QDir().mkpath(folder));
    QList<int> widths;
    {
        QSettings store(file, QSettings::IniFormat);
        ui::RememberedSettings remembered(store, *model, *window);
        model->setSettings({.codec = VideoCodec::h264, .quality = QualityPreset::small, .removeAudio = true,
                            .concatenateClips = true, .matchPreview = false});
        model->setOutputFolder(QUrl::fromLocalFile(folder));
        widths = window->splitter()->sizes();
        widths[0] += 40;
        widths[1] -= 40;
        window->splitter()->setSizes(widths);
        widths = window->splitter()->sizes();
    }

    model->setSettings({});
    model->setOutputFolder(QUrl::fromLocalFile(root.path()));
    window->splitter()->setSizes({300, 600, 300});
    QSettings store(file, QSettings::IniFormat);
    ui::RememberedSettings remembered(store, *model, *window);
    EXPECT_EQ(model->settings(), (EncodeSettings{.codec = VideoCodec::h264, .quality = QualityPreset::small,
                                                 .removeAudio = true, .concatenateClips = true,
                                                 .matchPreview = false}));
    EXPECT_EQ(model->outputFolder().toLocalFile(), folder);
    EXPECT_EQ(window->splitter()->sizes(), widths);

    // A folder that has gone since, and values that no longer read, keep
    // what the window starts with.
    store.setValue("export/outputFolder", root.file("gone"));
    store.setValue("export/codec", "vp9");
    model->setSettings({});
    ui::RememberedSettings again(store, *model, *window);
    EXPECT_EQ(model->settings().codec, EncodeSettings{}.codec);
    EXPECT_EQ(model->outputFolder().toLocalFile(), folder);
}
