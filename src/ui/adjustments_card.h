// The "Per clip" card: the selected clip's grade sliders (one per grade
// control, in gradeControls' order) bound to the
// controller's live grade, with Reset and Apply to all clips; only a hint
// while no clip is selected.
//
// Every movement updates the live grade and pushes it to the preview; the
// end of a drag stores it in the clip. Main thread. Follows the controller,
// which must outlive it.
#pragma once

#include "model/grade_values.h"
#include "ui/inspector_card.h"

#include <array>

class QLabel;

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class SliderRow;

class AdjustmentsCard : public InspectorCard {
    Q_OBJECT
public:
    explicit AdjustmentsCard(AppModel& model, QWidget* parent = nullptr);

    bool showsSliders() const;
    using Rows = std::array<SliderRow*, gradeControls.size()>;
    // In gradeControls' order.
    const Rows& rows() const { return rows_; }
    SliderRow* rowFor(double GradeValues::*member) const;

private:
    void followSelection();
    void followGrade();

    AppModel& model_;
    QWidget* hint_;
    QWidget* sliders_;
    QLabel* colourNote_ = nullptr;
    QLabel* clipName_;
    QWidget* controls_;
    Rows rows_{};
};

}  // namespace tavrelune::ui
