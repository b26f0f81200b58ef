#include "controller/viewer_transport.h"

#include "controller/app_model.h"

#include <cmath>

namespace tavrelune {

namespace {

constexpr int backwardTickMs = 40;

}  // namespace

ViewerTransport::ViewerTransport(AppModel& model, QObject* parent) : QObject(parent), model_(model)
{
    backward_.setInterval(backwardTickMs);
    connect(&backward_, &QTimer::timeout, this, &ViewerTransport::stepBackward);
    // Playback stopped some other way (Space, the end, another clip): the
    // next play is at real time again.
    connect(&model_.clock(), &PreviewClock::isPlayingChanged, this, [this] {
        if (!model_.clock().isPlaying() && speed_ > 0) {
            model_.previewPlayer().setSpeed(1);
            setSpeed(0);
        }
    });
    connect(&model_, &AppModel::selectedClipIDChanged, this, [this] {
        if (speed_ < 0)
            endBackward();
    });
}

void ViewerTransport::setSpeed(double speed)
{
    if (speed_ == speed)
        return;
    speed_ = speed;
    Q_EMIT speedChanged();
}

void ViewerTransport::moveTo(double clipSeconds)
{
    const auto clip = model_.selectedClip();
    if (!clip)
        return;
    if (speed_ < 0)
        endBackward();
    if (model_.clock().isPlaying() || model_.isPlayingAll())
        model_.pausePlayback(true);
    model_.updatePreviewTime(clipSeconds - clip->effectiveInPoint());
}

void ViewerTransport::stepFrames(int frames)
{
    const auto clip = model_.selectedClip();
    if (!clip)
        return;
    const double frame = 1.0 / (clip->fps && *clip->fps > 0 ? *clip->fps : 24.0);
    // From the frame on screen: part-way into a frame steps to the start of
    // the next one, never past it.
    moveTo((std::floor(model_.clock().seconds() / frame + 1e-6) + frames) * frame);
}

void ViewerTransport::stepSeconds(double seconds)
{
    moveTo(model_.clock().seconds() + seconds);
}

void ViewerTransport::toInPoint()
{
    if (const auto clip = model_.selectedClip())
        moveTo(clip->effectiveInPoint());
}

void ViewerTransport::toOutPoint()
{
    if (const auto clip = model_.selectedClip())
        moveTo(clip->effectiveOutPoint());
}

void ViewerTransport::markIn()
{
    if (model_.selectedClip() && !model_.isConverting())
        model_.updateInPoint(model_.clock().seconds(), true);
}

void ViewerTransport::markOut()
{
    if (model_.selectedClip() && !model_.isConverting())
        model_.updateOutPoint(model_.clock().seconds(), true);
}

void ViewerTransport::shuttleForward()
{
    if (speed_ < 0)
        endBackward();
    if (!model_.clock().isPlayable() || model_.isConverting())
        return;
    const double next = model_.clock().isPlaying() && speed_ >= 1 ? std::min(speed_ * 2, fastest) : 1;
    model_.previewPlayer().setSpeed(next);
    if (!model_.clock().isPlaying())
        model_.startPlayback();
    setSpeed(next);
}

void ViewerTransport::shuttleBackward()
{
    if (!model_.selectedClip() || model_.isConverting())
        return;
    if (speed_ < 0) {
        setSpeed(std::max(speed_ * 2, -fastest));
        return;
    }
    if (model_.clock().isPlaying() || model_.isPlayingAll())
        model_.pausePlayback(true);
    model_.beginScrubbing();
    setSpeed(-1);
    backward_.start();
}

void ViewerTransport::stepBackward()
{
    const auto clip = model_.selectedClip();
    if (!clip) {
        endBackward();
        return;
    }
    const double in = clip->effectiveInPoint();
    const double target = model_.clock().seconds() + speed_ * backwardTickMs / 1000.0;
    model_.updatePreviewTime(std::max(target, in) - in);
    if (target <= in)
        endBackward();
}

void ViewerTransport::endBackward()
{
    backward_.stop();
    model_.endScrubbing();
    setSpeed(0);
}

void ViewerTransport::stop()
{
    if (speed_ < 0)
        endBackward();
    if (model_.clock().isPlaying() || model_.isPlayingAll())
        model_.pausePlayback(true);
    model_.previewPlayer().setSpeed(1);
    setSpeed(0);
}

}  // namespace tavrelune
