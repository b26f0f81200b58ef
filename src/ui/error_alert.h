// Shows the controller's error message in one alert titled "Error" with an
// "OK" button, for as long as the message is set. A newer message replaces
// the text of the alert already showing; closing the alert by any means
// clears the message; clearing the message closes the alert.
//
// Main thread. Owned by the window it is modal to; follows the controller,
// which must outlive it.
#pragma once

#include <QMessageBox>
#include <QObject>
#include <QPointer>

class QWidget;

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class ErrorAlert : public QObject {
    Q_OBJECT
public:
    ErrorAlert(AppModel& model, QWidget& window);

    // The alert while it is showing, else null.
    QMessageBox* box() const { return box_; }

private:
    void follow();

    AppModel& model_;
    QWidget& window_;
    QPointer<QMessageBox> box_;
};

}  // namespace tavrelune::ui
