#include "ui/clip_row_delegate.h"

#include "ui/time_display.h"
#include "controller/app_model.h"
#include "model/delivery_conversion.h"
#include "ui/appearance.h"
#include "ui/clip_list_model.h"
#include "ui/clip_row_text.h"
#include "ui/icons.h"
#include "ui/spinner.h"

#include <QListView>
#include <QPainter>
#include <QPainterPath>
#include <QHelpEvent>
#include <QTextLayout>
#include <QToolTip>

namespace tavrelune::ui {

namespace {

// The error text (flattened to one paragraph) on at most two lines of
// `width`, the second elided when more remains.
QStringList wrappedError(const QString& text, const QFont& font, int width)
{
    const QString flat = text.simplified();
    QTextLayout layout(flat, font);
    layout.beginLayout();
    QTextLine first = layout.createLine();
    first.setLineWidth(width);
    layout.endLayout();
    QStringList lines{flat.left(first.textLength()).trimmed()};
    if (const QString rest = flat.mid(first.textLength()).trimmed(); !rest.isEmpty())
        lines << QFontMetrics(font).elidedText(rest, Qt::ElideRight, width);
    return lines;
}

}  // namespace

struct ClipRowDelegate::Lines {
    QFont nameFont;
    QFont captionFont;
    QFont errorFont;
    QStringList errorLines;
    bool progress = false;
};

ClipRowDelegate::ClipRowDelegate(QListView* view, const TimeDisplay* times)
    : QStyledItemDelegate(view), view_(view), times_(times)
{
    clock_.start();
    if (times_)
        connect(times_, &TimeDisplay::changed, view_->viewport(), qOverload<>(&QWidget::update));
}

ClipRowDelegate::Lines ClipRowDelegate::linesFor(const ClipItem& clip, const QFont& base, int width) const
{
    Lines lines;
    lines.nameFont = appearance::weighted(base, QFont::Medium);
    lines.captionFont = appearance::caption(base);
    lines.errorFont = appearance::caption2(base);
    lines.progress = clip.status == ClipStatus::converting;
    if (clip.status == ClipStatus::failed && clip.errorMessage && !clip.errorMessage->isEmpty())
        lines.errorLines = wrappedError(*clip.errorMessage, lines.errorFont, std::max(40, width));
    else if (clip.readError)
        lines.errorLines = wrappedError(*clip.readError, lines.errorFont, std::max(40, width));
    return lines;
}

QStringList ClipRowDelegate::captionItems(const ClipItem& clip) const
{
    QStringList items{durationText(clip, styleOf(times_))};
    if (const QString resolution = clip.resolutionLabel(); !resolution.isEmpty())
        items << resolution;
    if (const QString conversion = deliveryConversionLabel(deliveryConversionFor(clip.color)); !conversion.isEmpty())
        items << conversion;
    if (carriesGrade(clip))
        items << adjustmentLabel(clip);
    items.removeAll(QString());
    return items;
}

QString ClipRowDelegate::cutText(const ClipItem& clip, const QFont& base, int rowWidth) const
{
    const Lines lines = linesFor(clip, base, 0);
    const int width = rowWidth - 2 * (insetX + paddingX);
    const QStringList items = captionItems(clip);
    const QFontMetrics caption(lines.captionFont);
    int needed = clip.isTrimmed() ? std::min(12, caption.height()) + itemGap : 0;
    for (const QString& item : items)
        needed += caption.horizontalAdvance(item) + itemGap;
    const int nameRoom = width - (clip.status != ClipStatus::ready || clip.readError ? statusIconSize + itemGap : 0);
    if (needed - itemGap <= width && QFontMetrics(lines.nameFont).horizontalAdvance(clip.name) <= nameRoom)
        return {};
    return clip.name + QLatin1Char('\n') + items.join(QStringLiteral(" \u00B7 "));
}

bool ClipRowDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                                const QModelIndex& index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const auto clip = index.data(ClipListModel::ClipRole).value<ClipItem>();
    const QString full = cutText(clip, option.font, option.rect.width());
    if (full.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(event->globalPos(), full, view);
    return true;
}

QSize ClipRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const auto clip = index.data(ClipListModel::ClipRole).value<ClipItem>();
    const int width = view_->viewport()->width() - 2 * (insetX + paddingX);
    const Lines lines = linesFor(clip, option.font, width);
    int height = 2 * paddingY;
    height += std::max(QFontMetrics(lines.nameFont).height(), statusIconSize);
    height += lineGap + QFontMetrics(lines.captionFont).height();
    if (lines.progress)
        height += lineGap + 2 + progressHeight;
    if (!lines.errorLines.isEmpty())
        height += lineGap + static_cast<int>(lines.errorLines.size()) * QFontMetrics(lines.errorFont).lineSpacing();
    return {width, height + 2};
}

void ClipRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const auto clip = index.data(ClipListModel::ClipRole).value<ClipItem>();
    const QPalette& palette = option.palette;
    const bool selected = option.state & QStyle::State_Selected;
    const QRect card = option.rect.adjusted(insetX, 1, -insetX, -1);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (selected) {
        QColor fill = palette.color(QPalette::Highlight);
        if (!(option.state & QStyle::State_Active) || !view_->hasFocus())
            fill.setAlphaF(0.75f);
        QPainterPath path;
        path.addRoundedRect(QRectF(card), 6, 6);
        painter->fillPath(path, fill);
    } else if (option.state & QStyle::State_MouseOver) {
        QPainterPath path;
        path.addRoundedRect(QRectF(card), 6, 6);
        QColor hover = palette.color(QPalette::Text);
        hover.setAlphaF(0.05f);
        painter->fillPath(path, hover);
    }

    const QColor primary = selected ? palette.color(QPalette::HighlightedText) : palette.color(QPalette::Text);
    const QColor secondary = selected ? appearance::blend(primary, palette.color(QPalette::Highlight), 0.75)
                                      : appearance::secondaryText(palette, QPalette::Base);
    const QRect content = card.adjusted(paddingX, paddingY, -paddingX, -paddingY);
    const Lines lines = linesFor(clip, option.font, content.width());
    int y = content.top();

    // Line 1: name and status icon.
    const QFontMetrics nameMetrics(lines.nameFont);
    const int firstHeight = std::max(nameMetrics.height(), statusIconSize);
    const QRect iconBox(content.right() - statusIconSize + 1, y + (firstHeight - statusIconSize) / 2,
                        statusIconSize, statusIconSize);
    const bool hasIcon = clip.status != ClipStatus::ready || clip.readError;
    const int nameWidth = content.width() - (hasIcon ? statusIconSize + itemGap : 0);
    painter->setFont(lines.nameFont);
    painter->setPen(primary);
    painter->drawText(QRect(content.left(), y, nameWidth, firstHeight), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip,
                      nameMetrics.elidedText(clip.name, Qt::ElideMiddle, nameWidth));
    switch (clip.status) {
    case ClipStatus::ready:
        if (clip.readError)
            icons::colored(QStringLiteral("tavrelune-unreadable")).paint(painter, iconBox);
        break;
    case ClipStatus::converting:
        paintSpinner(*painter, iconBox, primary, clock_.elapsed());
        break;
    case ClipStatus::done:
        icons::colored(QStringLiteral("tavrelune-done")).paint(painter, iconBox);
        break;
    case ClipStatus::failed:
        icons::colored(QStringLiteral("tavrelune-failed")).paint(painter, iconBox);
        break;
    }
    y += firstHeight + lineGap;

    // Line 2: scissors, duration, resolution, adjustments.
    painter->setFont(lines.captionFont);
    painter->setPen(secondary);
    const QFontMetrics captionMetrics(lines.captionFont);
    const int captionHeight = captionMetrics.height();
    int x = content.left();
    if (clip.isTrimmed()) {
        const int side = std::min(12, captionHeight);
        icons::symbol(QStringLiteral("edit-cut"), secondary)
            .paint(painter, QRect(x, y + (captionHeight - side) / 2, side, side));
        x += side + itemGap;
    }
    for (const QString& item : captionItems(clip)) {
        const int room = content.right() + 1 - x;
        if (room <= 0 || item.isEmpty())
            continue;
        const QString shown = captionMetrics.elidedText(item, Qt::ElideRight, room);
        painter->drawText(QRect(x, y, room, captionHeight), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, shown);
        x += captionMetrics.horizontalAdvance(shown) + itemGap;
    }
    y += captionHeight;

    // Line 3: progress while converting.
    if (lines.progress) {
        y += lineGap + 2;
        const QRectF track(content.left(), y, content.width(), progressHeight);
        QColor trackColor = primary;
        trackColor.setAlphaF(0.15f);
        painter->setPen(Qt::NoPen);
        painter->setBrush(trackColor);
        painter->drawRoundedRect(track, progressHeight / 2.0, progressHeight / 2.0);
        const double fraction = std::clamp(clip.progress, 0.0, 1.0);
        if (fraction > 0) {
            QRectF filled = track;
            filled.setWidth(std::max(track.height(), track.width() * fraction));
            painter->setBrush(selected ? primary : appearance::accent(palette));
            painter->drawRoundedRect(filled, progressHeight / 2.0, progressHeight / 2.0);
        }
        y += progressHeight;
    }

    // Line 4: the failure, in red.
    if (!lines.errorLines.isEmpty()) {
        y += lineGap;
        painter->setFont(lines.errorFont);
        painter->setPen(selected ? primary : appearance::failureRed());
        const QFontMetrics errorMetrics(lines.errorFont);
        for (const QString& line : lines.errorLines) {
            painter->drawText(QRect(content.left(), y, content.width(), errorMetrics.height()),
                              Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, line);
            y += errorMetrics.lineSpacing();
        }
    }
    painter->restore();
}

}  // namespace tavrelune::ui
