#include "ui/desktop_integration.h"

#include <gtest/gtest.h>

using namespace tavrelune;

TEST(DesktopIntegration, FiltersMatchBothLetterCases)
{
    ChooserRequest request;
    request.extensions = {"cube", "3dl"};
    EXPECT_EQ(ui::DesktopIntegration::nameFilter(request), "Files (*.cube *.CUBE *.3dl *.3DL)");
    request.extensions.clear();
    EXPECT_EQ(ui::DesktopIntegration::nameFilter(request), "");
}
