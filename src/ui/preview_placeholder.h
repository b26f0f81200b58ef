// The middle pane until the live preview takes its place: the "Preview"
// header over a black stage naming the selected clip, or inviting the user
// to add clips.
//
// Main thread. Follows the controller, which must outlive it.
#pragma once

#include <QWidget>

class QLabel;

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class PreviewPlaceholder : public QWidget {
    Q_OBJECT
public:
    explicit PreviewPlaceholder(AppModel& model, QWidget* parent = nullptr);

private:
    void follow();

    AppModel& model_;
    QLabel* title_;
    QLabel* detail_;
};

}  // namespace tavrelune::ui
