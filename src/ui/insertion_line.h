// The line that shows where dragged rows of a list will land: between two
// rows, above the first or under the last.
//
// Main thread; a child of the list's viewport, drawn over the rows.
#pragma once

#include <QWidget>

class QListView;

namespace tavrelune::ui {

class InsertionLine : public QWidget {
    Q_OBJECT
public:
    explicit InsertionLine(QListView& list);

    // Shows the line at the gap nearest `position` (viewport coordinates).
    void showAt(QPoint position);
    // The row the rows would be inserted before (the row count: at the end).
    int row() const { return row_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QListView& list_;
    int row_ = 0;
};

}  // namespace tavrelune::ui
