#include "ui/trim/trim_editor_view.h"

#include "controller/app_model.h"
#include "ui/time_display.h"
#include "ui/preview/player_layer_view.h"
#include "ui/trim/trim_timeline_view.h"
#include "ui/appearance.h"
#include "ui/elided_label.h"
#include "ui/icons.h"
#include "ui/small_button.h"

#include <QFrame>
#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QStackedLayout>
#include <QVBoxLayout>
#include <cmath>

namespace tavrelune::trim {

namespace {

const QString dash = QStringLiteral("\u2014");

enum StagePage { playerStage, noClipStage, unplayableStage };

QFrame* divider()
{
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    line->setForegroundRole(QPalette::Mid);
    return line;
}

QWidget* placeholder(const QIcon& icon, const QString& text, const QColor& colour)
{
    auto* page = new QWidget;
    auto* symbol = new QLabel;
    symbol->setAlignment(Qt::AlignCenter);
    symbol->setPixmap(icon.pixmap(32, 32));
    auto* words = new QLabel(text);
    words->setAlignment(Qt::AlignCenter);
    ui::appearance::setTextColor(words, colour);
    auto* column = new QVBoxLayout(page);
    column->setSpacing(8);
    column->addStretch(1);
    column->addWidget(symbol);
    column->addWidget(words);
    column->addStretch(1);
    return page;
}

QLabel* timeText(const QFont& base, QFont::Weight weight)
{
    auto* label = new QLabel(dash);
    label->setFont(ui::appearance::weighted(ui::appearance::caption(base), weight));
    return label;
}

// The clip's frame length; 1/30 s when its rate is unknown.
double frameLength(const ClipItem& clip)
{
    if (clip.fps && std::isfinite(*clip.fps) && *clip.fps > 0)
        return 1 / *clip.fps;
    return 1.0 / 30;
}

}  // namespace

TrimEditorView::TrimEditorView(AppModel& model, const ui::TimeDisplay* times, QWidget* parent)
    : QWidget(parent), model_(model), times_(times)
{
    setObjectName(QStringLiteral("trimEditor"));
    setMinimumSize(720, 460);
    setFocusPolicy(Qt::StrongFocus);  // Space must reach it; no ring is drawn
    setBackgroundRole(QPalette::Window);
    setAutoFillBackground(true);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeHeader());
    column->addWidget(divider());
    column->addWidget(makeStage(), 1);
    column->addWidget(divider());
    column->addWidget(makeControls());

    connect(&model_, &AppModel::selectedClipIDChanged, this, &TrimEditorView::refresh);
    if (times_)
        connect(times_, &ui::TimeDisplay::changed, this, &TrimEditorView::refresh);
    connect(&model_, &AppModel::clipsChanged, this, &TrimEditorView::refresh);
    connect(&model_, &AppModel::isConvertingChanged, this, &TrimEditorView::refresh);
    PreviewClock& clock = model_.trimClock();
    connect(&clock, &PreviewClock::secondsChanged, this, &TrimEditorView::refresh);
    connect(&clock, &PreviewClock::isPlayingChanged, this, &TrimEditorView::refresh);
    connect(&clock, &PreviewClock::isPlayableChanged, this, &TrimEditorView::refresh);
    refresh();
}

QWidget* TrimEditorView::makeHeader()
{
    auto* header = new QWidget;
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(16, 12, 16, 12);
    row->setSpacing(10);

    auto* titles = new QVBoxLayout;
    titles->setSpacing(2);
    name_ = new ui::ElidedLabel;
    name_->setObjectName(QStringLiteral("trimClipName"));
    name_->setFont(ui::appearance::headline(font()));
    auto* origin = new QLabel(QStringLiteral("Original video \u00B7 no LUT or grade"));
    origin->setFont(ui::appearance::caption(font()));
    ui::appearance::setTextColor(origin, ui::appearance::secondaryText(palette()));
    titles->addWidget(name_);
    titles->addWidget(origin);
    row->addLayout(titles, 1);

    keep_ = timeText(font(), QFont::Normal);
    keep_->setObjectName(QStringLiteral("trimKeep"));
    ui::appearance::setTextColor(keep_, ui::appearance::secondaryText(palette()));
    row->addWidget(keep_);

    done_ = new QPushButton(QStringLiteral("Done"));
    done_->setObjectName(QStringLiteral("trimDone"));
    done_->setFocusPolicy(Qt::NoFocus);  // Space and Return belong to the editor
    connect(done_, &QPushButton::clicked, this, [this] { window()->close(); });
    row->addWidget(done_);
    return header;
}

