// The window on a real X server.
#include "controller/app_model.h"
#include "support/temp_folder.h"
#include "ui/desktop_integration.h"
#include "ui/main_window.h"

#include <QStatusBar>
#include <QTest>
#include <gtest/gtest.h>

using namespace tavrelune;

TEST(MainWindow, OpensTitledAndShowsTheControllersStatus)
{
    test::TempFolder folder;
    AppModel::Options options;
    options.workspace = folder.path();
    options.outputFolder = std::optional<QString>(folder.path());
    AppModel model(options);
    ui::MainWindow window(model);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(window.windowTitle(), "Tavrelune");

    model.applyAdjustmentsToAll();
    EXPECT_EQ(window.statusBar()->currentMessage(), "Adjustments applied to all clips.");
}

TEST(DesktopIntegration, FiltersMatchBothLetterCases)
{
    ChooserRequest request;
    request.extensions = {"cube", "3dl"};
    EXPECT_EQ(ui::DesktopIntegration::nameFilter(request), "Files (*.cube *.CUBE *.3dl *.3DL)");
    request.extensions.clear();
    EXPECT_EQ(ui::DesktopIntegration::nameFilter(request), "");
}
