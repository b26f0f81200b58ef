// Entry point: a subcommand runs headless on QCoreApplication; otherwise the
// desktop window opens.
#include "cli/commands.h"

#include <QCoreApplication>
#include <cstdio>

#ifdef TAVRELUNE_HAS_GUI
#include "ui/main_window.h"
#include <QApplication>
#endif

namespace {

QStringList argumentsOf(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    return arguments;
}

#ifdef TAVRELUNE_HAS_GUI
// Without this check Qt aborts with a long message when no display exists.
bool displayAvailable()
{
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (!platform.isEmpty() && !platform.startsWith("xcb") && !platform.startsWith("wayland"))
        return true;  // offscreen, vnc, ...
    return !qgetenv("DISPLAY").isEmpty() || !qgetenv("WAYLAND_DISPLAY").isEmpty();
}
#endif

}  // namespace

int main(int argc, char** argv)
{
    const QStringList arguments = argumentsOf(argc, argv);
    if (tavrelune::cli::isHeadlessInvocation(arguments)) {
        QCoreApplication app(argc, argv);
        QCoreApplication::setApplicationName("tavrelune");
        QCoreApplication::setApplicationVersion(TAVRELUNE_VERSION);
        return tavrelune::cli::runHeadless(arguments);
    }
#ifdef TAVRELUNE_HAS_GUI
    if (!displayAvailable()) {
        std::fprintf(stderr, "tavrelune: no display to open the window on (DISPLAY and "
                             "WAYLAND_DISPLAY are unset); run 'tavrelune --help' for headless commands\n");
        return 1;
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName("Tavrelune");
    QApplication::setApplicationVersion(TAVRELUNE_VERSION);
    tavrelune::ui::MainWindow window;
    window.show();
    return app.exec();
#else
    std::fprintf(stderr, "tavrelune: built without the window; run 'tavrelune --help'\n");
    return 1;
#endif
}
