// The player's mpv core: its creation on first use and teardown, playback
// controls, and the main-thread loop that drains mpv's events.
#include "preview/clip_preview_player.h"

#include "preview/mpv_tracks.h"
#include "preview/sw_frame_renderer.h"

#include <mpv/client.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <clocale>
#include <cmath>

namespace tavrelune {

namespace {

// Hardware decoding needs a device to decode on. Without one, trying each
// decoding API only costs time, and a driver library complains on the
// terminal at every load (libvdpau: "Failed to open VDPAU backend ...").
bool hasDecodingDevice()
{
    return !QDir(QStringLiteral("/dev/dri")).entryList({QStringLiteral("renderD*")}, QDir::System).isEmpty()
        || QFileInfo::exists(QStringLiteral("/dev/nvidia0"));
}

}  // namespace

namespace {

enum Observed : std::uint64_t { timePosition = 1, endReached = 2 };

}  // namespace

void ClipPreviewPlayer::PendingLoad::resolve(bool playable)
{
    result = playable;
    if (waiter)  // resumed from the event loop, never inside our own event handling
        QMetaObject::invokeMethod(QCoreApplication::instance(), [w = waiter] { w.resume(); },
                                  Qt::QueuedConnection);
}

ClipPreviewPlayer::ClipPreviewPlayer(Options options, QObject* parent)
    : QObject(parent), options_(std::move(options))
{
    reportTimer_.setSingleShot(true);
    reportTimer_.setTimerType(Qt::PreciseTimer);
    connect(&reportTimer_, &QTimer::timeout, this, &ClipPreviewPlayer::deliverTime);
}

ClipPreviewPlayer::~ClipPreviewPlayer()
{
    // Waiting loads resume later and touch only their own record.
    for (const auto& waiter : std::exchange(waiters_, {}))
        waiter->resolve(false);
    destroyCore();
}

bool ClipPreviewPlayer::ensureCore()
{
    if (mpv_)
        return true;
    if (coreFailed_)
        return false;
    // mpv refuses to start under a locale with another decimal separator;
    // Qt sets the user's locale when the application object is made.
    std::setlocale(LC_NUMERIC, "C");
    mpv_ = mpv_create();
    if (!mpv_) {
        qWarning("tavrelune: live preview unavailable: mpv could not be created");
        coreFailed_ = true;
        return false;
    }
    const auto option = [this](const char* name, const QString& value) {
        mpv_set_option_string(mpv_, name, value.toUtf8().constData());
    };
    option("config", "no");  // the user's mpv.conf must not change the preview
    option("vo", "libmpv");
    if (!options_.audioOutput.isEmpty())
        option("ao", options_.audioOutput);
    option("audio-client-name", "Tavrelune");
    option("hwdec", hasDecodingDevice() ? QStringLiteral("auto-copy-safe") : QStringLiteral("no"));
    option("idle", "yes");
    option("pause", "yes");
    option("keep-open", "yes");  // the end pauses on the last frame instead of unloading
    option("audio-display", "no");
    option("video-rotate", "no");  // rotated by our own filter (see preview_filter.h)
    // Frames are handed over when due rather than early, since the render
    // call does not wait for their display time.
    option("video-timing-offset", "0");
    // Frames arrive at their final size, so the render call only converts
    // colour; its fast mode skips dithering (a fifth less time per frame).
    option("sw-fast", "yes");
    option("sid", "no");
    option("osd-level", "0");
    option("ytdl", "no");
    option("load-scripts", "no");
    option("input-default-bindings", "no");

    if (mpv_initialize(mpv_) >= 0) {
        renderer_ = SwFrameRenderer::create(mpv_, [this] {
            if (!frameSignalQueued_.exchange(true))
                QMetaObject::invokeMethod(this, [this] {
                    frameSignalQueued_ = false;
                    Q_EMIT frameAvailable();
                }, Qt::QueuedConnection);
        });
    }
    if (!renderer_) {
        qWarning("tavrelune: live preview unavailable: mpv could not start its video output");
        mpv_terminate_destroy(mpv_);
        mpv_ = nullptr;
        coreFailed_ = true;
        return false;
    }
    renderer_->setStatistics(statistics_);
    mpv_observe_property(mpv_, timePosition, "time-pos", MPV_FORMAT_DOUBLE);
    mpv_observe_property(mpv_, endReached, "eof-reached", MPV_FORMAT_FLAG);
    mpv_hook_add(mpv_, preloadedHook, "on_preloaded", 0);
    mpv_set_wakeup_callback(mpv_, [](void* context) {
        auto* self = static_cast<ClipPreviewPlayer*>(context);
        if (!self->drainQueued_.exchange(true))
            QMetaObject::invokeMethod(self, [self] { self->drainEvents(); }, Qt::QueuedConnection);
    }, this);
    return true;
}

void ClipPreviewPlayer::destroyCore()
{
    if (!mpv_)
        return;
    mpv_set_wakeup_callback(mpv_, nullptr, nullptr);
    // Stop while the render thread still serves mpv, so nothing waits on it.
    const char* stop[] = {"stop", nullptr};
    mpv_command(mpv_, stop);
    renderer_.reset();  // the render context goes before the core
    mpv_terminate_destroy(mpv_);
    mpv_ = nullptr;
}

void ClipPreviewPlayer::command(std::initializer_list<QByteArray> arguments, std::uint64_t userdata)
{
    if (!mpv_)
        return;
    std::vector<const char*> argv;
    for (const QByteArray& argument : arguments)
        argv.push_back(argument.constData());
    argv.push_back(nullptr);
    mpv_command_async(mpv_, userdata, argv.data());
}

void ClipPreviewPlayer::setFlag(const char* name, bool value)
{
    if (!mpv_)
        return;
    int flag = value ? 1 : 0;
    mpv_set_property_async(mpv_, 0, name, MPV_FORMAT_FLAG, &flag);
}

void ClipPreviewPlayer::play()
{
    setFlag("pause", false);
}

void ClipPreviewPlayer::pause()
{
    setFlag("pause", true);
}

void ClipPreviewPlayer::setSpeed(double speed)
{
    if (!mpv_)
        return;
    double rate = speed;
    mpv_set_property_async(mpv_, 0, "speed", MPV_FORMAT_DOUBLE, &rate);
}

std::optional<double> ClipPreviewPlayer::position() const
{
    double seconds = 0;
    if (!hasItem_ || mpv_get_property(mpv_, "time-pos", MPV_FORMAT_DOUBLE, &seconds) < 0)
        return std::nullopt;
    return seconds;
}

std::shared_ptr<const VideoFrame> ClipPreviewPlayer::latestFrame() const
{
    return renderer_ ? renderer_->latest() : nullptr;
}

std::vector<std::shared_ptr<const VideoFrame>> ClipPreviewPlayer::framesAfter(std::uint64_t sequence) const
{
    return renderer_ ? renderer_->framesAfter(sequence) : std::vector<std::shared_ptr<const VideoFrame>>{};
}

void ClipPreviewPlayer::setStatistics(std::shared_ptr<FrameStatistics> statistics)
{
    statistics_ = std::move(statistics);
    if (renderer_)
        renderer_->setStatistics(statistics_);
}

ClipPreviewPlayer::PlaybackCounters ClipPreviewPlayer::counters() const
{
    PlaybackCounters counters;
    if (!mpv_)
        return counters;
    mpv_get_property(mpv_, "decoder-frame-drop-count", MPV_FORMAT_INT64, &counters.droppedByDecoder);
    mpv_get_property(mpv_, "frame-drop-count", MPV_FORMAT_INT64, &counters.droppedByOutput);
    mpv_get_property(mpv_, "vo-delayed-frame-count", MPV_FORMAT_INT64, &counters.delayed);
    return counters;
}

void ClipPreviewPlayer::drainEvents()
{
    drainQueued_ = false;
    // A callback below may spin a nested event loop; the outer loop goes on
    // draining once it returns.
    if (draining_)
        return;
    draining_ = true;
    while (mpv_) {
        const mpv_event* event = mpv_wait_event(mpv_, 0);
        if (event->event_id == MPV_EVENT_NONE)
            break;
        handle(*event);
    }
    draining_ = false;
}

void ClipPreviewPlayer::handle(const mpv_event& event)
{
    switch (event.event_id) {
    case MPV_EVENT_COMMAND_REPLY:
        handleReply(event.reply_userdata, event.error, event);
        break;
    case MPV_EVENT_START_FILE:
        startedEntry_ = static_cast<const mpv_event_start_file*>(event.data)->playlist_entry_id;
        endReported_ = false;
        break;
    case MPV_EVENT_HOOK:
        prepareVideo(static_cast<const mpv_event_hook*>(event.data)->id);
        break;
    case MPV_EVENT_FILE_LOADED:
        inspectLoadedFile();
        break;
    case MPV_EVENT_END_FILE: {
        const auto* end = static_cast<const mpv_event_end_file*>(event.data);
        if (loadPending_ && pendingEntry_ == end->playlist_entry_id)
            settleLoads(false);  // the file could not be opened
        break;
    }
    case MPV_EVENT_PLAYBACK_RESTART:
        seekRestarted();
        break;
    case MPV_EVENT_PROPERTY_CHANGE:
        handlePropertyChange(event);
        break;
    default:
        break;
    }
}

void ClipPreviewPlayer::handleReply(std::uint64_t userdata, int error, const mpv_event& event)
{
    const std::uint64_t serial = userdata & ~tagMask;
    if ((userdata & tagMask) == loadTag) {
        if (!loadPending_ || serial != loadSerial_)
            return;
        if (error < 0) {
            settleLoads(false);
            return;
        }
        const auto* reply = static_cast<const mpv_event_command*>(event.data);
        const QVariantMap result = mpvNodeToVariant(reply->result).toMap();
        pendingEntry_ = result.value("playlist_entry_id").toLongLong();
    } else if ((userdata & tagMask) == seekTag) {
        acknowledgedSeekCommands_ = std::max(acknowledgedSeekCommands_, serial);
        if (error < 0 && serial == issuedSeekCommands_ && activeSeek_) {
            activeSeek_.reset();
            ignoreTimeUpdates_ = false;
        }
    }
}

void ClipPreviewPlayer::handlePropertyChange(const mpv_event& event)
{
    const auto* property = static_cast<const mpv_event_property*>(event.data);
    if (event.reply_userdata == timePosition && property->format == MPV_FORMAT_DOUBLE) {
        timeChanged(*static_cast<const double*>(property->data));
    } else if (event.reply_userdata == endReached) {
        const bool ended = property->format == MPV_FORMAT_FLAG && *static_cast<const int*>(property->data) != 0;
        if (!ended) {
            endReported_ = false;
        } else if (hasItem_ && !endReported_) {
            endReported_ = true;
            if (onEnded)
                onEnded();
        }
    }
}

}  // namespace tavrelune
