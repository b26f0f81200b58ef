#include "controller/output_naming.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextBoundaryFinder>

namespace tavrelune::OutputNaming {

namespace {

qsizetype fileNameBytes(const QString& name)
{
    return QFile::encodeName(name).size();
}

// `base` + `tail`, with `base` cut at the end of a whole character so that
// the name fits in the file system's limit.
QString fittedName(const QString& base, const QString& tail)
{
    const qsizetype room = fileNameLimit - fileNameBytes(tail);
    if (fileNameBytes(base) <= room)
        return base + tail;
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, base);
    qsizetype end = 0;
    for (qsizetype next = characters.toNextBoundary(); next > 0; next = characters.toNextBoundary()) {
        if (fileNameBytes(base.first(next)) > room)
            break;
        end = next;
    }
    return base.first(end) + tail;
}

QString firstFree(const QString& folder, const QString& base, const QString& suffix, const PathTaken& taken)
{
    const QDir dir(folder);
    QString path = dir.filePath(fittedName(base, suffix + ".mp4"));
    for (int n = 2; taken(path); ++n)
        path = dir.filePath(fittedName(base, suffix + "-" + QString::number(n) + ".mp4"));
    return path;
}

}  // namespace

bool existsOnDisk(const QString& path)
{
    return QFileInfo::exists(path) || QFileInfo(path).isSymLink();
}

QString uniqueOutputPath(const QString& clipPath, const QString& folder, const PathTaken& taken)
{
    return firstFree(folder, QFileInfo(clipPath).completeBaseName(), "_graded", taken);
}

QString uniqueCombinedOutputPath(const QString& folder, const QDateTime& now, const PathTaken& taken,
                                 const QString& name)
{
    QString base = name.trimmed();
    if (base.endsWith(QLatin1String(".mp4"), Qt::CaseInsensitive))
        base.chop(4);
    base.replace(QLatin1Char('/'), QLatin1Char('-')).remove(QChar(0));
    base = base.trimmed();
    if (base.isEmpty() || base == QLatin1String(".") || base == QLatin1String(".."))
        base = "Tavrelune_" + now.toUTC().toString(Qt::ISODate).replace(':', '-');
    return firstFree(folder, base, QString(), taken);
}

}  // namespace tavrelune::OutputNaming
