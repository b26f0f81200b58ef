#include "ui/trim_window.h"

#include "ui/time_display.h"
#include "controller/app_model.h"
#include "ui/trim/trim_editor_view.h"

#include <QShowEvent>
#include <QVBoxLayout>

namespace tavrelune::ui {

TrimWindow::TrimWindow(AppModel& model, QWidget* parent, const TimeDisplay* times)
    : QWidget(parent, Qt::Window), model_(model)
{
    setObjectName(QStringLiteral("trimWindow"));
    setWindowTitle(QStringLiteral("In & Out"));
    resize(920, 620);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    setBody(new trim::TrimEditorView(model_, times));
}

void TrimWindow::setBody(QWidget* body)
{
    if (body_) {
        layout()->removeWidget(body_);
        delete body_;
    }
    body_ = body;
    layout()->addWidget(body_);
}

void TrimWindow::present()
{
    show();
    raise();
    activateWindow();
}

void TrimWindow::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous())
        model_.trimEditorAppeared();
}

void TrimWindow::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    if (!event->spontaneous())
        model_.trimEditorDisappeared();
}

// A minimised window draws nothing: its player should not play on unseen.
void TrimWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && isMinimized() && model_.trimClock().isPlaying())
        model_.toggleTrimPlayback();
}

}  // namespace tavrelune::ui
