// What the controller asks of the desktop: file choosers and showing a
// folder in the file manager.
//
// The window implements these with QFileDialog and the freedesktop file
// manager interface; tests and the command line give canned answers.
// Main thread; choosers are modal and return when the user has answered.
// The controller does not own its DesktopServices.
#pragma once

#include <QString>
#include <QStringList>

namespace tavrelune {

struct ChooserRequest {
    // saveFile: a new or existing file to write, starting at suggestedPath.
    enum class Mode { oneFile, manyFiles, folder, saveFile };
    Mode mode = Mode::oneFile;
    QString message;           // shown in the chooser
    QString confirmLabel;      // empty: the chooser's own
    QStringList extensions;    // lower case, no dot; empty: any file
    bool audioVisualOnly = false;
    bool canCreateFolders = false;
    QString suggestedPath;     // saveFile only

    bool operator==(const ChooserRequest&) const = default;
};

class DesktopServices {
public:
    virtual ~DesktopServices() = default;
    // The chosen paths in the chooser's order; empty when cancelled.
    virtual QStringList choose(const ChooserRequest& request) = 0;
    // Shows a folder in the file manager, with `fileToSelect` selected when
    // given and the file manager can do that.
    virtual void showInFileManager(const QString& folder, const QString& fileToSelect) = 0;
};

}  // namespace tavrelune
