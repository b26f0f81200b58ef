// Whether the file systems a batch writes to have room for it.
//
// `spaceShortage` is pure; `freeSpaceOnDisk` asks the operating system.
// Sizes are bytes. Any thread.
#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace tavrelune {

struct VolumeSpace {
    QString volume;          // identifies the file system (its mount point)
    int64_t available = 0;   // bytes this user may still write there
};

// Free space of the file system holding `folder` (or, for a folder not made
// yet, its nearest existing parent); none when that cannot be learned.
using FreeSpaceQuery = std::function<std::optional<VolumeSpace>(const QString& folder)>;
std::optional<VolumeSpace> freeSpaceOnDisk(const QString& folder);

// Bytes a batch will write into one folder.
struct SpaceNeed {
    QString folder;
    int64_t bytes = 0;
};

// Room kept beyond the forecast, which is an estimate.
inline constexpr double spaceMargin = 0.05;

// The message for the first file system that has less free space than its
// needs together plus the margin; none when every one has room (or its space
// is unknown).
std::optional<QString> spaceShortage(const std::vector<SpaceNeed>& needs, const FreeSpaceQuery& freeSpace);

}  // namespace tavrelune