QWidget* TrimEditorView::makeStage()
{
    auto* stage = new QWidget;
    QPalette dark = stage->palette();
    dark.setColor(QPalette::Window, ui::appearance::blend(Qt::black, palette().color(QPalette::Window), 0.92));
    stage->setPalette(dark);
    stage->setAutoFillBackground(true);
    const QColor muted(0x9a, 0x9a, 0x9a);

    auto* playerPage = new QWidget;
    auto* framed = new QVBoxLayout(playerPage);
    framed->setContentsMargins(16, 16, 16, 16);
    playerView_ = new PlayerLayerView(&model_.trimPlayer());
    playerView_->setObjectName(QStringLiteral("trimPlayerView"));
    framed->addWidget(playerView_);
    badge_ = new QLabel(QStringLiteral("Original"), playerPage);
    badge_->setObjectName(QStringLiteral("trimBadge"));
    badge_->setFont(ui::appearance::weighted(ui::appearance::caption(font()), QFont::DemiBold));
    badge_->setStyleSheet(QStringLiteral("color: white; background: rgba(0, 0, 0, 115);"
                                         " border-radius: 5px; padding: 4px 8px;"));
    badge_->adjustSize();
    badge_->raise();
    playerView_->installEventFilter(this);
    connect(playerView_, &VideoFrameView::frameDrawn, this, &TrimEditorView::placeBadge);

    auto* noClip = placeholder(ui::icons::symbol(QStringLiteral("video-x-generic"), muted),
                               QStringLiteral("Select a clip to set in and out points"), muted);
    noClip->setObjectName(QStringLiteral("trimNoClip"));
    auto* unplayable = placeholder(ui::icons::bundled(QStringLiteral("tavrelune-preview"), muted),
                                   QStringLiteral("This format can\u2019t be played here"), muted);
    unplayable->setObjectName(QStringLiteral("trimUnplayable"));

    stage_ = new QStackedLayout(stage);
    stage_->insertWidget(playerStage, playerPage);
    stage_->insertWidget(noClipStage, noClip);
    stage_->insertWidget(unplayableStage, unplayable);
    return stage;
}

