// Finds the ffmpeg and ffprobe programs.
//
// Search order: $TAVRELUNE_TOOLS_DIR, the installation's helper folder
// (<prefix>/libexec/tavrelune next to <prefix>/bin), the executable's own
// folder, then every folder of $PATH. With no hit, the first candidate is
// returned and running it reports the tool as missing.
#pragma once

#include <QString>
#include <QStringList>

namespace tavrelune {

class ToolLocator {
public:
    struct Places {
        QString toolsDir;        // from TAVRELUNE_TOOLS_DIR; empty when unset
        QString applicationDir;  // folder of the running executable
        QString searchPath;      // $PATH, ':'-separated
    };

    // Reads the environment and the running executable's folder.
    static ToolLocator fromEnvironment();
    explicit ToolLocator(Places places) : places_(std::move(places)) {}

    QStringList candidates(const QString& toolName) const;
    QString locate(const QString& toolName) const;

private:
    Places places_;
};

}  // namespace tavrelune
