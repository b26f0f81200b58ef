// Renders the main window in its main states into PNG files, for people to
// look at: empty; three clips with one selected, graded and trimmed;
// converting; the error alert; the window at its smallest; a clip playing
// graded with the watermark dragged into place; the same held on
// "Original"; a clip that cannot play live, shown as its graded still; a
// phone's HDR clip shown as SDR; the "In & Out" window at rest and in the middle of a drag. Real clips made by
// ffmpeg, the real controller, the real widgets, real mouse events.
//
// Usage: window_screenshots OUTPUT_FOLDER (run under an X server).
#include "controller/app_model.h"
#include "async/blocking_wait.h"
#include "support/media_fixtures.h"
#include "ui/file_drop.h"
#include "ui/preview/player_layer_view.h"
#include "ui/trim/trim_editor_view.h"
#include "ui/trim/trim_timeline_view.h"
#include "ui/inspector.h"
#include "ui/main_menus.h"
#include "ui/main_window.h"
#include "ui/preview_pane.h"
#include "ui/preview_stage.h"
#include "ui/watermark/watermark_placement_view.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <cmath>
#include <cstdio>

using namespace tavrelune;

namespace {

void settle(int milliseconds = 250)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds) {
        QApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(10);
    }
}

bool waitUntil(const std::function<bool()>& condition, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > timeoutMs)
            return false;
        QApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(5);
    }
    return true;
}

void save(const QPixmap& picture, const QString& folder, const QString& name)
{
    const QString path = QDir(folder).filePath(name);
    if (!picture.save(path))
        std::fprintf(stderr, "could not write %s\n", qPrintable(path));
    else
        std::printf("%s\n", qPrintable(path));
}

// What the screen shows where the window is (dialogs included).
QPixmap screenArea(const QWidget& window)
{
    return window.screen()->grabWindow(0, window.x(), window.y(), window.width(), window.height());
}

QString writeLogo(const QString& path)
{
    QImage logo(360, 120, QImage::Format_ARGB32_Premultiplied);
    logo.fill(Qt::transparent);
    QPainter painter(&logo);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(QColor(255, 255, 255, 230));
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRectF(4, 4, 352, 112), 24, 24);
    painter.setPen(QColor(30, 30, 60));
    QFont font = painter.font();
    font.setPixelSize(56);
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(logo.rect(), Qt::AlignCenter, QStringLiteral("NORTH"));
    painter.end();
    logo.save(path);
    return path;
}

// A scanned print: mpv shows a picture, not a clip, so the preview falls
// back to a still that ffmpeg takes from it.
QString writeScan(const QString& path)
{
    QImage scan(1200, 800, QImage::Format_RGB32);
    QPainter painter(&scan);
    QLinearGradient sky(0, 0, 0, 520);
    sky.setColorAt(0, QColor(70, 110, 160));
    sky.setColorAt(1, QColor(230, 190, 150));
    painter.fillRect(QRect(0, 0, 1200, 520), sky);
    painter.fillRect(QRect(0, 520, 1200, 280), QColor(40, 70, 90));
    painter.setBrush(QColor(250, 220, 150));
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(QPointF(820, 470), 70, 70);
    painter.setBrush(QColor(25, 30, 35));
    painter.drawRect(QRect(150, 380, 40, 140));
    painter.drawRect(QRect(120, 360, 100, 24));
    painter.end();
    scan.save(path, "PNG");
    return path;
}

