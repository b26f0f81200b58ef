// The media player of one preview surface, on libmpv: loads one clip at a
// time and says whether it can be played live, plays and pauses, seeks with
// or without tolerance, reports the position and the end of the clip, and
// renders decoded frames for the views (see VideoFrameView).
//
// Threading: main thread only, except `latestFrame()`, `framesAfter()` and
// `grade()`, which
// the views' worker threads read. mpv's own callbacks only queue work onto
// the main thread; its events are drained there, so `onTime`, `onEnded`
// and the signals all arrive on the main thread.
//
// Lifecycle: the mpv core is created on the first `load`, so a program that
// never previews (the headless commands) never starts one; a core that cannot
// be created leaves every clip unplayable. A player is empty after creation,
// after `unload()` and after a failed load, and loaded after a successful
// load. Position reports are dropped during a load, an unload and from the
// start of a seek until the newest seek has completed.
//
// Units: seconds of source-clip time. Frames are drawn upright: mpv applies
// the track's rotation, so `preferredTransform()` is always the identity.
//
// Ownership: the controller owns its players for its whole life; the grade
// state is shared (std::shared_ptr) with the views that draw with it.
#pragma once

#include "grading/delivery_table.h"
#include "grading/grade_state.h"
#include "model/delivery_conversion.h"
#include "model/media_info.h"
#include "preview/frame_statistics.h"
#include "preview/video_frame.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QObject>
#include <QTimer>
#include <QTransform>
#include <QUrl>
#include <QUuid>
#include <atomic>
#include <coroutine>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <qcoro/qcorotask.h>

struct mpv_handle;
struct mpv_event;

namespace tavrelune {

class SwFrameRenderer;

class ClipPreviewPlayer : public QObject {
    Q_OBJECT

public:
    struct Options {
        // mpv's "ao": empty for mpv's default output, "null" for silence.
        QString audioOutput;
    };

    // Drops counted by mpv since the core started, for benchmarks.
    struct PlaybackCounters {
        std::int64_t droppedByDecoder = 0;
        std::int64_t droppedByOutput = 0;
        std::int64_t delayed = 0;
    };

    explicit ClipPreviewPlayer(Options options, QObject* parent = nullptr);
    ~ClipPreviewPlayer() override;

    // Loads `url` (a local file) paused at its start. True when the file
    // opens and has a video track mpv can decode (not cover art or a still
    // image); otherwise the player is left empty. A load that a newer load
    // overtakes resolves with the newer load's result. Never throws.
    //
    // `colour` is the clip's probed colour tags: an HDR or BT.2020 clip's
    // frames are then read with its matrix and brought to SDR BT.709 with the
    // delivery table, as the export does (see grading/delivery_table.h).
    // Without tags (not probed yet) the clip shows as SDR.
    QCoro::Task<bool> load(QUrl url, ColorTags colour = {});
    void unload();
    // Ignored without a loaded clip or for a non-finite time. A tolerant
    // seek may land up to 0.05 s from the target.
    void seek(double seconds, bool precise);
    void play();
    void pause();
    // Playback rate, 1 for real time (kept across loads until set again).
    void setSpeed(double speed);

    GradeState& grade() { return *grade_; }
    const std::shared_ptr<GradeState>& sharedGrade() const { return grade_; }
    QUuid loadID() const { return loadID_; }
    QTransform preferredTransform() const { return {}; }
    bool hasItem() const { return hasItem_; }
    bool ignoresTimeUpdates() const { return ignoreTimeUpdates_; }
    int seekGeneration() const { return seekGeneration_; }

    // mpv's playback position now; none without a loaded clip.
    std::optional<double> position() const;

    // The newest frame of the loaded clip; none before its first frame.
    std::shared_ptr<const VideoFrame> latestFrame() const;
    // The last few frames newer than `sequence`, oldest first; only the
    // newest for 0 (see FrameQueue::after).
    std::vector<std::shared_ptr<const VideoFrame>> framesAfter(std::uint64_t sequence) const;
    void setStatistics(std::shared_ptr<FrameStatistics> statistics);
    PlaybackCounters counters() const;

    std::function<void(double seconds)> onTime;
    std::function<void()> onEnded;
    // Set by the live view; the controller calls it after changing `grade`.
    std::function<void()> onNeedsRedraw;

    // Position reports come at most 30 times a second.
    static constexpr qint64 reportIntervalNs = 1'000'000'000 / 30;
    static constexpr double seekTolerance = 0.05;

Q_SIGNALS:
    void loadIDChanged(const QUuid& loadID);
    // A new frame is in `latestFrame()` (coalesced: one signal may stand for
    // several frames, which `framesAfter` still has).
    void frameAvailable();

private:
    // Reply tags: the kind of request in the top byte, its serial below.
    static constexpr std::uint64_t loadTag = 1ull << 56;
    static constexpr std::uint64_t seekTag = 2ull << 56;
    static constexpr std::uint64_t tagMask = 0xFFull << 56;
    static constexpr std::uint64_t preloadedHook = 1;

    // A caller waiting in load(); shared with its coroutine, which may
    // outlive the player.
    struct PendingLoad {
        std::optional<bool> result;
        std::coroutine_handle<> waiter;
        void resolve(bool playable);
    };
    struct LoadAwaiter;
    struct ActiveSeek {
        double target = 0;
        bool precise = true;
        bool refined = false;
    };

    bool ensureCore();
    void destroyCore();
    void drainEvents();
    void handle(const mpv_event& event);
    void handleReply(std::uint64_t userdata, int error, const mpv_event& event);
    void handlePropertyChange(const mpv_event& event);
    void prepareVideo(std::uint64_t hookID);
    DeliveryTable::TableFiles deliveryTables(DeliveryConversion kind);
    void inspectLoadedFile();
    void settleLoads(bool playable);
    void issueSeek(double seconds, bool exact);
    void seekRestarted();
    void timeChanged(double seconds);
    void deliverTime();
    void command(std::initializer_list<QByteArray> arguments, std::uint64_t userdata = 0);
    void setFlag(const char* name, bool value);

    Options options_;
    std::shared_ptr<GradeState> grade_ = std::make_shared<GradeState>();
    QUuid loadID_ = QUuid::createUuid();
    bool hasItem_ = false;
    bool ignoreTimeUpdates_ = false;
    int seekGeneration_ = 0;

    mpv_handle* mpv_ = nullptr;
    bool coreFailed_ = false;
    std::unique_ptr<SwFrameRenderer> renderer_;
    std::shared_ptr<FrameStatistics> statistics_;
    std::atomic<bool> drainQueued_{false};
    std::atomic<bool> frameSignalQueued_{false};
    bool draining_ = false;

    // The newest load and the callers waiting for it.
    std::uint64_t loadSerial_ = 0;
    bool loadPending_ = false;
    std::optional<std::int64_t> pendingEntry_;
    ColorTags pendingColour_;  // of the newest load
    // Delivery tables written when first needed, for mpv's filter to read.
    std::unique_ptr<QTemporaryDir> tableFolder_;

    std::int64_t startedEntry_ = -1;
    std::vector<std::shared_ptr<PendingLoad>> waiters_;

    std::uint64_t issuedSeekCommands_ = 0;
    std::uint64_t acknowledgedSeekCommands_ = 0;
    std::optional<ActiveSeek> activeSeek_;

    bool endReported_ = false;
    std::optional<double> pendingTime_;
    QElapsedTimer sinceReport_;
    QTimer reportTimer_;
};

}  // namespace tavrelune
