// The body of the "In & Out" window: the selected clip, ungraded, in the
// trim player's own view; a play/pause button and the trim timeline; "Set
// In" / "Set Out" / "Reset" with the in, out and playhead times; "Done".
// Every control calls one controller operation; the view keeps no state of
// its own and redraws from the controller whenever the selection, the
// clips, the conversion state or the trim clock change.
//
// Keys (while the window has focus): Space plays or pauses; Return is
// "Done"; I / O set the in / out point at the playhead, pushing the other
// point along when they would meet; Left / Right step one frame at the
// clip's rate (1/30 s when unknown), with Shift one second; Home / End go
// to the in / out point.
//
// Threading: main thread only. Ownership: a widget owned by its window; it
// follows the controller, which must outlive it.
#pragma once

#include <QWidget>
#include <optional>

class QLabel;
class QPushButton;
class QStackedLayout;

namespace tavrelune {
class AppModel;
class PlayerLayerView;
}  // namespace tavrelune

namespace tavrelune::ui {
class ElidedLabel;
class TimeDisplay;
}

namespace tavrelune::trim {

class TrimTimelineView;

class TrimEditorView : public QWidget {
    Q_OBJECT

public:
    explicit TrimEditorView(AppModel& model, const ui::TimeDisplay* times = nullptr, QWidget* parent = nullptr);

    TrimTimelineView* timeline() const { return timeline_; }
    PlayerLayerView* playerView() const { return playerView_; }

    // The keys, one per line, as the timeline's tooltip lists them.
    static QString keyHelp();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeHeader();
    QWidget* makeStage();
    QWidget* makeControls();
    void refresh();
    void placeBadge();
    // Moves the playhead by whole frames (on the clip's frame grid) or by
    // seconds; false when the clip cannot be trimmed right now.
    bool stepPlayhead(int frames, double seconds);
    bool canTrim() const;

    AppModel& model_;
    const ui::TimeDisplay* times_;
    ui::ElidedLabel* name_ = nullptr;
    QLabel* keep_ = nullptr;
    QPushButton* done_ = nullptr;
    QStackedLayout* stage_ = nullptr;
    PlayerLayerView* playerView_ = nullptr;
    QLabel* badge_ = nullptr;
    QPushButton* play_ = nullptr;
    std::optional<bool> playIconShowsPause_;
    TrimTimelineView* timeline_ = nullptr;
    QWidget* pointRow_ = nullptr;
    QLabel* inLabel_ = nullptr;
    QLabel* timeLabel_ = nullptr;
    QLabel* outLabel_ = nullptr;
    QPushButton* reset_ = nullptr;
};

}  // namespace tavrelune::trim
