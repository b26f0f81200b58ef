// Which files the application accepts for each role, by extension.
#pragma once

#include <QSet>
#include <QString>

namespace tavrelune::MediaType {

// Lower-case extensions without the dot.
const QSet<QString>& videoExtensions();
const QSet<QString>& lutExtensions();
const QSet<QString>& watermarkExtensions();

// The path's extension in lower case; empty when it has none.
QString extensionOf(const QString& path);

bool isVideo(const QString& path);
bool isLut(const QString& path);
bool isWatermark(const QString& path);

}  // namespace tavrelune::MediaType
