// Playhead and play state of one preview.
//
// Main thread only; owned by the controller. Each property notifies on
// change. Seconds are source-clip time.
#pragma once

#include <QObject>

namespace tavrelune {

class PreviewClock : public QObject {
    Q_OBJECT
    Q_PROPERTY(double seconds READ seconds WRITE setSeconds NOTIFY secondsChanged)
    Q_PROPERTY(bool isPlaying READ isPlaying WRITE setIsPlaying NOTIFY isPlayingChanged)
    Q_PROPERTY(bool isPlayable READ isPlayable WRITE setIsPlayable NOTIFY isPlayableChanged)
    Q_PROPERTY(bool isScrubbing READ isScrubbing WRITE setIsScrubbing NOTIFY isScrubbingChanged)

public:
    explicit PreviewClock(QObject* parent = nullptr) : QObject(parent) {}

    double seconds() const { return seconds_; }
    bool isPlaying() const { return isPlaying_; }
    bool isPlayable() const { return isPlayable_; }
    bool isScrubbing() const { return isScrubbing_; }

    void setSeconds(double seconds);
    void setIsPlaying(bool playing);
    void setIsPlayable(bool playable);
    void setIsScrubbing(bool scrubbing);

Q_SIGNALS:
    void secondsChanged(double seconds);
    void isPlayingChanged(bool playing);
    void isPlayableChanged(bool playable);
    void isScrubbingChanged(bool scrubbing);

private:
    double seconds_ = 0;
    bool isPlaying_ = false;
    bool isPlayable_ = false;
    bool isScrubbing_ = false;
};

}  // namespace tavrelune
