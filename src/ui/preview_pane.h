// The main window's middle pane: the "Preview" header (with a spinner while
// a still is being made and the hold-to-compare hint), the stage with the
// selected clip, and the playback bar.
//
// The pane takes the keyboard focus when clicked (it draws no focus ring);
// Space then toggles playback like the play button, and stops play-all, and
// the editor's keys work (keyHelp(): frames, seconds, J/K/L, I/O, Home/End).
//
// Main thread. Follows the controller, which must outlive it.
#pragma once

#include "controller/viewer_transport.h"

#include <QWidget>

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class PlaybackBar;
class TimeDisplay;
class PreviewStage;

class PreviewPane : public QWidget {
    Q_OBJECT
public:
    explicit PreviewPane(AppModel& model, const TimeDisplay* times = nullptr, QWidget* parent = nullptr);

    PreviewStage* stage() const { return stage_; }
    PlaybackBar* playbackBar() const { return bar_; }
    QWidget* busyIndicator() const { return busy_; }
    ViewerTransport& transport() { return transport_; }

    // The keys, one per line, as the playback bar's tooltip lists them.
    static QString keyHelp();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    AppModel& model_;
    ViewerTransport transport_;
    QWidget* busy_;
    PreviewStage* stage_;
    PlaybackBar* bar_;
};

}  // namespace tavrelune::ui
