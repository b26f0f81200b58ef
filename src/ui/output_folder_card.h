// The "Output folder" card: the folder converted files go to, as selectable
// text, with "Choose folder…" and "Show in File Manager".
//
// Main thread. Follows the controller, which must outlive it.
#pragma once

#include "ui/inspector_card.h"

class QPushButton;

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class PathLabel;

class OutputFolderCard : public InspectorCard {
    Q_OBJECT
public:
    explicit OutputFolderCard(AppModel& model, QWidget* parent = nullptr);

    PathLabel* pathLabel() const { return path_; }

private:
    void follow();

    AppModel& model_;
    PathLabel* path_;
    QWidget* buttons_;
    QPushButton* reveal_;
};

}  // namespace tavrelune::ui
