#include "ui/playback_bar.h"

#include "controller/app_model.h"
#include "model/time_formatting.h"
#include "ui/appearance.h"
#include "ui/icons.h"
#include "ui/live_slider.h"
#include "ui/small_button.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavrelune::ui {

namespace {

constexpr QSize transportButtonSize(44, 32);

QPushButton* transportButton(const QString& name, int iconSize)
{
    auto* button = new QPushButton;
    button->setObjectName(name);
    button->setFixedSize(transportButtonSize);
    button->setIconSize(QSize(iconSize, iconSize));
    // A click leaves the keyboard focus with the pane, whose Space key
    // toggles playback.
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

}  // namespace

PlaybackBar::PlaybackBar(AppModel& model, const TimeDisplay* times, QWidget* parent)
    : QWidget(parent), model_(model), times_(times)
{
    setObjectName(QStringLiteral("playbackBar"));
    play_ = transportButton(QStringLiteral("playButton"), 18);
    // Prominent, like the window's other main action.
    play_->setStyleSheet(QStringLiteral(
        "QPushButton { background-color: palette(highlight); border: none; border-radius: 6px; }"
        "QPushButton:pressed { background-color: palette(dark); }"
        "QPushButton:disabled { background-color: palette(midlight); }"));
    playAll_ = transportButton(QStringLiteral("playAllButton"), 15);
    timeline_ = new LiveSlider(0, 1);
    timeline_->setObjectName(QStringLiteral("timeline"));
    timeline_->setFocusPolicy(Qt::TabFocus);
    time_ = new QLabel;
    time_->setObjectName(QStringLiteral("timeLabel"));
    QFont digits = font();
    digits.setStyleHint(QFont::Monospace);
    digits.setFamily(QStringLiteral("monospace"));
    time_->setFont(appearance::caption(digits));
    time_->setMinimumWidth(QFontMetrics(time_->font()).horizontalAdvance(QStringLiteral("00:00.0 / 00:00.0")));
    time_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    trim_ = new SmallButton(QStringLiteral("Set In && Out\u2026"));
    trim_->setObjectName(QStringLiteral("trimButton"));
    trim_->setFocusPolicy(Qt::TabFocus);
    trim_->setIcon(icons::symbol(QStringLiteral("edit-cut"), appearance::primaryText(palette())));
    trim_->setFixedWidth(trim_->sizeHint().width() + trim_->iconSize().width());
    trim_->setToolTip(QStringLiteral("Open a window with the original clip to set in and out points"));
    trimLabel_ = new QLabel;
    trimLabel_->setObjectName(QStringLiteral("trimText"));
    trimLabel_->setFont(appearance::caption(digits));
    appearance::setTextColor(trimLabel_, appearance::secondaryText(palette()));
    appearance::setTextColor(time_, appearance::secondaryText(palette()));

    auto* transport = new QHBoxLayout;
    transport->setSpacing(10);
    transport->addWidget(play_);
    transport->addWidget(playAll_);
    transport->addWidget(timeline_, 1);
    transport->addWidget(time_);
    auto* trimRow = new QHBoxLayout;
    trimRow->setSpacing(10);
    trimRow->addWidget(trim_);
    trimRow->addWidget(trimLabel_, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 10, 16, 12);
    column->setSpacing(8);
    column->addLayout(transport);
    column->addLayout(trimRow);

    connect(play_, &QPushButton::clicked, this, &PlaybackBar::togglePlayback);
    connect(playAll_, &QPushButton::clicked, this, &PlaybackBar::togglePlayAll);
    connect(trim_, &QPushButton::clicked, &model_, &AppModel::showTrimEditor);
    connect(timeline_, &LiveSlider::editingChanged, this, [this](bool editing) {
        if (editing)
            model_.beginScrubbing();
        else
            model_.endScrubbing();
    });
    connect(timeline_, &LiveSlider::valueEdited, &model_, &AppModel::updatePreviewTime);

    PreviewClock& clock = model_.clock();
    connect(&clock, &PreviewClock::secondsChanged, this, &PlaybackBar::followPlayhead);
    connect(&clock, &PreviewClock::isPlayingChanged, this, &PlaybackBar::follow);
    connect(&clock, &PreviewClock::isPlayableChanged, this, &PlaybackBar::follow);
    connect(&model_, &AppModel::clipsChanged, this, &PlaybackBar::follow);
    connect(&model_, &AppModel::selectedClipIDChanged, this, &PlaybackBar::follow);
    connect(&model_, &AppModel::isConvertingChanged, this, &PlaybackBar::follow);
    connect(&model_, &AppModel::isPlayingAllChanged, this, &PlaybackBar::follow);
    if (times_)
        connect(times_, &TimeDisplay::changed, this, &PlaybackBar::follow);
    follow();
}

double PlaybackBar::timelineLength(const std::optional<ClipItem>& clip)
{
    if (!clip)
        return 0;
    const double length = clip->trimmedDuration().value_or(clip->duration.value_or(0));
    return std::isfinite(length) ? length : 0;
}

QString PlaybackBar::timeLabel(const std::optional<ClipItem>& clip, double playhead, TimeStyle style)
{
    const double length = timelineLength(clip);
    if (!(length > 0))
        return QStringLiteral("\u2014");
    const double position = std::max(playhead - clip->effectiveInPoint(), 0.0);
    return style.text(position, clip->fps) + QStringLiteral(" / ") + style.text(length, clip->fps);
}

QString PlaybackBar::trimText(const std::optional<ClipItem>& clip, TimeStyle style)
{
    if (!clip || !clip->isTrimmed())
        return QStringLiteral("Full clip");
    return style.text(clip->effectiveInPoint(), clip->fps) + QStringLiteral(" \u2013 ")
         + style.text(clip->effectiveOutPoint(), clip->fps);
}

QString PlaybackBar::playHelp(const PreviewClock& clock)
{
    if (!clock.isPlayable())
        return QStringLiteral("This format can\u2019t be played live; scrub the timeline for stills");
    return clock.isPlaying() ? QStringLiteral("Pause") : QStringLiteral("Play");
}

void PlaybackBar::togglePlayback()
{
    if (model_.clock().isPlaying())
        model_.pausePlayback(true);
    else
        model_.startPlayback();
}

void PlaybackBar::togglePlayAll()
{
    if (model_.isPlayingAll())
        model_.pausePlayback(true);
    else
        model_.startPlayAll();
}

void PlaybackBar::follow()
{
    const PreviewClock& clock = model_.clock();
    const bool converting = model_.isConverting();
    const std::optional<ClipItem> clip = model_.selectedClip();

    const QColor onAccent = palette().color(QPalette::Active, QPalette::HighlightedText);
    play_->setIcon(icons::bundled(clock.isPlaying() ? QStringLiteral("media-playback-pause")
                                                    : QStringLiteral("media-playback-start"),
                                  onAccent));
    play_->setEnabled(clock.isPlayable() && !converting);
    play_->setToolTip(playHelp(clock));

    const bool playingAll = model_.isPlayingAll();
    const QColor tint = playingAll ? appearance::accent(palette()) : appearance::primaryText(palette());
    playAll_->setIcon(icons::bundled(playingAll ? QStringLiteral("media-playback-stop")
                                                : QStringLiteral("tavrelune-play-all"),
                                     tint));
    playAll_->setEnabled(!model_.clips().isEmpty() && !converting);
    playAll_->setToolTip(playingAll ? QStringLiteral("Stop playing all clips")
                                    : QStringLiteral("Play every clip in list order"));

    const double length = timelineLength(clip);
    timeline_->setRange(0, std::max(length, 0.0));
    timeline_->setEnabled(length > 0 && !converting);
    trim_->setEnabled(clip.has_value() && !converting);
    trimLabel_->setText(trimText(clip, styleOf(times_)));
    followPlayhead();
}

void PlaybackBar::followPlayhead()
{
    const std::optional<ClipItem> clip = model_.selectedClip();
    const double seconds = model_.clock().seconds();
    timeline_->setValue(clip ? std::max(seconds - clip->effectiveInPoint(), 0.0) : 0.0);
    time_->setText(timeLabel(clip, seconds, styleOf(times_)));
}

}  // namespace tavrelune::ui
