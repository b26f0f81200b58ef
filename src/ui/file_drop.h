// Turns dropped data into file locations: the file URLs of a
// "text/uri-list". Anything else (web addresses, plain text, even text
// that looks like a path) is not a file and is not taken. The result
// is sorted by file name the way a file manager sorts (case-insensitive,
// digit runs as numbers), stably, whatever order the items came in.
//
// Main thread (QMimeData belongs to the drag). Pure: no file is touched.
#pragma once

#include <QList>
#include <QUrl>

class QMimeData;

namespace tavrelune::ui::FileDrop {

// Whether the data holds a file location (worth accepting a drag for).
bool carriesFiles(const QMimeData& data);

QList<QUrl> urls(const QMimeData& data);

// Sorts file locations by their last path component, file-manager style.
QList<QUrl> sortedByName(QList<QUrl> urls);

}  // namespace tavrelune::ui::FileDrop
