#include "controller/free_space.h"

#include "controller/size_forecast.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>
#include <cmath>

namespace tavrelune {

std::optional<VolumeSpace> freeSpaceOnDisk(const QString& folder)
{
    QString existing = QFileInfo(folder).absoluteFilePath();
    while (!QFileInfo::exists(existing)) {
        const QString parent = QFileInfo(existing).absolutePath();
        if (parent == existing)
            return std::nullopt;
        existing = parent;
    }
    const QStorageInfo storage(existing);
    if (!storage.isValid() || !storage.isReady())
        return std::nullopt;
    return VolumeSpace{storage.rootPath(), storage.bytesAvailable()};
}

std::optional<QString> spaceShortage(const std::vector<SpaceNeed>& needs, const FreeSpaceQuery& freeSpace)
{
    struct Volume {
        VolumeSpace space;
        QString firstFolder;
        int64_t bytes = 0;
    };
    std::vector<Volume> volumes;
    for (const SpaceNeed& need : needs) {
        if (need.bytes <= 0)
            continue;
        const std::optional<VolumeSpace> space = freeSpace(need.folder);
        if (!space)
            continue;
        const auto known = std::find_if(volumes.begin(), volumes.end(),
                                        [&space](const Volume& volume) { return volume.space.volume == space->volume; });
        if (known != volumes.end())
            known->bytes += need.bytes;
        else
            volumes.push_back({*space, need.folder, need.bytes});
    }
    for (const Volume& volume : volumes) {
        const auto needed = static_cast<int64_t>(std::ceil(static_cast<double>(volume.bytes) * (1 + spaceMargin)));
        if (volume.space.available >= needed)
            continue;
        return QStringLiteral("Not enough free space for this batch in %1: it needs about %2, and %3 is free.")
            .arg(QDir::toNativeSeparators(volume.firstFolder), byteCountText(needed),
                 byteCountText(volume.space.available));
    }
    return std::nullopt;
}

}  // namespace tavrelune
