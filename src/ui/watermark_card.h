// The "Watermark" card: the chosen image with Choose… and Clear and, while a
// watermark is in use, its size and opacity, "Reset position" and a note on
// placing it on the preview.
//
// Main thread. Follows the controller, which must outlive it.
#pragma once

#include "ui/inspector_card.h"

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class FileChoiceRow;
class SliderRow;

class WatermarkCard : public InspectorCard {
    Q_OBJECT
public:
    explicit WatermarkCard(AppModel& model, QWidget* parent = nullptr);

    FileChoiceRow* fileRow() const { return row_; }
    SliderRow* sizeRow() const { return size_; }
    SliderRow* opacityRow() const { return opacity_; }

private:
    void follow();

    AppModel& model_;
    FileChoiceRow* row_;
    QWidget* placement_;
    SliderRow* size_;
    SliderRow* opacity_;
};

}  // namespace tavrelune::ui
