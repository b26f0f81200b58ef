#include "ui/trim_window.h"

#include "controller/app_model.h"
#include "model/time_formatting.h"
#include "ui/appearance.h"
#include "ui/icons.h"

#include <QLabel>
#include <QShowEvent>
#include <QVBoxLayout>

namespace tavrelune::ui {

TrimWindow::TrimWindow(AppModel& model, QWidget* parent) : QWidget(parent, Qt::Window), model_(model)
{
    setObjectName(QStringLiteral("trimWindow"));
    setWindowTitle(QStringLiteral("In & Out"));
    resize(920, 620);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    setBody(makeTrimPlaceholder(model_));
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

QWidget* makeTrimPlaceholder(AppModel& model)
{
    auto* body = new QWidget;
    body->setObjectName(QStringLiteral("trimPlaceholder"));
    auto* symbol = new QLabel;
    symbol->setAlignment(Qt::AlignCenter);
    symbol->setPixmap(icons::symbol(QStringLiteral("edit-cut"), appearance::secondaryText(body->palette())).pixmap(40, 40));
    auto* name = new QLabel;
    name->setAlignment(Qt::AlignCenter);
    name->setFont(appearance::headline(body->font()));
    name->setTextFormat(Qt::PlainText);
    auto* window = new QLabel;
    window->setAlignment(Qt::AlignCenter);
    appearance::setTextColor(window, appearance::secondaryText(body->palette()));

    auto* column = new QVBoxLayout(body);
    column->setSpacing(10);
    column->addStretch(1);
    column->addWidget(symbol);
    column->addWidget(name);
    column->addWidget(window);
    column->addStretch(1);

    const auto follow = [&model, name, window] {
        const auto clip = model.selectedClip();
        name->setText(clip ? clip->name : QStringLiteral("No clip selected"));
        if (!clip)
            window->clear();
        else if (clip->isTrimmed())
            window->setText(TimeFormatting::clock(clip->effectiveInPoint(), true) + QStringLiteral(" \u2013 ")
                            + TimeFormatting::clock(clip->effectiveOutPoint(), true));
        else
            window->setText(QStringLiteral("Full clip"));
    };
    QObject::connect(&model, &AppModel::selectedClipIDChanged, body, follow);
    QObject::connect(&model, &AppModel::clipsChanged, body, follow);
    follow();
    return body;
}

}  // namespace tavrelune::ui
