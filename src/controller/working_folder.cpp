#include "controller/working_folder.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrelune::WorkingFolder {

Environment currentEnvironment()
{
    Environment environment;
    environment.runtimeDir = qEnvironmentVariable("XDG_RUNTIME_DIR");
    environment.cacheDir = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    environment.homeDir = QDir::homePath();
    environment.tempDir = QDir::tempPath();
    environment.userId = getuid();
    return environment;
}

bool isFilterSafe(const QString& path)
{
    return !path.contains(':') && !path.contains('\'') && !path.contains('\\');
}

QStringList candidates(const Environment& environment)
{
    QStringList result;
    const auto add = [&result](const QString& base, const QString& name) {
        if (base.isEmpty() || !QDir::isAbsolutePath(base))
            return;
        const QString path = QDir::cleanPath(base + '/' + name);
        if (isFilterSafe(path) && !result.contains(path))
            result << path;
    };
    add(environment.runtimeDir, "Tavrelune");
    add(environment.cacheDir, "Tavrelune");
    add(environment.homeDir, ".cache/Tavrelune");
    // Last resort, still private: a per-user folder whose owner and mode
    // are checked by prepare().
    add(environment.tempDir, QStringLiteral("tavrelune-%1").arg(environment.userId));
    add("/tmp", QStringLiteral("tavrelune-%1").arg(environment.userId));
    return result;
}

bool prepare(const QString& path, uint userId)
{
    const QFileInfo existing(path);
    if (existing.exists() && !existing.isDir()) {
        // A stale file where the folder belongs (say, from a crashed tool).
        if (!QFile::remove(path))
            return false;
    }
    if (!QDir().mkpath(path))
        return false;
    const QByteArray native = QFile::encodeName(path);
    struct stat info = {};
    if (::lstat(native.constData(), &info) != 0 || !S_ISDIR(info.st_mode) || info.st_uid != userId)
        return false;
    if ((info.st_mode & 0777) != 0700 && ::chmod(native.constData(), 0700) != 0)
        return false;
    return true;
}

QString choose(const Environment& environment)
{
    const QStringList all = candidates(environment);
    for (const QString& candidate : all)
        if (prepare(candidate, environment.userId))
            return candidate;
    return all.value(0, QDir::cleanPath(environment.tempDir + "/Tavrelune"));
}

}  // namespace tavrelune::WorkingFolder
