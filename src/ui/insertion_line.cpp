#include "ui/insertion_line.h"

#include "ui/appearance.h"

#include <QListView>
#include <QPainter>

namespace tavrelune::ui {

namespace {
constexpr int thickness = 2;
constexpr int inset = 8;  // as the rows' selection
}  // namespace

InsertionLine::InsertionLine(QListView& list) : QWidget(list.viewport()), list_(list)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void InsertionLine::showAt(QPoint position)
{
    const int rows = list_.model() ? list_.model()->rowCount() : 0;
    const QModelIndex under = list_.indexAt(position);
    int y = 0;
    if (under.isValid()) {
        const QRect rect = list_.visualRect(under);
        const bool before = position.y() < rect.center().y();
        row_ = under.row() + (before ? 0 : 1);
        y = before ? rect.top() : rect.bottom() + 1;
    } else {
        row_ = rows;
        y = rows > 0 ? list_.visualRect(list_.model()->index(rows - 1, 0)).bottom() + 1 : 0;
    }
    setGeometry(inset, y - thickness / 2, list_.viewport()->width() - 2 * inset, thickness);
    show();
    raise();
}

void InsertionLine::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), appearance::accent(palette()));
}

}  // namespace tavrelune::ui
