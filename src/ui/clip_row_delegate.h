// Paints one clip row: the name and status icon; a caption line with the
// trim mark, duration, resolution and adjustment text; a progress bar while
// converting; and up to two red lines of the clip's failure.
//
// Main thread. Reads the clip from the model's ClipRole; keeps no clip state.
// Rows wrap to the width of the view it is given.
#pragma once

#include <QElapsedTimer>
#include <QStyledItemDelegate>

class QListView;

namespace tavrelune {
struct ClipItem;
}

namespace tavrelune::ui {

class TimeDisplay;

class ClipRowDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    explicit ClipRowDelegate(QListView* view, const TimeDisplay* times = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    // A row whose name or caption is cut shows them whole in its tooltip.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
    // The tooltip's text for a row `rowWidth` wide: empty when nothing is cut.
    QString cutText(const ClipItem& clip, const QFont& base, int rowWidth) const;

    // Geometry, shared by painting and size.
    static constexpr int insetX = 8;      // selection inset from the view's edges
    static constexpr int paddingX = 10;   // text inset inside the selection
    static constexpr int paddingY = 7;
    static constexpr int lineGap = 4;
    static constexpr int itemGap = 8;
    static constexpr int progressHeight = 4;
    static constexpr int statusIconSize = 16;

private:
    struct Lines;
    Lines linesFor(const ClipItem& clip, const QFont& base, int width) const;
    QStringList captionItems(const ClipItem& clip) const;

    QListView* view_;
    const TimeDisplay* times_;
    QElapsedTimer clock_;  // drives the spinner
};

}  // namespace tavrelune::ui