QWidget* TrimEditorView::makeControls()
{
    auto* controls = new QWidget;
    auto* rows = new QVBoxLayout(controls);
    rows->setContentsMargins(16, 12, 16, 12);
    rows->setSpacing(10);

    auto* transport = new QHBoxLayout;
    transport->setSpacing(12);
    play_ = new QPushButton;
    play_->setObjectName(QStringLiteral("trimPlay"));
    play_->setFixedSize(44, 32);
    play_->setIconSize(QSize(18, 18));
    play_->setFocusPolicy(Qt::NoFocus);
    // Prominent: the accent colour, muted while unavailable.
    play_->setStyleSheet(QStringLiteral(
        "QPushButton { background-color: palette(highlight); border: none; border-radius: 6px; }"
        "QPushButton:pressed { background-color: palette(dark); }"
        "QPushButton:disabled { background-color: palette(midlight); }"));
    connect(play_, &QPushButton::clicked, &model_, &AppModel::toggleTrimPlayback);
    transport->addWidget(play_);

    timeline_ = new TrimTimelineView;
    timeline_->setToolTip(keyHelp());
    timeline_->onScrubStart = [this] { model_.beginTrimScrubbing(); };
    timeline_->onInChange = [this](double seconds) { model_.updateInPoint(seconds, false); };
    timeline_->onOutChange = [this](double seconds) { model_.updateOutPoint(seconds, false); };
    timeline_->onPlayheadChange = [this](double seconds) { model_.updateTrimPlayhead(seconds); };
    timeline_->onScrubEnd = [this] { model_.endTrimScrubbing(); };
    transport->addWidget(timeline_, 1);
    rows->addLayout(transport);

    pointRow_ = new QWidget;
    auto* points = new QHBoxLayout(pointRow_);
    points->setContentsMargins(0, 0, 0, 0);
    points->setSpacing(10);
    const auto button = [&](const QString& text, const QString& help, const char* name) {
        auto* made = new ui::SmallButton(text);
        made->setObjectName(QString::fromLatin1(name));
        made->setToolTip(help);
        made->setFocusPolicy(Qt::NoFocus);
        return made;
    };
    auto* setIn = button(QStringLiteral("Set In"), QStringLiteral("Set the in point to the current frame"), "trimSetIn");
    auto* setOut = button(QStringLiteral("Set Out"), QStringLiteral("Set the out point to the current frame"), "trimSetOut");
    reset_ = button(QStringLiteral("Reset"), QStringLiteral("Use the full clip"), "trimReset");
    connect(setIn, &QPushButton::clicked, this, [this] { model_.updateInPoint(model_.trimClock().seconds(), true); });
    connect(setOut, &QPushButton::clicked, this, [this] { model_.updateOutPoint(model_.trimClock().seconds(), true); });
    connect(reset_, &QPushButton::clicked, &model_, &AppModel::resetTrim);

    const QColor secondary = ui::appearance::secondaryText(palette());
    inLabel_ = timeText(font(), QFont::Normal);
    outLabel_ = timeText(font(), QFont::Normal);
    timeLabel_ = timeText(font(), QFont::Medium);
    inLabel_->setObjectName(QStringLiteral("trimInLabel"));
    outLabel_->setObjectName(QStringLiteral("trimOutLabel"));
    timeLabel_->setObjectName(QStringLiteral("trimTimeLabel"));
    for (QLabel* label : {inLabel_, outLabel_}) {
        label->setMinimumWidth(52);
        ui::appearance::setTextColor(label, secondary);
    }
    outLabel_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    points->addWidget(setIn);
    points->addWidget(inLabel_);
    points->addStretch(1);
    points->addWidget(timeLabel_);
    points->addStretch(1);
    points->addWidget(outLabel_);
    points->addWidget(setOut);
    points->addWidget(reset_);
    rows->addWidget(pointRow_);
    return controls;
}

QString TrimEditorView::keyHelp()
{
    return QStringLiteral("Drag the handles to set the in and out points, or the playhead to look around.\n"
                          "Space: play or pause\n"
                          "I / O: set the in / out point at the playhead\n"
                          "Left / Right: one frame back / on (Shift: one second)\n"
                          "Home / End: go to the in / out point\n"
                          "Return: done");
}

// On the picture's top-left corner rather than on the black beside a
// picture narrower (or flatter) than the view.
void TrimEditorView::placeBadge()
{
    QPoint corner;
    if (const auto frame = model_.trimPlayer().latestFrame())
        corner = VideoFrameView::fittedRect({frame->width(), frame->height()}, playerView_->size()).topLeft();
    badge_->move(playerView_->pos() + corner + QPoint(12, 12));
}

bool TrimEditorView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == playerView_ && (event->type() == QEvent::Resize || event->type() == QEvent::Move))
        placeBadge();
    return QWidget::eventFilter(watched, event);
}

bool TrimEditorView::canTrim() const
{
    const auto clip = model_.selectedClip();
    return !model_.isConverting() && clip && clip->duration && *clip->duration > 0;
}

