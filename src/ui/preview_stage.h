// The preview pane's stage, on black: the selected clip's live graded video
// when it plays, else its graded still fitted with its aspect, else the eye
// placeholder. Over the picture: the watermark placement view and the
// "Graded" / "Original" badge. Pressing on the picture shows the original
// (ungraded) at once, also while paused, until the button is released; a
// change of selection ends it.
//
// Main thread. Follows the controller, which must outlive it. The
// comparison is this view's own state: it never reaches the export.
#pragma once

#include <QImage>
#include <QWidget>

class QLabel;

namespace tavrelune {
class AppModel;
class GradedPreviewView;
class WatermarkPlacementView;
}  // namespace tavrelune

namespace tavrelune::ui {

// A still picture fitted into the view with its aspect, on black.
class StillView : public QWidget {
    Q_OBJECT
public:
    explicit StillView(QWidget* parent = nullptr);
    void setImage(const QImage& image);
    const QImage& image() const { return image_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage image_;
};

class PreviewStage : public QWidget {
    Q_OBJECT
public:
    enum class Content { live, still, placeholder };

    explicit PreviewStage(AppModel& model, QWidget* parent = nullptr);

    Content content() const { return content_; }
    bool showingOriginal() const { return showingOriginal_; }
    // Ends (or starts) the comparison, as releasing (pressing) would.
    void setShowingOriginal(bool showing);

    GradedPreviewView* liveView() const { return live_; }
    StillView* stillView() const { return still_; }
    WatermarkPlacementView* watermarkView() const { return watermark_; }
    QLabel* badge() const { return badge_; }
    QString placeholderText() const;

Q_SIGNALS:
    void showingOriginalChanged(bool showing);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void follow();
    void layoutChildren();
    QImage displayImage() const;

    AppModel& model_;
    Content content_ = Content::placeholder;
    bool showingOriginal_ = false;
    GradedPreviewView* live_;
    StillView* still_;
    QWidget* placeholder_;
    QLabel* placeholderLabel_;
    WatermarkPlacementView* watermark_;
    QLabel* badge_;
};

}  // namespace tavrelune::ui
