// Loading and unloading clips: the player's side of mpv's file life cycle,
// from "loadfile" through the preloaded hook, where the frame size and
// filter are fixed, to the loaded file's verdict.
#include "preview/clip_preview_player.h"

#include "grading/delivery_table.h"
#include "model/error.h"
#include "preview/mpv_tracks.h"
#include "preview/preview_filter.h"
#include "preview/sw_frame_renderer.h"

#include <QDir>
#include <mpv/client.h>

namespace tavrelune {

struct ClipPreviewPlayer::LoadAwaiter {
    std::shared_ptr<PendingLoad> pending;
    bool await_ready() const noexcept { return pending->result.has_value(); }
    void await_suspend(std::coroutine_handle<> waiter) noexcept { pending->waiter = waiter; }
    bool await_resume() const noexcept { return pending->result.value_or(false); }
};

QCoro::Task<bool> ClipPreviewPlayer::load(QUrl url, ColorTags colour)
{
    pendingColour_ = colour;
    pause();
    ignoreTimeUpdates_ = true;
    pendingTime_.reset();
    activeSeek_.reset();
    hasItem_ = false;
    endReported_ = false;
    auto pending = std::make_shared<PendingLoad>();
    if (!ensureCore()) {
        ignoreTimeUpdates_ = false;
        co_return false;
    }
    renderer_->endContent();
    waiters_.push_back(pending);
    loadPending_ = true;
    pendingEntry_.reset();
    const QString path = url.isLocalFile() ? url.toLocalFile() : url.toString();
    command({"loadfile", path.toUtf8(), "replace"}, loadTag | ++loadSerial_);
    // From here on only `pending` is touched: the player may be gone when
    // this resumes.
    co_return co_await LoadAwaiter{std::move(pending)};
}

void ClipPreviewPlayer::settleLoads(bool playable)
{
    loadPending_ = false;
    pendingEntry_.reset();
    ignoreTimeUpdates_ = false;
    if (playable) {
        hasItem_ = true;
        loadID_ = QUuid::createUuid();
        Q_EMIT loadIDChanged(loadID_);
    } else {
        hasItem_ = false;
        renderer_->endContent();
        command({"stop"});
    }
    for (const auto& waiter : std::exchange(waiters_, {}))
        waiter->resolve(playable);
}

void ClipPreviewPlayer::unload()
{
    pause();
    ignoreTimeUpdates_ = true;
    pendingTime_.reset();
    activeSeek_.reset();
    hasItem_ = false;
    endReported_ = false;
    loadPending_ = false;
    pendingEntry_.reset();
    if (mpv_) {
        renderer_->endContent();
        command({"stop"});
    }
    for (const auto& waiter : std::exchange(waiters_, {}))
        waiter->resolve(false);
    loadID_ = QUuid::createUuid();
    ignoreTimeUpdates_ = false;
    Q_EMIT loadIDChanged(loadID_);
}

// Runs while mpv holds the file between opening it and creating its
// decoders: the one moment the frame size can be fixed before any frame.
void ClipPreviewPlayer::prepareVideo(std::uint64_t hookID)
{
    if (loadPending_ && pendingEntry_ == startedEntry_) {
        if (const auto track = chosenVideoTrack(mpvTrackList(mpv_))) {
            VideoTrackShape shape;
            shape.width = track->value("demux-w").toLongLong();
            shape.height = track->value("demux-h").toLongLong();
            shape.pixelAspect = track->value("demux-par", 1.0).toDouble();
            shape.rotation = track->value("demux-rotation", 0).toInt();
            if (const DeliveryConversion kind = deliveryConversionFor(pendingColour_);
                kind != DeliveryConversion::none) {
                shape.zscaleReadOptions = zscaleReadOptions(pendingColour_, shape.width, shape.height);
                const DeliveryTable::TableFiles tables = deliveryTables(kind);
                shape.lightTable = tables.light;
                shape.encodingTable = tables.encoding;
            }
            const PreviewFilter filter = previewFilterFor(shape);
            if (!filter.frameSize.isEmpty()) {
                mpv_set_property_string(mpv_, "file-local-options/vid",
                                        track->value("id").toByteArray().constData());
                mpv_set_property_string(mpv_, "file-local-options/vf", filter.mpvFilter.toUtf8().constData());
                renderer_->beginContent(filter.frameSize);
            }
        }
    }
    mpv_hook_continue(mpv_, hookID);
}

DeliveryTable::TableFiles ClipPreviewPlayer::deliveryTables(DeliveryConversion kind)
{
    if (!tableFolder_)
        tableFolder_ = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/tavrelune-preview-XXXXXX"));
    try {
        if (tableFolder_->isValid())
            return DeliveryTable::writeTables(tableFolder_->path(), kind);
    } catch (const Error&) {
    }
    qWarning("tavrelune: the preview's colour tables could not be written; HDR shows unconverted");
    return {};
}

void ClipPreviewPlayer::inspectLoadedFile()
{
    if (!loadPending_ || pendingEntry_ != startedEntry_)
        return;
    bool playable = false;
    for (const QVariant& entry : mpvTrackList(mpv_)) {
        const QVariantMap track = entry.toMap();
        // A video track whose decoder mpv could not open is deselected.
        if (isMovingPicture(track) && track.value("selected").toBool()
            && !track.value("decoder-desc").toString().isEmpty())
            playable = true;
    }
    // Frames only reach the views when the size was fixed in prepareVideo.
    settleLoads(playable && renderer_->isPublishing());
}

}  // namespace tavrelune
