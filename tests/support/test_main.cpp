// Test entry: a Qt application object must exist for QProcess, timers and
// coroutines that await signals; widget tests need the full QApplication.
#include <gtest/gtest.h>

#ifdef TAVRELUNE_TEST_GUI
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QCoreApplication>
using TestApplication = QCoreApplication;
#endif

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    // Listing the tests (done at build time, with no X server) needs no
    // application object.
    if (::testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    TestApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
