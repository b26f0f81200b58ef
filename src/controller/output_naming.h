// Names of the files a batch writes. Existing files are never overwritten:
// a taken name gets a number. A name longer than the file system allows is
// shortened in its base part, by whole characters, keeping "_graded", the
// number and the extension.
#pragma once

#include <QDateTime>
#include <QString>
#include <functional>

namespace tavrelune::OutputNaming {

// Whether a path is already used (on disk, or claimed by a planned export).
using PathTaken = std::function<bool(const QString& path)>;

// Longest file name, in bytes of its file-system encoding (NAME_MAX).
inline constexpr qsizetype fileNameLimit = 255;

bool existsOnDisk(const QString& path);

// <folder>/<base>_graded.mp4, then _graded-2.mp4, -3, ... where base is the
// clip file's name without its extension.
QString uniqueOutputPath(const QString& clipPath, const QString& folder, const PathTaken& taken);

// <folder>/<name>.mp4 (a ".mp4" already typed is not doubled; "/" becomes
// "-"), or <folder>/Tavrelune_<UTC time, ':' as '-'>.mp4 without a usable
// name; then -2, -3, ...
QString uniqueCombinedOutputPath(const QString& folder, const QDateTime& now, const PathTaken& taken,
                                 const QString& name = {});

}  // namespace tavrelune::OutputNaming