void TrimEditorView::refresh()
{
    const auto clip = model_.selectedClip();
    const PreviewClock& clock = model_.trimClock();
    const bool converting = model_.isConverting();
    const bool known = clip && clip->duration;
    const bool trimmed = clip && clip->isTrimmed();
    const ui::TimeStyle style = ui::styleOf(times_);
    const auto time = [&](double seconds) { return style.text(seconds, clip ? clip->fps : std::nullopt); };

    name_->setFullText(clip ? clip->name : QStringLiteral("No clip selected"));
    keep_->setVisible(trimmed);
    if (trimmed)
        keep_->setText(QStringLiteral("Keep ") + time(clip->trimmedDuration().value_or(0)));
    done_->setEnabled(!converting);

    stage_->setCurrentIndex(clock.isPlayable() ? playerStage : clip ? unplayableStage : noClipStage);

    const bool playing = clock.isPlaying();
    play_->setEnabled(clock.isPlayable() && !converting && clip);
    if (playIconShowsPause_ != playing) {  // not on every position report
        playIconShowsPause_ = playing;
        play_->setIcon(ui::icons::symbol(
            playing ? QStringLiteral("media-playback-pause") : QStringLiteral("media-playback-start"), Qt::white));
        play_->setToolTip(playing ? QStringLiteral("Pause") : QStringLiteral("Play original"));
    }

    timeline_->setEnabled(!converting);
    timeline_->setState({.duration = clip ? clip->duration.value_or(0) : 0,
                         .inPoint = clip ? clip->effectiveInPoint() : 0,
                         .outPoint = clip ? clip->effectiveOutPoint() : 0,
                         .playhead = clock.seconds(),
                         .enabled = canTrim()});

    pointRow_->setEnabled(canTrim());
    reset_->setVisible(trimmed);
    inLabel_->setText(known ? time(clip->effectiveInPoint()) : dash);
    outLabel_->setText(known ? time(clip->effectiveOutPoint()) : dash);
    timeLabel_->setText(known ? time(clock.seconds()) + QStringLiteral(" / ") + time(*clip->duration) : dash);
}

bool TrimEditorView::stepPlayhead(int frames, double seconds)
{
    if (!canTrim())
        return false;
    const ClipItem clip = *model_.selectedClip();
    double target = model_.trimClock().seconds() + seconds;
    if (frames != 0) {
        // From the frame on screen: a playhead part-way into a frame steps
        // to the start of the next one, never past it.
        const double frame = frameLength(clip);
        target = (std::floor(model_.trimClock().seconds() / frame + 1e-6) + frames) * frame;
    }
    model_.updateTrimPlayhead(target);
    return true;
}

void TrimEditorView::keyPressEvent(QKeyEvent* event)
{
    // Combinations with Ctrl, Alt or Meta are the menus' (Ctrl+O is not O).
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) {
        QWidget::keyPressEvent(event);
        return;
    }
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    const bool repeat = event->isAutoRepeat();  // only the stepping keys repeat
    const auto clip = model_.selectedClip();
    switch (event->key()) {
    case Qt::Key_Space:
        if (!repeat)
            model_.toggleTrimPlayback();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!repeat && done_->isEnabled())
            done_->click();
        return;
    case Qt::Key_I:
        if (!repeat && canTrim())
            model_.updateInPoint(model_.trimClock().seconds(), true);
        return;
    case Qt::Key_O:
        if (!repeat && canTrim())
            model_.updateOutPoint(model_.trimClock().seconds(), true);
        return;
    case Qt::Key_Left:
        stepPlayhead(shift ? 0 : -1, shift ? -1 : 0);
        return;
    case Qt::Key_Right:
        stepPlayhead(shift ? 0 : 1, shift ? 1 : 0);
        return;
    case Qt::Key_Home:
        if (canTrim())
            model_.updateTrimPlayhead(clip->effectiveInPoint());
        return;
    case Qt::Key_End:
        if (canTrim())
            model_.updateTrimPlayhead(clip->effectiveOutPoint());
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void TrimEditorView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!isAncestorOf(QApplication::focusWidget()))
        setFocus(Qt::OtherFocusReason);
}

}  // namespace tavrelune::trim
