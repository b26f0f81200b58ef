#include "model/media_type.h"

#include <QFileInfo>

namespace tavrelune::MediaType {

const QSet<QString>& videoExtensions()
{
    // Camera cards add MPEG transport and program streams (AVCHD, HDV,
    // JVC's .mod/.tod, DVD .vob), DV and phones' 3GP.
    static const QSet<QString> set{"mp4", "mov",  "m4v", "mkv", "avi", "mxf",  "mts",  "m2ts",
                                   "m2t", "ts",   "mpg", "mpeg", "vob", "mod", "tod",  "dv",
                                   "3gp", "webm", "wmv", "insv", "braw"};
    return set;
}

const QSet<QString>& lutExtensions()
{
    static const QSet<QString> set{"cube", "3dl", "dat", "m3d", "csp"};
    return set;
}

const QSet<QString>& watermarkExtensions()
{
    static const QSet<QString> set{"png", "svg"};
    return set;
}

QString extensionOf(const QString& path)
{
    const QString fileName = QFileInfo(path).fileName();
    const qsizetype dot = fileName.lastIndexOf('.');
    // A leading dot names a hidden file, not an extension.
    if (dot <= 0)
        return {};
    return fileName.mid(dot + 1).toLower();
}

bool isVideo(const QString& path) { return videoExtensions().contains(extensionOf(path)); }
bool isLut(const QString& path) { return lutExtensions().contains(extensionOf(path)); }
bool isWatermark(const QString& path) { return watermarkExtensions().contains(extensionOf(path)); }

}  // namespace tavrelune::MediaType
