// Entry point: a subcommand runs headless on QGuiApplication; otherwise the
// desktop window opens.
#include "cli/argument_names.h"
#include "cli/commands.h"
#include "cli/interrupt_watcher.h"
#include "cli/standard_output.h"

#include <QGuiApplication>
#include <csignal>
#include <cstdio>

#ifdef TAVRELUNE_HAS_GUI
#include "controller/app_model.h"
#include "ui/desktop_integration.h"
#include "ui/file_drop.h"
#include "ui/icons.h"
#include "ui/main_window.h"
#include "ui/remembered_settings.h"
#include <QApplication>
#include <QSettings>
#include <QFileInfo>
#endif

namespace {

// Qt's GUI start-up warns when XDG_RUNTIME_DIR is unset (ssh sessions,
// containers), which is normal for a headless command. That one warning is
// dropped while the application object is built; everything else passes.
QtMessageHandler startupHandler = nullptr;

void withoutRuntimeDirWarning(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (message.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set")))
        return;
    if (startupHandler)
        startupHandler(type, context, message);
    else
        std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
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
    tavrelune::cli::reopenClosedStandardStreams();
    // Keeps files whose names are not UTF-8 reachable until the end.
    tavrelune::cli::ArgumentNames names;
    if (argc > 1 && tavrelune::cli::isHeadlessInvocation(names.decode(argv[1]))) {
        // Read before Qt takes out what it counts as its own options.
        const QStringList arguments = names.decode(argc, argv);
        // Preparing a watermark paints with QPainter and Qt SVG, which need a
        // GUI application (fonts); the offscreen platform needs no display.
        qputenv("QT_QPA_PLATFORM", "offscreen");
        startupHandler = qInstallMessageHandler(withoutRuntimeDirWarning);
        QGuiApplication app(argc, argv);
        qInstallMessageHandler(startupHandler);
        QGuiApplication::setApplicationName("tavrelune");
        QGuiApplication::setApplicationVersion(TAVRELUNE_VERSION);
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
    QGuiApplication::setDesktopFileName("io.github.tavrelune.Tavrelune");
    QApplication::setWindowIcon(tavrelune::ui::icons::application());
    // Asked to end (logout, kill, the terminal closing), the window closes
    // the orderly way: a running conversion is stopped and its unfinished
    // files removed, and the working files go, as when quitting from the
    // menu. A closed standard output is no reason to quit.
    tavrelune::cli::InterruptWatcher interrupts;
    std::signal(SIGPIPE, SIG_IGN);
    QObject::connect(&interrupts, &tavrelune::cli::InterruptWatcher::interruptReceived, &app,
                     [&interrupts] { QApplication::exit(interrupts.exitStatus()); });
    // The controller is made before the window and outlives it.
    tavrelune::AppModel model;
    tavrelune::ui::MainWindow window(model);
    tavrelune::ui::DesktopIntegration desktop(&window);
    model.setDesktopServices(&desktop);
    window.jobDocument().setDesktopServices(&desktop);
    QSettings store(QStringLiteral("tavrelune"), QStringLiteral("tavrelune"));
    tavrelune::ui::RememberedSettings remembered(store, model, window);
    model.startEncoderDetection();
    // Files named on the command line (Qt has taken its own options out of
    // argv) arrive as if dropped on the window.
    QList<QUrl> files;
    for (const QString& argument : names.decode(argc, argv))
        files << (argument.startsWith(QLatin1String("file:"))
                      ? QUrl(argument)
                      : QUrl::fromLocalFile(QFileInfo(argument).absoluteFilePath()));
    if (!files.isEmpty())
        model.addURLs(tavrelune::ui::FileDrop::sortedByName(files));
    window.show();
    const int status = app.exec();
    model.setDesktopServices(nullptr);
    return status;
#else
    std::fprintf(stderr, "tavrelune: built without the window; run 'tavrelune --help'\n");
    return 1;
#endif
}
