// The main preview: loading the selected clip into the live player, stills
// from ffmpeg for clips that cannot play live, the grade on both, and the
// playhead, which stays inside the clip's trim window and is remembered per
// clip as a fraction of the whole clip.
#include "controller/app_model.h"

#include "async/delay.h"
#include "grading/delivery_table.h"
#include "grading/pixel_image.h"
#include "model/delivery_conversion.h"

#include <QDir>
#include <QFileInfo>
#include <cmath>

namespace tavrelune {

namespace {

// Below these the grade leaves a still as it is.
bool isNeutral(const GradeValues& grade)
{
    return std::abs(grade.exposure) < 0.0005 && std::abs(grade.contrast - 1) < 0.0005
        && std::abs(grade.saturation - 1) < 0.0005 && std::abs(grade.temperature) < 0.5;
}

// Where a still is taken from: the start of very short clips, else the
// playhead, kept a little before the end, where a frame always exists.
double stillTime(double duration, double fraction)
{
    if (duration <= 0.4)
        return 0;
    return std::min(std::max(fraction * duration, 0.0), std::max(duration - 0.04, 0.0));
}

}  // namespace

void AppModel::loadSelectedPreview()
{
    previewPlayer_->pause();
    clock_.setIsPlaying(false);
    // The selection has changed already: this stores the playhead into the
    // newly selected clip, which then opens at the same position.
    persistPlayhead();
    previewTask_.request_stop();
    setIsPreviewing(false);
    showingOriginal_ = false;
    const auto clip = selectedClip();
    if (!clip) {
        clearPreview();
        return;
    }
    clock_.setSeconds(playAllAfterLoad_ ? clip->effectiveInPoint() : clip->playheadInWindow());
    liveGrade_.copyFrom(*clip);
    // In force before the new clip's first frame is graded; the frame on
    // screen keeps the grade it was drawn with until that frame replaces it.
    assignLiveGrade();
    const bool autoplay = std::exchange(playAllAfterLoad_, false);
    if (!previews_)
        return;
    if (clip->readError) {
        // Nothing to show: the stage says why instead.
        previewPlayer_->unload();
        clock_.setIsPlayable(false);
        setSourcePreview({});
        setGradedPreview({});
        if (autoplay && isPlayingAll_)
            playNextInSequence();
        return;
    }
    previewTask_ = std::stop_source();
    previewColour_ = clip->color;
    runPreviewLoad(clip->id, clip->url, clip->color, autoplay);  // runs on; superseded through the selection check
}

QCoro::Task<void> AppModel::runPreviewLoad(QUuid clipID, QUrl url, ColorTags colour, bool autoplay)
{
    QPointer<AppModel> self(this);
    const bool playable = co_await previewPlayer_->load(url, colour);
    if (!self || selectedClipID_ != clipID)
        co_return;  // a newer load owns the preview
    clock_.setIsPlayable(playable);
    pushLiveGradeToPreview();
    previewPlayer_->seek(clock_.seconds(), true);
    if (autoplay && isPlayingAll_) {
        if (playable)
            startPlayback();
        else
            playNextInSequence();
        co_return;
    }
    if (!playable)
        scheduleFrameExtract(true);
}

void AppModel::clearPreview()
{
    previewPlayer_->pause();
    clock_.setIsPlaying(false);
    persistPlayhead();
    previewTask_.request_stop();
    previewPlayer_->unload();
    clock_.setIsPlayable(false);
    clock_.setSeconds(0);
    setSourcePreview(QImage());
    setGradedPreview(QImage());
    grader_.setSourceImage(QImage());
    sourceFrameURL_.reset();
    setIsPreviewing(false);
}

void AppModel::persistPlayhead()
{
    const auto clip = selectedClip();
    if (!clip || !clip->duration || !(*clip->duration > 0))
        return;
    const double fraction = std::clamp(clock_.seconds() / *clip->duration, 0.0, 1.0);
    updateClip(clip->id, [fraction](ClipItem& stored) { stored.previewFraction = fraction; });
}

void AppModel::scheduleFrameExtract(bool force)
{
    previewTask_.request_stop();
    if (!previews_)
        return;
    QUuid clipID;
    QUrl url;
    double duration = 0;
    double fraction = 0.2;
    if (const auto clip = selectedClip()) {
        clipID = clip->id;
        url = clip->url;
        duration = clip->duration.value_or(0);
        fraction = clip->previewFraction;
    }
    previewTask_ = std::stop_source();
    runFrameExtract(clipID, url, duration, fraction, force, previewTask_.get_token());  // runs on
}

QCoro::Task<void> AppModel::runFrameExtract(QUuid clipID, QUrl url, double duration, double fraction,
                                            bool force, std::stop_token stop)
{
    QPointer<AppModel> self(this);
    // Rapid requests (a timeline drag) collapse into the last one.
    co_await delay(force ? 40 : 20);
    if (!self || stop.stop_requested())
        co_return;
    ++runningExtractions_;
    co_await extractSourceFrame(clipID, url, duration, fraction, force, stop);
    if (!self)
        co_return;
    --runningExtractions_;
    Q_EMIT previewTaskEnded();
}

namespace {

// The reason a still could not be made, in one line.
QString stillFailure(std::exception_ptr failure, const QUrl& url)
{
    try {
        std::rethrow_exception(failure);
    } catch (const FFmpegError& error) {
        if (error.kind() == FFmpegError::Kind::conversionFailed)
            return oneLineReason(error.payload(), url.toLocalFile());
        return error.description();
    } catch (...) {
        return describe(std::current_exception());
    }
}

}  // namespace

QCoro::Task<void> AppModel::extractSourceFrame(QUuid clipID, QUrl url, double duration, double fraction,
                                               bool force, std::stop_token stop)
{
    QPointer<AppModel> self(this);
    if (clipID.isNull() || url.isEmpty() || clock_.isPlayable())
        co_return;  // live video needs no still
    const QString target =
        QDir(workspace_).filePath(clipID.toString(QUuid::WithoutBraces).toUpper() + QStringLiteral("-source.png"));
    if (force || !QFileInfo::exists(target)) {
        setIsPreviewing(true);
        std::exception_ptr failure;
        try {
            StillColour colour;
            if (const auto clip = selectedClip(); clip && clip->id == clipID) {
                colour = {clip->color, clip->width.value_or(0), clip->height.value_or(0), std::nullopt};
                if (const DeliveryConversion conversion = deliveryConversionFor(clip->color);
                    conversion != DeliveryConversion::none)
                    colour.deliveryTables = DeliveryTable::writeTables(workspace_, conversion);
            }
            co_await ffmpeg_.extractFrame(url.toLocalFile(), stillTime(duration, fraction), target, 1280, stop,
                                          colour);
        } catch (...) {
            failure = std::current_exception();
        }
        if (!self)
            co_return;
        if (failure) {
            // The previous still stays; preview failures never raise an alert.
            if (!stop.stop_requested() && !isCancellation(failure) && selectedClipID_ == clipID
                && !selectedClip()->readError)
                setStatusMessage(QStringLiteral("This file can't be previewed: ") + stillFailure(failure, url), clipID);
            setIsPreviewing(false);
            co_return;
        }
    }
    if (stop.stop_requested()) {
        setIsPreviewing(false);
        co_return;
    }
    const std::optional<PixelImage> still = PixelImage::load(target);
    if (!still) {
        setIsPreviewing(false);
        co_return;
    }
    sourceFrameURL_ = target;
    setSourcePreview(still->display);
    grader_.setSourceImage(still->filter);
    refreshFallbackStill();
    setIsPreviewing(false);
}

void AppModel::refreshFallbackStill()
{
    const GradeValues grade = liveGrade_.values();
    if (lutURL_.isEmpty() && isNeutral(grade)) {
        setGradedPreview(sourcePreview_);
        return;
    }
    if (const std::optional<QImage> graded = grader_.render(grade))
        setGradedPreview(*graded);
    else if (!sourcePreview_.isNull())
        setGradedPreview(sourcePreview_);
}

void AppModel::assignLiveGrade()
{
    GradeSnapshot grade;
    grade.grade = liveGrade_.values();
    grade.lut = grader_.lut();
    grade.bypass = showingOriginal_;
    previewPlayer_->grade().assign(std::move(grade));
}

void AppModel::pushLiveGradeToPreview()
{
    assignLiveGrade();
    if (previewPlayer_->onNeedsRedraw)
        previewPlayer_->onNeedsRedraw();
    if (!clock_.isPlayable())
        refreshFallbackStill();
}

void AppModel::updatePreviewTime(double seconds)
{
    const auto clip = selectedClip();
    if (!clip || !clip->duration || !(*clip->duration > 0) || !std::isfinite(seconds))
        return;
    const double in = clip->effectiveInPoint();
    const double position = std::min(std::max(in + seconds, in), clip->effectiveOutPoint());
    clock_.setSeconds(position);
    if (!isScrubbing_)
        persistPlayhead();
    if (clock_.isPlayable())
        previewPlayer_->seek(position, !isScrubbing_);
    else
        scheduleFrameExtract(true);
}

void AppModel::beginScrubbing()
{
    if (clock_.isPlaying()) {
        previewPlayer_->pause();
        clock_.setIsPlaying(false);
        persistPlayhead();
    }
    isScrubbing_ = true;
    clock_.setIsScrubbing(true);
}

void AppModel::endScrubbing()
{
    isScrubbing_ = false;
    clock_.setIsScrubbing(false);
    persistPlayhead();
    if (clock_.isPlayable())
        previewPlayer_->seek(clock_.seconds(), true);
    else
        scheduleFrameExtract(true);
}

void AppModel::startPlayback()
{
    const auto clip = selectedClip();
    if (!clock_.isPlayable() || isConverting_ || !clip)
        return;
    trimPlayer_->pause();  // one player plays at a time
    trimClock_.setIsPlaying(false);
    consumedPlayAllAdvance_ = false;
    const double in = clip->effectiveInPoint();
    if (clock_.seconds() < in + 0.02 || clock_.seconds() >= clip->effectiveOutPoint() - 0.05) {
        clock_.setSeconds(in);
        persistPlayhead();
        previewPlayer_->seek(in, true);
    }
    previewPlayer_->play();
    clock_.setIsPlaying(true);
}

void AppModel::handlePlayerTime(double seconds)
{
    if (!clock_.isPlaying() || isScrubbing_)
        return;
    const auto clip = selectedClip();
    const double in = clip ? clip->effectiveInPoint() : 0;
    const double out = clip ? clip->effectiveOutPoint() : 0;
    const double position = std::min(std::max(seconds, in), std::max(in, out));
    if (position < out - 0.03) {
        clock_.setSeconds(position);
        return;
    }
    // The end of the trim window.
    if (isPlayingAll_) {
        finishClipForPlayAll();
        return;
    }
    previewPlayer_->pause();
    clock_.setIsPlaying(false);
    persistPlayhead();
    clock_.setSeconds(out);
    previewPlayer_->seek(out, true);
    persistPlayhead();
}

}  // namespace tavrelune
