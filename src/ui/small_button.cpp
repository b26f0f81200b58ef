#include "ui/small_button.h"

#include "ui/appearance.h"

namespace tavrelune::ui {

SmallButton::SmallButton(const QString& text, QWidget* parent) : QPushButton(text, parent)
{
    setFont(appearance::caption(font()));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize SmallButton::sizeHint() const
{
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(text()) + 22, metrics.height() + 10};
}

}  // namespace tavrelune::ui
