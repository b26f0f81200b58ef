// The window's icons: the desktop theme's icon when it has one by the
// freedesktop name, else the drawing bundled in the application's resources,
// so the window looks complete under any icon theme or none.
//
// Main thread. Returned icons are values; bundled monochrome drawings are
// tinted with the colour given, so they follow light and dark palettes.
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace tavrelune::ui::icons {

// A monochrome symbol by freedesktop name ("list-add", "edit-cut", ...).
QIcon symbol(const QString& name, const QColor& tint);
// A bundled drawing only, tinted (for symbols no theme names, such as the
// LUT cube); `name` is the resource file's base name.
QIcon bundled(const QString& name, const QColor& tint);
// A bundled drawing in its own colours ("tavrelune-done", "tavrelune-failed").
QIcon colored(const QString& name);
// The application's icon.
QIcon application();

}  // namespace tavrelune::ui::icons
