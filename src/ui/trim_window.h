// The single "In & Out" window, opened (or raised again) whenever the
// controller asks for the trim editor. It tells the controller when it
// appears and disappears; its body is the trim editor (TrimEditorView),
// which setBody() can replace.
//
// Main thread. Owned by the main window (closes with it); follows the
// controller, which must outlive it.
#pragma once

#include <QWidget>

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class TimeDisplay;

class TrimWindow : public QWidget {
    Q_OBJECT
public:
    explicit TrimWindow(AppModel& model, QWidget* parent = nullptr, const TimeDisplay* times = nullptr);

    // Replaces the body (the previous one is deleted).
    void setBody(QWidget* body);
    QWidget* body() const { return body_; }
    // Shows the window, or raises it when it is already open.
    void present();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    AppModel& model_;
    QWidget* body_ = nullptr;
};

}  // namespace tavrelune::ui
