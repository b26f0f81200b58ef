#include "ui/preview_pane.h"

#include "ui/time_display.h"
#include "controller/app_model.h"
#include "ui/appearance.h"
#include "ui/playback_bar.h"
#include "ui/preview_stage.h"
#include "ui/spinner.h"

#include <QElapsedTimer>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QTimer>
#include <QVBoxLayout>

namespace tavrelune::ui {

namespace {

// The small spinner in the header; it turns only while shown.
class BusyIndicator : public QWidget {
public:
    BusyIndicator()
    {
        setFixedSize(16, 16);
        timer_.setInterval(spinnerFrameMs);
        connect(&timer_, &QTimer::timeout, this, qOverload<>(&QWidget::update));
    }

protected:
    void showEvent(QShowEvent*) override
    {
        clock_.start();
        timer_.start();
    }
    void hideEvent(QHideEvent*) override { timer_.stop(); }
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        paintSpinner(painter, QRectF(rect()), appearance::secondaryText(palette()), clock_.elapsed());
    }

private:
    QTimer timer_;
    QElapsedTimer clock_;
};

}  // namespace

PreviewPane::PreviewPane(AppModel& model, const TimeDisplay* times, QWidget* parent)
    : QWidget(parent), model_(model), transport_(model)
{
    setObjectName(QStringLiteral("previewPane"));
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    setFocusPolicy(Qt::StrongFocus);

    auto* header = new QWidget;
    header->setFixedHeight(appearance::paneHeaderHeight);
    auto* headerRow = new QHBoxLayout(header);
    headerRow->setContentsMargins(16, 0, 16, 0);
    headerRow->setSpacing(10);
    auto* heading = new QLabel(QStringLiteral("Preview"));
    heading->setFont(appearance::headline(font()));
    busy_ = new BusyIndicator;
    busy_->setObjectName(QStringLiteral("previewBusy"));
    auto* hint = new QLabel(QStringLiteral("Click and hold to see the original"));
    hint->setFont(appearance::caption(font()));
    appearance::setTextColor(hint, appearance::secondaryText(palette(), QPalette::Base));
    headerRow->addWidget(heading);
    headerRow->addStretch(1);
    headerRow->addWidget(busy_);
    headerRow->addWidget(hint);

    auto* divider = new QFrame;
    divider->setFrameShape(QFrame::HLine);
    divider->setFrameShadow(QFrame::Plain);
    divider->setForegroundRole(QPalette::Mid);

    stage_ = new PreviewStage(model_);
    bar_ = new PlaybackBar(model_, times);
    bar_->setToolTip(keyHelp());

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(header);
    column->addWidget(divider);
    column->addWidget(stage_, 1);
    column->addWidget(bar_);

    const auto followBusy = [this] { busy_->setVisible(model_.isPreviewing()); };
    connect(&model_, &AppModel::isPreviewingChanged, this, followBusy);
    followBusy();
}

QString PreviewPane::keyHelp()
{
    return QStringLiteral("Click the preview, then:\n"
                          "Space: play / pause\n"
                          "Left / Right: one frame back / on\n"
                          "Shift+Left / Right: one second back / on\n"
                          "L: play (again: faster), J: backward (again: faster), K: stop\n"
                          "I / O: set the in / out point at the playhead\n"
                          "Home / End: go to the in / out point");
}

void PreviewPane::keyPressEvent(QKeyEvent* event)
{
    // Combinations with Ctrl, Alt or Meta are the menus' (Ctrl+O is not O).
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    if (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) {
        QWidget::keyPressEvent(event);
        return;
    }
    const bool shift = modifiers & Qt::ShiftModifier;
    switch (event->key()) {
    case Qt::Key_Left:
        shift ? transport_.stepSeconds(-1) : transport_.stepFrames(-1);
        return;
    case Qt::Key_Right:
        shift ? transport_.stepSeconds(1) : transport_.stepFrames(1);
        return;
    case Qt::Key_J:
        transport_.shuttleBackward();
        return;
    case Qt::Key_K:
        transport_.stop();
        return;
    case Qt::Key_L:
        transport_.shuttleForward();
        return;
    case Qt::Key_I:
        transport_.markIn();
        return;
    case Qt::Key_O:
        transport_.markOut();
        return;
    case Qt::Key_Home:
        transport_.toInPoint();
        return;
    case Qt::Key_End:
        transport_.toOutPoint();
        return;
    default:
        break;
    }
    if (event->key() != Qt::Key_Space || shift) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (model_.clock().isPlaying() || model_.isPlayingAll())
        model_.pausePlayback(true);
    else
        model_.startPlayback();
    event->accept();
}

}  // namespace tavrelune::ui
