// The drawing surface shared by the preview views: shows a player's frames
// fitted and centred on black, through OpenGL.
//
// The view follows its player: each new frame (the player's frameAvailable),
// in order, is handed to the subclass, which decides what picture to
// present; presented pictures are drawn in order, a few at most waiting
// (see frame_queue.h), so a short stall of the GUI thread skips none. A new
// `loadID` drops the previous clip's picture, so the view is black until the
// new clip's first frame. Pictures are uploaded into one kept texture (only
// reallocated when the size changes) and redrawn at most 60 times a second,
// only when something changed: nothing polls.
//
// Threading: main thread only (a QWidget). Ownership: the view holds its
// player weakly; the widget tree owns the view.
#pragma once

#include "preview/clip_preview_player.h"
#include "preview/frame_queue.h"
#include "preview/frame_statistics.h"
#include "preview/redraw_pacer.h"
#include "preview/video_frame.h"

#include <QElapsedTimer>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QPointer>
#include <QTimer>
#include <QUuid>
#include <memory>

class QOpenGLShaderProgram;

namespace tavrelune {

class VideoFrameView : public QOpenGLWidget, protected QOpenGLFunctions {
    Q_OBJECT

public:
    explicit VideoFrameView(QWidget* parent = nullptr);
    ~VideoFrameView() override;

    ClipPreviewPlayer* player() const { return player_; }
    void setPlayer(ClipPreviewPlayer* player);
    // The player's loadID whose frames are shown.
    QUuid currentLoadID() const { return currentLoadID_; }
    void setStatistics(std::shared_ptr<FrameStatistics> statistics);

    // Where a picture of `picture` pixels is drawn in a `target` surface:
    // scaled uniformly to fit and centred. A picture of 1 pixel or less in
    // either direction is drawn unscaled at the origin.
    static QRect fittedRect(QSize picture, QSize target);

    static constexpr int maximumRedrawsPerSecond = 60;

Q_SIGNALS:
    // A picture not drawn before was drawn; `sequence` is its source frame's.
    void frameDrawn(quint64 sequence);

protected:
    // A frame of the current clip that the view has not had yet.
    virtual void frameArrived(std::shared_ptr<const VideoFrame> frame) = 0;
    // The player or its clip changed: drop anything kept from the old clip.
    virtual void contentCleared() {}
    virtual void playerAttached(ClipPreviewPlayer* player) { Q_UNUSED(player); }

    // The next picture to draw (none: black at once, dropping any waiting);
    // redraws soon.
    void present(std::shared_ptr<const VideoFrame> picture);
    // Takes the player's frames that are new to this view.
    void pullFrame();
    const std::shared_ptr<FrameStatistics>& statistics() const { return statistics_; }

    void initializeGL() override;
    void paintGL() override;

private:
    void followLoadID(const QUuid& loadID);
    void scheduleRepaint();
    void upload(const VideoFrame& picture);
    void releaseGL();

    QPointer<ClipPreviewPlayer> player_;
    QMetaObject::Connection loadConnection_;
    QMetaObject::Connection frameConnection_;
    QUuid currentLoadID_ = QUuid::createUuid();
    std::shared_ptr<const VideoFrame> pulled_;
    std::shared_ptr<const VideoFrame> picture_;  // drawn now
    FrameQueue waiting_{FrameQueue::Overflow::keepNewest};  // to draw next, oldest first
    // Held while in the texture, so its buffer cannot be reused meanwhile
    // and a pointer comparison tells whether the texture is current.
    std::shared_ptr<const VideoFrame> uploaded_;
    std::shared_ptr<FrameStatistics> statistics_;

    bool bgraUpload_ = true;
    GLuint texture_ = 0;
    QSize textureSize_;
    std::unique_ptr<QOpenGLShaderProgram> program_;
    QElapsedTimer clock_;
    RedrawPacer pacer_{maximumRedrawsPerSecond};
    QTimer repaintTimer_;
};

}  // namespace tavrelune
