#include "controller/output_naming.h"

#include <QDir>
#include <QFileInfo>

namespace tavrelune::OutputNaming {

namespace {

QString firstFree(const QString& folder, const QString& stem, const QString& separator,
                  const PathTaken& taken)
{
    const QDir dir(folder);
    QString path = dir.filePath(stem + ".mp4");
    for (int n = 2; taken(path); ++n)
        path = dir.filePath(stem + separator + QString::number(n) + ".mp4");
    return path;
}

}  // namespace

bool existsOnDisk(const QString& path)
{
    return QFileInfo::exists(path) || QFileInfo(path).isSymLink();
}

QString uniqueOutputPath(const QString& clipPath, const QString& folder, const PathTaken& taken)
{
    return firstFree(folder, QFileInfo(clipPath).completeBaseName() + "_graded", "-", taken);
}

QString uniqueCombinedOutputPath(const QString& folder, const QDateTime& now, const PathTaken& taken)
{
    const QString stamp = now.toUTC().toString(Qt::ISODate).replace(':', '-');
    return firstFree(folder, "Tavrelune_" + stamp, "-", taken);
}

}  // namespace tavrelune::OutputNaming
