// Type sizes, text colours and spacing shared by the window's widgets, so
// that every pane speaks the same visual language under any Qt style.
//
// Main thread (fonts and palettes are GUI objects). Pure functions of the
// font and palette they are given.
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

class QWidget;

namespace tavrelune::ui::appearance {

// Section titles ("Clips", card titles): the base font, bold, one point up.
QFont headline(const QFont& base);
// Names and values beside controls: the base font.
QFont subheadline(const QFont& base);
// Secondary lines (durations, hints, the status row): one point down.
QFont caption(const QFont& base);
// The smallest text (error lines, "Cool" / "Warm"): two points down.
QFont caption2(const QFont& base);
// The same font with the given weight.
QFont weighted(QFont font, QFont::Weight weight);

// Text colours: secondary and tertiary are the text colour faded towards the
// background, so they work on light and dark palettes alike.
QColor primaryText(const QPalette& palette);
QColor secondaryText(const QPalette& palette, QPalette::ColorRole background = QPalette::Window);
QColor tertiaryText(const QPalette& palette, QPalette::ColorRole background = QPalette::Window);
QColor accent(const QPalette& palette);
// An opaque mix: `amountOfA` of a, the rest b.
QColor blend(const QColor& a, const QColor& b, double amountOfA);
QColor failureRed();
QColor doneGreen();
QColor warningOrange();

// Gives a label (or any widget) a text colour through its palette; a
// disabled widget keeps the style's disabled colour.
void setTextColor(QWidget* widget, const QColor& color);

// Height of the header rows above the three panes, so their dividers line up.
inline constexpr int paneHeaderHeight = 44;

}  // namespace tavrelune::ui::appearance
