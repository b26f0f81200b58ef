// The real main window on a real controller (see ControllerTest): canned
// choosers, real clips made by ffmpeg, a real X server.
#pragma once

#include "controller/controller_fixture.h"
#include "async/blocking_wait.h"
#include "ui/main_window.h"

#include <QTest>

namespace tavrelune::test {

class WindowTest : public ControllerTest {
protected:
    WindowTest()
    {
        window = std::make_unique<ui::MainWindow>(*model);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    }

    // `count` one-second clips, probed; the first is selected.
    void addClips(int count)
    {
        QStringList paths;
        for (int i = 1; i <= count; ++i)
            paths << clip(QStringLiteral("clip%1.mp4").arg(i), {.seconds = 1.0});
        addAndProbe(paths);
    }

    // Starts a real batch; nothing runs until the event loop does, so the
    // converting state holds until stopConverting().
    void startConverting()
    {
        model->startConversion();
        ASSERT_TRUE(model->isConverting());
    }

    void stopConverting()
    {
        model->cancelConversion();
        waitForTask(model->conversionFinished());
    }

    template <typename Widget>
    Widget* find(const QString& name) const
    {
        return window->findChild<Widget*>(name);
    }

    // Declared after the controller, so it goes first.
    std::unique_ptr<ui::MainWindow> window;
};

}  // namespace tavrelune::test
