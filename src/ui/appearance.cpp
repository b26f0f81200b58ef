#include "ui/appearance.h"

#include <QWidget>

namespace tavrelune::ui::appearance {

namespace {

QFont resized(QFont font, double delta)
{
    if (font.pointSizeF() > 0)
        font.setPointSizeF(std::max(6.0, font.pointSizeF() + delta));
    else
        font.setPixelSize(std::max(8, font.pixelSize() + static_cast<int>(delta * 4 / 3)));
    return font;
}

}  // namespace

QColor blend(const QColor& a, const QColor& b, double amountOfA)
{
    return QColor::fromRgbF(static_cast<float>(a.redF() * amountOfA + b.redF() * (1 - amountOfA)),
                            static_cast<float>(a.greenF() * amountOfA + b.greenF() * (1 - amountOfA)),
                            static_cast<float>(a.blueF() * amountOfA + b.blueF() * (1 - amountOfA)));
}

QFont headline(const QFont& base) { return weighted(resized(base, 1), QFont::Bold); }
QFont subheadline(const QFont& base) { return base; }
QFont caption(const QFont& base) { return resized(base, -1); }
QFont caption2(const QFont& base) { return resized(base, -1.5); }

QFont weighted(QFont font, QFont::Weight weight)
{
    font.setWeight(weight);
    return font;
}

// Opaque mixes rather than alpha: text drawn over a selection or a card
// then keeps the same contrast it was designed for.
// Always from the active group: a widget asking while it is disabled must
// not bake the disabled colour into its enabled look.
QColor primaryText(const QPalette& palette)
{
    return palette.color(QPalette::Active, QPalette::WindowText);
}

QColor secondaryText(const QPalette& palette, QPalette::ColorRole background)
{
    return blend(primaryText(palette), palette.color(QPalette::Active, background), 0.6);
}

QColor tertiaryText(const QPalette& palette, QPalette::ColorRole background)
{
    return blend(primaryText(palette), palette.color(QPalette::Active, background), 0.4);
}

QColor accent(const QPalette& palette) { return palette.color(QPalette::Active, QPalette::Highlight); }
QColor failureRed() { return QColor(0xd7, 0x2d, 0x2d); }
QColor doneGreen() { return QColor(0x2e, 0xa0, 0x43); }
QColor warningOrange() { return QColor(0xf0, 0x8c, 0x00); }

void setTextColor(QWidget* widget, const QColor& color)
{
    QPalette palette = widget->palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::WindowText, color);
        palette.setColor(group, QPalette::Text, color);
    }
    widget->setPalette(palette);
}

}  // namespace tavrelune::ui::appearance
