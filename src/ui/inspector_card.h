// One card of the inspector: a title in the headline font above its content,
// on a rounded panel in the window colour.
//
// Main thread; a plain widget. Cards add their rows to body().
#pragma once

#include <QFrame>

class QVBoxLayout;

namespace tavrelune::ui {

class InspectorCard : public QFrame {
    Q_OBJECT
public:
    explicit InspectorCard(const QString& title, QWidget* parent = nullptr);

    QVBoxLayout* body() const { return body_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* body_;
};

}  // namespace tavrelune::ui