QString writeWarmCube(const QString& path)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write("TITLE \"Warm\"\nLUT_3D_SIZE 2\n0.05 0 0\n1 0.02 0\n0.05 1 0\n1 1 0\n0.05 0 0.9\n1 0 0.9\n0.05 1 0.9\n1 1 0.9\n");
    return path;
}

}  // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: window_screenshots OUTPUT_FOLDER\n");
        return 2;
    }
    const QString shots = QString::fromLocal8Bit(argv[1]);
    QDir().mkpath(shots);
    QTemporaryDir root;
    const QString media = root.filePath("Card A");
    QDir().mkpath(media);
    const QString output = root.filePath("Delivery");

    // Clips like a small shoot: the middle one long enough to watch it convert.
    test::makeClip(media + "/A001_harbour.mov", {.width = 1280, .height = 720, .seconds = 4, .pattern = "testsrc2"});
    test::makeClip(media + "/A002_pier_walk.mov", {.width = 1920, .height = 1080, .rate = "25", .seconds = 20,
                                                   .pattern = "testsrc"});
    test::makeClip(media + "/A010_sunset_wide.mp4", {.width = 3840, .height = 2160, .seconds = 6, .audio = false,
                                                     .pattern = "smptehdbars"});
    const QString cube = writeWarmCube(root.filePath("Warm.cube"));
    const QString logo = writeLogo(root.filePath("north-logo.png"));

    AppModel::Options options;
    options.outputFolder = std::optional<QString>(output);
    options.workspace = root.filePath("work");
    AppModel model(options);
    model.ffmpeg().pinSoftwareEncoders();
    ui::MainWindow window(model);
    window.move(40, 40);
    window.show();
    settle(600);
    save(window.grab(), shots, "1-empty.png");

    // A batch: three clips, a LUT and a watermark, the second clip graded
    // and trimmed, the first one graded too.
    QList<QUrl> files;
    for (const QString& name : QDir(media).entryList(QDir::Files))
        files << QUrl::fromLocalFile(QDir(media).filePath(name));
    files << QUrl::fromLocalFile(cube) << QUrl::fromLocalFile(logo);
    model.addURLs(ui::FileDrop::sortedByName(files));
    waitForTask(model.probesFinished());
    const QUuid first = model.clips().at(0).id;
    const QUuid second = model.clips().at(1).id;
    model.selectClip(first);
    model.liveGrade().setExposure(0.3);
    model.liveGrade().setTemperature(12);
    model.commitLiveGrade();
    model.selectClip(second);
    model.liveGrade().setExposure(-0.35);
    model.liveGrade().setContrast(1.15);
    model.liveGrade().setSaturation(0.85);
    model.liveGrade().setTemperature(18);
    model.commitLiveGrade();
    model.updateClip(second, [](ClipItem& clip) {
        clip.inPoint = 2.5;
        clip.outPoint = 14.0;
    });
    // The live preview has the clip's first graded frame on screen.
    waitUntil([&] { return model.clock().isPlayable(); }, 10000);
    settle(1500);
    save(window.grab(), shots, "2-batch.png");

    // The inspector scrolled to its end: the export settings, the size
    // forecast and the convert button.
    QScrollBar* inspectorScroll = window.inspector()->verticalScrollBar();
    inspectorScroll->setValue(inspectorScroll->maximum());
    settle(300);
    save(window.grab(), shots, "2b-export-settings.png");
    inspectorScroll->setValue(0);

    // Converting: the first clip done, the second under way; the third is
    // shown failed (a real batch stops at its first failure, so that row is
    // set directly to show how a failure looks beside a running batch).
    model.startConversion();
    const bool reached = waitUntil([&] { return model.conversionFraction() >= 0.4; }, 300000);
    const QUuid third = model.clips().at(2).id;
    model.updateClip(third, [](ClipItem& clip) {
        clip.status = ClipStatus::failed;
        clip.errorMessage = QStringLiteral("ffmpeg exited with status 1: Error opening input file "
                                           "A010_sunset_wide.mp4: Invalid data found when processing input");
    });
    settle(150);
    save(window.grab(), shots, reached ? "3-converting.png" : "3-converting-late.png");
    model.cancelConversion();
    waitForTask(model.conversionFinished());

    // The error alert over the window.
    model.setErrorMessage(QStringLiteral("The output folder “Delivery” could not be created: permission denied."));
    settle(500);
    save(screenArea(window), shots, "4-error.png");
    model.setErrorMessage(QString());
    settle();

    // The smallest the window goes, where long names must give way.
    const QSize normal = window.size();
    window.resize(window.minimumSizeHint());
    settle(300);
    save(window.grab(), shots, "6-smallest.png");
    window.resize(normal);
    settle();

    // The live preview: the first clip playing graded, the watermark dragged
    // up and to the left on the picture.
    ui::PreviewStage& stage = *window.previewPane()->stage();
    WatermarkPlacementView& placement = *stage.watermarkView();
    model.selectClip(first);
    waitUntil([&] { return model.clock().isPlayable(); }, 10000);
    settle(300);
    const QPoint grip = placement.watermarkRect().center().toPoint();
    QTest::mousePress(&placement, Qt::LeftButton, {}, grip);
    for (int step = 1; step <= 5; ++step)
        QTest::mouseMove(&placement, grip - QPoint(24, 12) * step);
    QTest::mouseRelease(&placement, Qt::LeftButton, {}, grip - QPoint(120, 60));
    // From the start, so the 4 s clip is still playing when taken.
    model.beginScrubbing();
    model.updatePreviewTime(0.5);
    model.endScrubbing();
    settle(300);
    model.startPlayback();
    settle(1000);
    save(window.grab(), shots, "7-playing-graded.png");

    // The same frame held on the original: pressed away from the watermark.
    model.pausePlayback(true);
    settle(300);
    const QPoint away = placement.videoRect().toRect().topLeft() + QPoint(120, 120);
    QTest::mousePress(&placement, Qt::LeftButton, {}, away);
    settle(500);
    save(window.grab(), shots, "8-holding-original.png");
    QTest::mouseRelease(&placement, Qt::LeftButton, {}, away);

    // Times as timecode at the clip's rate (Preview ▸ Show Timecode).
    window.menus()->showTimecode()->trigger();
    settle(300);
    save(window.grab(), shots, "8b-timecode.png");
    window.menus()->showTimecode()->trigger();

    // A clip that cannot play live: its graded still.
    model.addURLs({QUrl::fromLocalFile(writeScan(media + "/B020_archive_scan.mp4"))});
    waitForTask(model.probesFinished());
    model.selectClip(model.clips().last().id);
    model.liveGrade().setExposure(0.2);
    model.liveGrade().setSaturation(1.2);
    model.commitLiveGrade();
    model.pushLiveGradeToPreview();
    waitUntil([&] { return stage.content() == ui::PreviewStage::Content::still && !model.isPreviewing(); }, 20000);
    settle(400);
    save(window.grab(), shots, "9-unplayable-still.png");

    // A phone's HDR clip (HEVC 10-bit, HLG): shown as SDR, the row and the
    // inspector saying so.
    const QString phone = media + "/PXL_0412_hlg.mp4";
    test::runTool("ffmpeg", {"-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                             "testsrc2=size=1280x720:rate=30:duration=3,format=gbrp", "-vf",
                             "zscale=pin=bt709:tin=bt709:min=gbr:rin=full:p=bt709:t=linear:npl=203,format=gbrpf32le,"
                             "zscale=p=bt2020:t=arib-std-b67:m=bt2020nc:r=tv:npl=203,format=yuv420p10le",
                             "-c:v", "libx265", "-x265-params", "log-level=error", "-colorspace", "bt2020nc",
                             "-color_primaries", "bt2020", "-color_trc", "arib-std-b67", phone});
    model.addURLs({QUrl::fromLocalFile(phone)});
    waitForTask(model.probesFinished());
    model.selectClip(model.clips().last().id);
    waitUntil([&] { return model.clock().isPlayable(); }, 10000);
    settle(1500);
    save(window.grab(), shots, "10-hdr-phone-clip.png");

    // The "In & Out" window for the trimmed clip, once its first frame is on
    // screen; then with the out handle held mid-drag, the picture following
    // it.
    model.selectClip(second);
    settle();
    model.showTrimEditor();
    if (auto* editor = window.trimWindow() ? qobject_cast<trim::TrimEditorView*>(window.trimWindow()->body()) : nullptr) {
        bool drawn = false;
        QObject::connect(editor->playerView(), &VideoFrameView::frameDrawn, [&drawn] { drawn = true; });
        waitUntil([&] { return drawn; }, 10000);
        settle(300);
        save(window.trimWindow()->grab(), shots, "5-in-and-out.png");

        trim::TrimTimelineView& timeline = *editor->timeline();
        const auto at = [&timeline](double seconds) {
            return QPoint(int(std::lround(timeline.trimGeometry().x(seconds))), timeline.height() / 2);
        };
        QTest::mousePress(&timeline, Qt::LeftButton, {}, at(14.0));
        QTest::mouseMove(&timeline, at(12.5));
        QTest::mouseMove(&timeline, at(11.2));
        drawn = false;
        waitUntil([&] { return drawn; }, 5000);
        settle(400);
        save(window.trimWindow()->grab(), shots, "5b-in-and-out-dragging.png");
        QTest::mouseRelease(&timeline, Qt::LeftButton, {}, at(11.2));
    }
    // Hidden, not closed: closing would ask to save the batch as a job.
    if (window.trimWindow())
        window.trimWindow()->close();
    window.hide();
    return 0;
}
