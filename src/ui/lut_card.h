// The "LUT" card: the batch's look-up table, with Choose… and Clear.
//
// Main thread. Follows the controller, which must outlive it.
#pragma once

#include "ui/inspector_card.h"

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class FileChoiceRow;

class LutCard : public InspectorCard {
    Q_OBJECT
public:
    explicit LutCard(AppModel& model, QWidget* parent = nullptr);

    FileChoiceRow* fileRow() const { return row_; }

private:
    void follow();

    AppModel& model_;
    FileChoiceRow* row_;
};

}  // namespace tavrelune::ui
