#include "engine/tool_locator.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace tavrelune {

ToolLocator ToolLocator::fromEnvironment()
{
    Places places;
    places.toolsDir = qEnvironmentVariable("TAVRELUNE_TOOLS_DIR");
    places.applicationDir = QCoreApplication::instance() ? QCoreApplication::applicationDirPath()
                                                         : QString();
    places.searchPath = qEnvironmentVariable("PATH");
    return ToolLocator(places);
}

QStringList ToolLocator::candidates(const QString& toolName) const
{
    QStringList result;
    if (!places_.toolsDir.isEmpty())
        result << QDir(places_.toolsDir).filePath(toolName);
    if (!places_.applicationDir.isEmpty()) {
        const QDir appDir(places_.applicationDir);
        result << QDir::cleanPath(appDir.filePath("../libexec/tavrelune/" + toolName));
        result << appDir.filePath(toolName);
    }
    for (const QString& folder : places_.searchPath.split(':', Qt::SkipEmptyParts))
        result << QDir(folder).filePath(toolName);
    return result;
}

QString ToolLocator::locate(const QString& toolName) const
{
    const QStringList all = candidates(toolName);
    for (const QString& candidate : all) {
        const QFileInfo info(candidate);
        if (info.isFile() && info.isExecutable())
            return candidate;
    }
    return all.isEmpty() ? toolName : all.first();
}

}  // namespace tavrelune
