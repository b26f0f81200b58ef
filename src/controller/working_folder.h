// Where the controller keeps its private working files (staged LUT and
// watermark, preview stills). Instances share this folder; each works in a
// run folder of its own inside it (RunFolder).
//
// The folder is private to the user: $XDG_RUNTIME_DIR/Tavrelune when that is
// set, else the user's cache folder plus "Tavrelune", created with mode 0700.
// ffmpeg reads the staged LUT through a filter graph whose escaping cannot
// carry ':', '\'' or '\\', so a location holding one of those is passed over.
#pragma once

#include <QString>
#include <QStringList>

namespace tavrelune::WorkingFolder {

struct Environment {
    QString runtimeDir;  // $XDG_RUNTIME_DIR, may be empty
    QString cacheDir;    // the user's cache folder (XDG)
    QString homeDir;
    QString tempDir;
    uint userId = 0;
};

Environment currentEnvironment();

// True when ffmpeg can read files below this folder through a filter graph.
bool isFilterSafe(const QString& path);

// The locations to try, best first; all filter-safe.
QStringList candidates(const Environment& environment);

// Creates (or repairs) the folder with mode 0700. False when it cannot be
// made private: missing, not a folder, or owned by someone else.
bool prepare(const QString& path, uint userId);

// The first candidate that could be prepared; the first candidate if none
// could (later writes then fail on their own and are reported there).
QString choose(const Environment& environment);

}  // namespace tavrelune::WorkingFolder
