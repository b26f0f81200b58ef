// Adding, probing, selecting and removing clips.
#include "controller/app_model.h"

#include "model/delivery_conversion.h"
#include "model/media_type.h"

#include <QDir>
#include "async/next_signal.h"
#include <QFileInfo>
#include <algorithm>

namespace tavrelune {

namespace {

QUrl standardised(const QUrl& url)
{
    const QString path = url.isLocalFile() ? url.toLocalFile() : url.toString();
    return QUrl::fromLocalFile(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
}

}  // namespace

void AppModel::addURLs(const QList<QUrl>& urls)
{
    QList<ClipItem> clips = clips_;
    bool added = false;
    for (const QUrl& given : urls) {
        const QUrl url = standardised(given);
        const QString path = url.toLocalFile();
        if (MediaType::isLut(path)) {
            setLUT(url);
        } else if (MediaType::isWatermark(path)) {
            setWatermark(url);
        } else if (MediaType::isVideo(path)) {
            const bool duplicate = std::any_of(clips.begin(), clips.end(), [&path](const ClipItem& clip) {
                return clip.url.toLocalFile() == path;
            });
            if (!duplicate) {
                clips << ClipItem(url);
                added = true;
            }
        }
    }
    setClips(std::move(clips));
    if (added && selectedClipID_.isNull() && !clips_.isEmpty())
        setSelectedClipID(clips_.first().id);

    probePendingClips();  // runs on; the task is not kept
    loadSelectedPreview();
    if (trimEditorVisible_)
        loadTrimPreview();
}

QCoro::Task<void> AppModel::probePendingClips()
{
    QPointer<AppModel> self(this);
    const std::stop_token stop = lifetime_.get_token();
    ++runningProbePasses_;
    // By identity, never by position: the list may change under a probe.
    // Each pass tries every unprobed clip once (a file repaired on disk is
    // read by the next pass); a clip another pass is probing is left to it.
    QSet<QUuid> tried;
    const auto nextUnprobed = [this, &tried]() -> std::optional<ClipItem> {
        for (const ClipItem& clip : clips_)
            if (!clip.duration && !tried.contains(clip.id) && !probing_.contains(clip.id))
                return clip;
        return std::nullopt;
    };
    while (const std::optional<ClipItem> next = nextUnprobed()) {
        const ClipItem clip = *next;
        tried.insert(clip.id);
        probing_.insert(clip.id);
        std::optional<MediaInfo> info;
        QString failure;
        try {
            info = co_await ffmpeg_.probe(clip.url.toLocalFile(), stop);
        } catch (const FFmpegError& error) {
            // One line of the tool's own reason, never its raw text.
            failure = error.kind() == FFmpegError::Kind::missingBinary || error.kind() == FFmpegError::Kind::cancelled
                          ? error.description()
                          : oneLineReason(error.payload(), clip.url.toLocalFile());
        } catch (...) {
            failure = describe(std::current_exception());
        }
        if (!self)
            co_return;
        probing_.remove(clip.id);
        updateClip(clip.id, [&](ClipItem& stored) {
            if (!info) {
                stored.readError = failure;
                return;
            }
            stored.readError.reset();
            stored.duration = info->duration;
            stored.width = info->width;
            stored.height = info->height;
            stored.codecName = info->codecName;
            stored.fps = info->fps;
            stored.hasAudio = info->hasAudio;
            stored.audioTracks = info->audioTracks;
            if (info->audioBitrate > 0)
                stored.audioBitrate = info->audioBitrate;
            stored.color = info->color;
            stored.interlaced = info->interlaced;
            stored.pixelAspect = info->pixelAspect;
            stored.variableFrameRate = info->variableFrameRate;
            stored.clampTrimTo(info->duration);
        });
        if (info && clip.id == selectedClipID_)
            followShapeWithDefaultWatermark();
    }
    --runningProbePasses_;

    // A clip selected before its probe was loaded without its colour tags;
    // an HDR or BT.2020 clip needs them from its first frame.
    if (const auto clip = selectedClip();
        clip && previews_
        && (clip->readError || deliveryConversionFor(clip->color) != deliveryConversionFor(previewColour_))) {
        loadSelectedPreview();
    } else if (clip && clip->duration) {
        clock_.setSeconds(clip->playheadInWindow());
        persistPlayhead();
        if (clock_.isPlayable())
            previewPlayer_->seek(clock_.seconds(), true);
        else
            scheduleFrameExtract(true);
    }
    Q_EMIT probePassEnded();
}

QCoro::Task<void> AppModel::probesFinished()
{
    QPointer<AppModel> self(this);
    while (self && runningProbePasses_ > 0)
        co_await nextSignal(this, &AppModel::probePassEnded);
}

void AppModel::selectClip(const QUuid& id)
{
    setIsPlayingAll(false);
    playAllAfterLoad_ = false;
    consumedPlayAllAdvance_ = false;
    commitLiveGrade();
    setSelectedClipID(id);
    loadSelectedPreview();
    if (trimEditorVisible_)
        loadTrimPreview();
}

void AppModel::selectAfterRemoval(qsizetype removedAt)
{
    if (clips_.isEmpty()) {
        setIsPlayingAll(false);
        playAllAfterLoad_ = false;
        setSelectedClipID(QUuid());
        clearPreview();
        if (trimEditorVisible_)
            loadTrimPreview();
        return;
    }
    // Play All goes on with the clip that followed; past the end it is over.
    const bool playsOn = isPlayingAll_ && removedAt < clips_.size();
    if (isPlayingAll_ && !playsOn)
        pausePlayback(true);
    setSelectedClipID(clips_[std::min(removedAt, clips_.size() - 1)].id);
    playAllAfterLoad_ = playsOn;
    consumedPlayAllAdvance_ = false;
    loadSelectedPreview();
    if (trimEditorVisible_)
        loadTrimPreview();
}

void AppModel::removeClip(const QUuid& id)
{
    // A running batch keeps the list it planned; clips added meanwhile
    // wait for the next one, and nothing leaves the list until it ends.
    if (batchRunning_)
        return;
    const auto found = std::find_if(clips_.begin(), clips_.end(), [&id](const ClipItem& clip) { return clip.id == id; });
    if (found == clips_.end())
        return;
    const qsizetype position = found - clips_.begin();
    QList<ClipItem> remaining = clips_;
    remaining.removeAt(position);
    setClips(std::move(remaining));
    // A line about this clip would now talk about nothing in the list.
    if (statusClip_ == id)
        setStatusMessage(QString());
    // Another clip's removal leaves the selection, and what plays, alone.
    if (selectedClipID_ == id)
        selectAfterRemoval(position);
}

void AppModel::removeSelected()
{
    if (batchRunning_)
        return;
    commitLiveGrade();
    if (const auto position = selectedIndex())
        removeClip(clips_[*position].id);
}

void AppModel::moveClips(const QList<int>& rows, int destination)
{
    if (batchRunning_)
        return;
    const qsizetype count = clips_.size();
    QList<int> moving;
    for (int row : rows)
        if (row >= 0 && row < count && !moving.contains(row))
            moving << row;
    if (moving.isEmpty() || destination < 0 || destination > count)
        return;
    std::sort(moving.begin(), moving.end());
    // The moved clips land before the clip that was at `destination`; the
    // ones above it shift the insertion point up by one each.
    QList<ClipItem> taken;
    QList<ClipItem> rest;
    int insertAt = destination;
    for (qsizetype row = 0; row < count; ++row) {
        if (moving.contains(static_cast<int>(row))) {
            taken << clips_[row];
            if (row < destination)
                --insertAt;
        } else {
            rest << clips_[row];
        }
    }
    for (qsizetype i = 0; i < taken.size(); ++i)
        rest.insert(insertAt + i, taken[i]);
    setClips(std::move(rest));
}

}  // namespace tavrelune

namespace tavrelune {

void AppModel::restoreEdits(const QList<ClipItem>& edited, const QUrl& lut, const WatermarkSettings& watermark)
{
    if (batchRunning_)
        return;
    QList<ClipItem> restored;
    for (const ClipItem& clip : edited) {
        const auto current =
            std::find_if(clips_.begin(), clips_.end(), [&clip](const ClipItem& c) { return c.id == clip.id; });
        // A clip still listed keeps what was learned and done since; one
        // removed since comes back as it was, ready.
        ClipItem next = current != clips_.end() ? *current : clip;
        if (current == clips_.end() && next.status == ClipStatus::converting)
            next.status = ClipStatus::ready;
        next.grade.exposure = clip.grade.exposure;
        next.grade.contrast = clip.grade.contrast;
        next.grade.saturation = clip.grade.saturation;
        next.grade.temperature = clip.grade.temperature;
        next.inPoint = clip.inPoint;
        next.outPoint = clip.outPoint;
        restored << next;
    }
    const qsizetype selectedAt = selectedIndex().value_or(0);
    setClips(std::move(restored));

    if (lut != lutURL_) {
        if (lut.isEmpty())
            clearLUT();
        else
            setLUT(lut);
    }
    if (watermark.url != watermark_.url) {
        if (watermark.url)
            setWatermark(*watermark.url);
        else
            clearWatermark();
    }
    if (watermark.url && watermark_.url == watermark.url) {
        watermarkAtDefault_ = false;
        setWatermarkSettings(watermark);
    }

    if (!selectedClip()) {
        if (clips_.isEmpty())
            selectAfterRemoval(0);
        else
            selectClip(clips_[std::min(selectedAt, clips_.size() - 1)].id);
    } else {
        liveGrade_.copyFrom(*selectedClip());
        pushLiveGradeToPreview();
    }
}

}  // namespace tavrelune
