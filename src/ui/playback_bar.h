// The preview pane's transport under the stage: play/pause, play all, the
// timeline over the selected clip's trim window with the time beside it,
// and below them the "Set In & Out…" button with the clip's in and out
// points.
//
// Every control calls one controller operation; the bar keeps no state.
// Times are seconds; the timeline counts from the clip's in point.
//
// Main thread. Follows the controller, which must outlive it.
#pragma once

#include "model/clip_item.h"
#include "ui/time_display.h"

#include <QWidget>
#include <optional>

class QLabel;
class QPushButton;

namespace tavrelune {
class AppModel;
class PreviewClock;
}  // namespace tavrelune

namespace tavrelune::ui {

class LiveSlider;

class PlaybackBar : public QWidget {
    Q_OBJECT
public:
    explicit PlaybackBar(AppModel& model, const TimeDisplay* times = nullptr, QWidget* parent = nullptr);

    // Length the timeline spans: the trimmed length, else the duration;
    // 0 without a clip or a known length.
    static double timelineLength(const std::optional<ClipItem>& clip);
    // "0:01.5 / 0:05.0", or "—" without a positive length.
    static QString timeLabel(const std::optional<ClipItem>& clip, double playhead, TimeStyle style = {});
    // "0:02.5 – 0:07.5" for a trimmed clip, else "Full clip".
    static QString trimText(const std::optional<ClipItem>& clip, TimeStyle style = {});
    static QString playHelp(const PreviewClock& clock);

    QPushButton* playButton() const { return play_; }
    QPushButton* playAllButton() const { return playAll_; }
    LiveSlider* timeline() const { return timeline_; }
    QLabel* time() const { return time_; }
    QPushButton* trimButton() const { return trim_; }
    QLabel* trimLabel() const { return trimLabel_; }

private:
    void togglePlayback();
    void togglePlayAll();
    void follow();
    void followPlayhead();

    AppModel& model_;
    const TimeDisplay* times_;
    QPushButton* play_;
    QPushButton* playAll_;
    LiveSlider* timeline_;
    QLabel* time_;
    QPushButton* trim_;
    QLabel* trimLabel_;
};

}  // namespace tavrelune::ui
